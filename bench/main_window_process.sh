#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --main-screenshot` (the main window rendered headless)
# against `--screenshot` (the editor) for each model, runs alternating, medians and their ratio.
# Usage: bench/main_window_process.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-15}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root"
host="$build/bin/ferrule-host"
us() { local s e; s=$(date +%s%N); "$@" >/dev/null 2>&1; e=$(date +%s%N); echo $(( (e - s) / 1000 )); }
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
for model in 3 5 6 8 10; do
    : >"$root/main"; : >"$root/editor"
    "$host" --model "$model" --main-screenshot "$root/m.png" >/dev/null 2>&1 # warm-up
    for _ in $(seq "$runs"); do
        us "$host" --model "$model" --main-screenshot "$root/m.png" >>"$root/main"
        us "$host" --model "$model" --screenshot "$root/e.png" >>"$root/editor"
    done
    m=$(median <"$root/main"); e=$(median <"$root/editor")
    awk -v n="$model" -v m="$m" -v e="$e" -v r="$runs" \
        'BEGIN { printf "GT-%s: --main-screenshot %.1f ms, --screenshot %.1f ms, ratio %.2f (medians of %d)\n", n, m/1000, e/1000, m/e, r }'
done
