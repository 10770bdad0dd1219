#!/usr/bin/env bash
# Whole-process timing of `ferrule-host --screenshot` for each model: RUNS runs each (default
# 10), median wall time in milliseconds. Usage: bench/screenshot_process.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-10}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root"
for model in 3 5 6 8 10; do
    times=()
    for _ in $(seq "$runs"); do
        start=$(date +%s%N)
        "$build/bin/ferrule-host" --model "$model" --screenshot "$root/shot.png" >/dev/null
        end=$(date +%s%N)
        times+=($(( (end - start) / 1000000 )))
    done
    median=$(printf '%s\n' "${times[@]}" | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}')
    echo "GT-$model: median ${median} ms over $runs runs"
done
