#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --diff` of two GT-10 .syx files (random data, so
# nearly every setting differs and has its line) against `--screenshot` of the GT-10, runs
# alternating, medians and their ratio.
# Usage: bench/diff_process.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
for side in a b; do
    head -c 43252 /dev/urandom | LC_ALL=C tr '\200-\377' '\000-\177' >"$root/$side.bin"
    "$host" --model 10 --data "$root/$side.bin" --export "$root/$side.syx" >/dev/null
done
# --diff exits 1 when something differs, as here.
diff_run() { "$host" --model 10 --data "$root/a.syx" --diff "$root/b.syx" || [ $? -eq 1 ]; }
lines=$("$host" --model 10 --data "$root/a.syx" --diff "$root/b.syx" 2>/dev/null | wc -l || true)
: >"$root/diff"; : >"$root/shot"
diff_run >/dev/null 2>&1 # warm-up
for _ in $(seq "$runs"); do
    us diff_run >>"$root/diff"
    us "$host" --model 10 --screenshot "$root/x.png" >>"$root/shot"
done
d=$(median <"$root/diff"); s=$(median <"$root/shot")
awk -v d="$d" -v s="$s" -v n="$runs" -v l="$lines" \
    'BEGIN { printf "GT-10: --diff %.1f ms (%d lines), --screenshot %.1f ms, ratio %.2f (medians of %d)\n", d/1000, l, s/1000, d/s, n }'
