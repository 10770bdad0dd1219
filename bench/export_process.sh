#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --export` (no window) against `--screenshot` (the
# editor rendered headless) for each model, runs alternating, medians and their ratio.
# Usage: bench/export_process.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
for model in 3 5 6 8 10; do
    : >"$root/export" ; : >"$root/shot"
    "$host" --model "$model" --export "$root/x.syx" >/dev/null # warm-up
    for _ in $(seq "$runs"); do
        us "$host" --model "$model" --export "$root/x.syx" >>"$root/export"
        us "$host" --model "$model" --screenshot "$root/x.png" >>"$root/shot"
    done
    e=$(median <"$root/export"); s=$(median <"$root/shot")
    awk -v m="$model" -v e="$e" -v s="$s" -v n="$runs" \
        'BEGIN { printf "GT-%s: --export %.1f ms, --screenshot %.1f ms, ratio %.2f (medians of %d)\n", m, e/1000, s/1000, e/s, n }'
done
