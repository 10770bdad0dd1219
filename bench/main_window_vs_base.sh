#!/usr/bin/env bash
# Whole-process `ferrule-host --main-screenshot` (the main window, with its settings view,
# rendered headless) against the same command of another build (the base: a build of the main
# branch), for each model, runs alternating: medians of the wall time and of the CPU time (user
# and system; it hardly depends on how busy the machine is), and their ratios.
# Usage: bench/main_window_vs_base.sh base-build [build-dir] [runs]
set -euo pipefail
base="$1/bin/ferrule-host"
shift
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh" "$@"
for model in 3 5 6 8 10; do
    : >"$root/new"; : >"$root/base"
    "$host" --model "$model" --main-screenshot "$root/n.png" >/dev/null 2>&1 # warm-up
    "$base" --model "$model" --main-screenshot "$root/b.png" >/dev/null 2>&1
    for _ in $(seq "$runs"); do
        measure "$host" --model "$model" --main-screenshot "$root/n.png" >>"$root/new"
        measure "$base" --model "$model" --main-screenshot "$root/b.png" >>"$root/base"
    done
    nw=$(cut -d' ' -f1 "$root/new" | median); bw=$(cut -d' ' -f1 "$root/base" | median)
    nc=$(cut -d' ' -f2 "$root/new" | median); bc=$(cut -d' ' -f2 "$root/base" | median)
    awk -v m="$model" -v nw="$nw" -v bw="$bw" -v nc="$nc" -v bc="$bc" -v r="$runs" \
        'BEGIN { printf "GT-%s: wall: this build %.1f ms, base %.1f ms, ratio %.2f; CPU: %.1f ms, %.1f ms, ratio %.2f (medians of %d)\n", m, nw/1000, bw/1000, nw/bw, nc/1000, bc/1000, nc/bc, r }'
done
