#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --main-screenshot` (the main window rendered headless)
# against `--screenshot` (the editor) for each model, runs alternating, medians and their ratio.
# Usage: bench/main_window_process.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
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
