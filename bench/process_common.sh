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
# For each model: the whole-process wall time of ferrule-host with OPTION_A FILE_A against
# OPTION_B FILE_B (files in the private folder), runs alternating after a warm-up, medians and
# their ratio. Usage: race_per_model OPTION_A FILE_A OPTION_B FILE_B
race_per_model() {
    local a=$1 fa=$2 b=$3 fb=$4 model ma mb
    for model in 3 5 6 8 10; do
        : >"$root/a"; : >"$root/b"
        "$host" --model "$model" "$a" "$root/$fa" >/dev/null 2>&1 # warm-up
        for _ in $(seq "$runs"); do
            us "$host" --model "$model" "$a" "$root/$fa" >>"$root/a"
            us "$host" --model "$model" "$b" "$root/$fb" >>"$root/b"
        done
        ma=$(median <"$root/a"); mb=$(median <"$root/b")
        awk -v n="$model" -v a="$a" -v b="$b" -v ma="$ma" -v mb="$mb" -v r="$runs" \
            'BEGIN { printf "GT-%s: %s %.1f ms, %s %.1f ms, ratio %.2f (medians of %d)\n", n, a, ma/1000, b, mb/1000, ma/mb, r }'
    done
}
# Measured processes run at nice -5 when allowed.
prio=()
[ "$(nice -n -5 nice 2>/dev/null)" = "$(($(nice) - 5))" ] && prio=(nice -n -5)
# Wall time and CPU time (user and system, microseconds) and peak RSS (kilobytes) of one run.
# The CPU time hardly depends on how busy the machine is; the wall time does.
measure() {
    python3 -c '
import resource, subprocess, sys, time
cpu = lambda r: r.ru_utime + r.ru_stime
before = resource.getrusage(resource.RUSAGE_CHILDREN)
start = time.monotonic_ns()
subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
wall = (time.monotonic_ns() - start) // 1000
after = resource.getrusage(resource.RUSAGE_CHILDREN)
print(wall, int((cpu(after) - cpu(before)) * 1e6), after.ru_maxrss)' "${prio[@]}" "$@"
}

# Microseconds from the start of a process to the end of its first paint on the X server; the
# process is ended then.
first_frame() {
    local s at pid
    : >"$root/ff"
    s=${EPOCHREALTIME/./}
    FERRULE_FIRST_FRAME=1 QT_QPA_PLATFORM=xcb "${prio[@]}" "$@" >/dev/null 2>"$root/ff" &
    pid=$!
    until at=$(grep -m1 -o 'first frame at [0-9]*' "$root/ff"); do
        if ! kill -0 "$pid" 2>/dev/null; then
            echo "no first frame from $*" >&2
            return 1
        fi
        sleep 0.005
    done
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    echo $((${at##* } - s))
}
# A private X server for first frames; DISPLAY names it, and it ends with the script.
start_xvfb() {
    Xvfb -displayfd 3 -nolisten tcp -screen 0 1280x1024x24 3>"$root/display" 2>/dev/null &
    xvfb=$!
    trap 'kill "$xvfb" 2>/dev/null; rm -rf "$root"' EXIT
    until [ -s "$root/display" ]; do
        kill -0 "$xvfb" 2>/dev/null || { echo "Xvfb did not start" >&2; exit 1; }
        sleep 0.01
    done
    export DISPLAY=":$(cat "$root/display")"
}
# Instructions a whole run of a command executes, counted by valgrind's callgrind: a figure that
# hardly depends on how busy the machine is.
instructions() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" 2>&1 >/dev/null |
        grep -o 'Collected : [0-9]*' | awk '{print $3}'
}
