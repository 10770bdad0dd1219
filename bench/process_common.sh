# Shared by the whole-process benchmark scripts (sourced, not run): arguments build-dir and runs,
# a private offscreen environment, and the timing helpers.
build=${1:-build}
runs=${2:-15}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root" \
    XDG_DATA_HOME="$root"
host="$build/bin/ferrule-host"
# Wall time of one run of a command, in microseconds.
us() { local s e; s=$(date +%s%N); "$@" >/dev/null 2>&1; e=$(date +%s%N); echo $(( (e - s) / 1000 )); }
# The median of the numbers on standard input.
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
