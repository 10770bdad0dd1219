#!/usr/bin/env bash
# A paced GT-10 transmission through ferrule-host: its wall time against the messages' wire
# time (31,250 baud) plus the gaps. Usage: bench/transmit_paced.sh [build-dir] [model] [gap-ms]
set -euo pipefail
build=${1:-build}
model=${2:-10}
gap=${3:-20}
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root" \
    XDG_DATA_HOME="$root"
out=$("$build/bin/ferrule-host" --model "$model" --transmit --gap "$gap" --syx "$root/out.syx")
echo "$out"
expected=$(echo "$out" | sed -n 's/.*= \([0-9.]*\) ms;.*/\1/p')
took=$(echo "$out" | sed -n 's/.*took \([0-9.]*\) ms.*/\1/p')
awk -v e="$expected" -v t="$took" 'BEGIN { printf "paced run / (wire time + gaps) = %.4f (%+.2f%%)\n", t / e, 100 * (t / e - 1) }'
