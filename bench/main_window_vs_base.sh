#!/usr/bin/env bash
# Whole-process `ferrule-host --main-screenshot` (the main window, with its settings view,
# rendered headless) against the same command of another build (the base: a build of the main
# branch), for each model, runs alternating: medians of the wall time and of the CPU time (user
# and system; it hardly depends on how busy the machine is), and their ratios.
# Then what a person waits for: the first frame of the main window in a real X window (Xvfb),
# from the start of the process to the end of the first paint, as each build prints it when
# FERRULE_FIRST_FRAME is set, against the base's main window and against this build's editor.
# Needs Xvfb. Usage: bench/main_window_vs_base.sh base-build [build-dir] [runs]
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

start_xvfb
echo "First frame in an X window (Xvfb), start of the process to the end of the first paint:"
for model in 3 5 6 8 10; do
    : >"$root/t"
    for _ in $(seq "$runs"); do
        m=$(first_frame "$host" --model "$model")
        b=$(first_frame "$base" --model "$model")
        e=$(first_frame "$host" --edit --model "$model" --page 1)
        echo "$m $b $e" >>"$root/t"
    done
    m=$(cut -d' ' -f1 "$root/t" | median); b=$(cut -d' ' -f2 "$root/t" | median)
    e=$(cut -d' ' -f3 "$root/t" | median)
    rb=$(awk '{print $1/$2}' "$root/t" | median); re=$(awk '{print $1/$3}' "$root/t" | median)
    awk -v n="$model" -v m="$m" -v b="$b" -v e="$e" -v rb="$rb" -v re="$re" -v r="$runs" \
        'BEGIN { printf "GT-%s: main window %.1f ms, base %.1f ms (%.2fx), editor %.1f ms (%.2fx) (medians of %d)\n", n, m/1000, b/1000, rb, e/1000, re, r }'
done
