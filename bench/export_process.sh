#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --export` (no window) against `--screenshot` (the
# editor rendered headless) for each model, runs alternating, medians and their ratio.
# Usage: bench/export_process.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-15}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root"
host="$build/bin/ferrule-host"
ms() { local s e; s=$(date +%s%N); "$@" >/dev/null; e=$(date +%s%N); echo $(( (e - s) / 1000 )); }
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
for model in 3 5 6 8 10; do
    : >"$root/export" ; : >"$root/shot"
    "$host" --model "$model" --export "$root/x.syx" >/dev/null # warm-up
    for _ in $(seq "$runs"); do
        ms "$host" --model "$model" --export "$root/x.syx" >>"$root/export"
        ms "$host" --model "$model" --screenshot "$root/x.png" >>"$root/shot"
    done
    e=$(median <"$root/export"); s=$(median <"$root/shot")
    awk -v m="$model" -v e="$e" -v s="$s" -v n="$runs" \
        'BEGIN { printf "GT-%s: --export %.1f ms, --screenshot %.1f ms, ratio %.2f (medians of %d)\n", m, e/1000, s/1000, e/s, n }'
done
