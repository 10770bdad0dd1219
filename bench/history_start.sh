#!/usr/bin/env bash
# The main window's start with a full history against an empty one: `--main-screenshot` of the
# GT-10 with 200 snapshots in the data folder and with none, runs alternating; medians of the
# wall time and of the CPU time (user + system, to 10 ms).
# Usage: bench/history_start.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
mkdir -p "$root/empty" "$root/full/ferrule-host/history"
history="$root/full/ferrule-host/history"
"$host" --model 10 --export "$root/x.syx" >/dev/null
for i in $(seq 100 299); do
    name="$history/20261124T101${i}000-gt10-sent"
    cp "$root/x.syx" "$name.syx"
    echo "GT-10 MIDI 1" >"$name.ports"
done
# Wall and CPU milliseconds of one run.
ms() { /usr/bin/time -f "%e %U %S" "$@" 2>&1 >/dev/null | tail -1 |
    awk '{ printf "%d %d\n", $1 * 1000, ($2 + $3) * 1000 }'; }
: >"$root/e"; : >"$root/f"
for _ in $(seq "$runs"); do
    XDG_DATA_HOME="$root/empty" ms "$host" --model 10 --main-screenshot "$root/m.png" >>"$root/e"
    XDG_DATA_HOME="$root/full" ms "$host" --model 10 --main-screenshot "$root/m.png" >>"$root/f"
done
for n in e f; do
    label=$([ "$n" = e ] && echo "empty history" || echo "200 snapshots")
    echo "$label: wall $(cut -d' ' -f1 "$root/$n" | median) ms, CPU $(cut -d' ' -f2 "$root/$n" | median) ms (medians of $runs)"
done
