#!/usr/bin/env bash
# The work up to the first frame in a real X window (Xvfb), counted in instructions (valgrind's
# callgrind), which hardly depends on how busy the machine is: this build's main window against
# the base build's main window and against this build's editor, for each model, with the ratios.
# Each process ends at its first frame (FERRULE_FIRST_FRAME=exit).
# Needs valgrind and Xvfb. Usage: bench/first_frame_instructions.sh base-build [build-dir]
set -euo pipefail
base="$1/bin/ferrule-host"
shift
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh" "$@"
start_xvfb
export FERRULE_FIRST_FRAME=exit QT_QPA_PLATFORM=xcb
echo "Instructions up to the first frame in an X window (Xvfb):"
for model in 3 5 6 8 10; do
    m=$(instructions "$host" --model "$model")
    b=$(instructions "$base" --model "$model")
    e=$(instructions "$host" --edit --model "$model" --page 1)
    awk -v n="$model" -v m="$m" -v b="$b" -v e="$e" \
        'BEGIN { printf "GT-%s: main window %.1f M, base %.1f M (%.3fx), editor %.1f M (%.3fx)\n", n, m/1e6, b/1e6, m/b, e/1e6, m/e }'
done
