#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --main-screenshot` (the main window, with its settings
# view, rendered headless) against the same command of another build (the base: a build of the
# main branch), for each model, runs alternating, medians and their ratio.
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
        us "$host" --model "$model" --main-screenshot "$root/n.png" >>"$root/new"
        us "$base" --model "$model" --main-screenshot "$root/b.png" >>"$root/base"
    done
    n=$(median <"$root/new"); b=$(median <"$root/base")
    awk -v m="$model" -v n="$n" -v b="$b" -v r="$runs" \
        'BEGIN { printf "GT-%s: this build %.1f ms, base %.1f ms, ratio %.2f (medians of %d)\n", m, n/1000, b/1000, n/b, r }'
done
