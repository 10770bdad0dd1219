#!/usr/bin/env bash
# Reading a device over MIDI, against ferrule-device on a JACK server of its own (dummy driver):
# - --request of the GT-10 and GT-8: wall time against the wire time of every request and
#   answer at 31,250 baud (the host's own figures, and the whole process);
# - --receive of a dump started on the device: how long after the device's last message left
#   the host has ended.
# Usage: bench/device_read.sh [build-dir] [jack-period-frames]
set -euo pipefail
build=${1:-build}
period=${2:-256}
root=$(mktemp -d)
export JACK_DEFAULT_SERVER="ferrule-bench-$$" JACK_NO_AUDIO_RESERVATION=1
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root" \
    XDG_DATA_HOME="$root"
jackd -n "$JACK_DEFAULT_SERVER" --no-realtime --sync -d dummy -r 48000 -p "$period" >"$root/jackd.log" 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null; rm -rf "$root"' EXIT
jack_wait -w -t 10 >/dev/null
echo "JACK dummy driver, 48 kHz, $period frames a period"
host="$build/bin/ferrule-host"
device="$build/bin/ferrule-device"

for model in 10 8; do
    "$device" --model "$model" >"$root/device.log" 2>&1 &
    dev=$!
    sleep 0.5
    start=$(date +%s%N)
    out=$("$host" --model "$model" --request --midi-in ferrule-device --midi-out ferrule-device \
          --export "$root/backup.syx" 2>/dev/null)
    end=$(date +%s%N)
    kill $dev; wait $dev 2>/dev/null || true
    took=$(echo "$out" | sed -n 's/.* in \([0-9.]*\) ms.*/\1/p')
    wire=$(echo "$out" | sed -n 's/.*wire time \([0-9.]*\) ms.*/\1/p')
    awk -v m="$model" -v t="$took" -v w="$wire" -v p=$(( (end - start) / 1000000 )) -v o="$out" \
        'BEGIN { printf "GT-%s --request: %s\n  requests and answers %.1f ms against wire time %.1f ms: %.3fx; whole process %d ms: %.3fx\n", m, o, t, w, t / w, p, p / w }'
done

for model in 10 8 3; do
    "$device" --model "$model" >"$root/device.log" 2>&1 &
    dev=$!
    sleep 0.5
    "$host" --model "$model" --receive --midi-in ferrule-device --export "$root/dump.syx" \
        >"$root/host.out" 2>"$root/host.err" &
    h=$!
    until grep -q "waiting for" "$root/host.err"; do sleep 0.01; done
    kill -USR1 $dev
    wait $h
    end=$(date +%s%N)
    kill $dev; wait $dev 2>/dev/null || true
    last=$(sed -n 's/.*last message left at \([0-9]*\) ns.*/\1/p' "$root/device.log" | tail -1)
    echo "GT-$model --receive: $(cat "$root/host.out")"
    echo "  the host had ended $(( (end - last) / 1000000 )) ms after the device's last message left"
done
