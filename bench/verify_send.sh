#!/usr/bin/env bash
# Verify after send, against ferrule-device on a JACK server of its own (dummy driver): a whole
# GT-10 `--transmit --verify`, the read-back's time against the wire time of its requests and
# answers at 31,250 baud (target at most 1.10x), and a plain --request of the same ranges in the
# same run for comparison.
# Usage: bench/verify_send.sh [build-dir] [runs] [jack-period-frames]
set -euo pipefail
build=${1:-build}
runs=${2:-3}
period=${3:-256}
source "$(dirname "$0")/jack_common.sh"
echo "GT-10, $runs runs"
"$device" --model 10 >"$root/device.log" 2>&1 &
dev=$!
until grep -q ready "$root/device.log"; do sleep 0.05; done
port=ferrule-device
for run in $(seq "$runs"); do
    out=$("$host" --model 10 --transmit --verify --gap 0 --midi-out $port --midi-in $port 2>/dev/null)
    line=$(echo "$out" | grep '^verified')
    took=$(echo "$line" | sed -n 's/.*, in \([0-9.]*\) ms.*/\1/p')
    wire=$(echo "$line" | sed -n 's/.*wire time \([0-9.]*\) ms.*/\1/p')
    req=$("$host" --model 10 --request --midi-in $port --midi-out $port --export "$root/r.syx" 2>/dev/null)
    rtook=$(echo "$req" | sed -n 's/.* in \([0-9.]*\) ms.*/\1/p')
    rwire=$(echo "$req" | sed -n 's/.*wire time \([0-9.]*\) ms.*/\1/p')
    awk -v t="$took" -v w="$wire" -v rt="$rtook" -v rw="$rwire" -v n="$run" \
        'BEGIN { printf "run %d: verify %.1f ms against wire time %.1f ms: %.3fx; --request of the same ranges %.1f ms against %.1f ms: %.3fx\n", n, t, w, t / w, rt, rw, rt / rw }'
done
kill $dev; wait $dev 2>/dev/null || true
