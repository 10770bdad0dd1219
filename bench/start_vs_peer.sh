#!/usr/bin/env bash
# Start to first rendered frame, whole process: `ferrule-host --edit --screenshot` on page 1 of
# each model against a stock Qt window with the same widget kinds and counts (counted from
# `--describe`), rendered the same way. Runs alternate; medians of wall time and peak RSS, and
# their ratios. Needs python3 to count the widgets. Usage: bench/start_vs_peer.sh [build] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
peer="$build/bin/ferrule_stock_peer"
# Wall time (microseconds) and peak RSS (kilobytes) of one run.
measure() {
    local s e rss
    s=$(date +%s%N)
    /usr/bin/time -f %M -o "$root/rss" "$@" >/dev/null 2>&1
    rss=$(tail -1 "$root/rss")
    e=$(date +%s%N)
    echo "$(( (e - s) / 1000 )) $rss"
}
for model in 3 5 6 8 10; do
    counts=$("$host" --edit --model "$model" --page 1 --describe 2>/dev/null | python3 -c '
import json, sys, collections
d = json.load(sys.stdin)
c = collections.Counter(x.get("kind") for x in d["controls"])
groups = ",".join(str(x["itemCount"]) for x in d["controls"] if x.get("kind") == "options")
tabs = sum(1 for b in d["buttons"] if b.get("name", "").startswith("Tab"))
print("--knobs %d --sliders %d --switches %d --headings %d --groups %s --buttons 9 --tabs %d"
      % (c["knob"], c["slider"], c["switch"], c["heading"], groups, max(tabs, 1)))')
    : >"$root/ht"; : >"$root/hm"; : >"$root/pt"; : >"$root/pm"
    for _ in $(seq "$runs"); do
        read -r t m < <(measure "$host" --edit --model "$model" --page 1 --screenshot "$root/h.png")
        echo "$t" >>"$root/ht"; echo "$m" >>"$root/hm"
        # shellcheck disable=SC2086
        read -r t m < <(measure "$peer" $counts --screenshot "$root/p.png")
        echo "$t" >>"$root/pt"; echo "$m" >>"$root/pm"
    done
    awk -v n="$model" -v ht="$(median <"$root/ht")" -v pt="$(median <"$root/pt")" \
        -v hm="$(median <"$root/hm")" -v pm="$(median <"$root/pm")" -v c="$counts" \
        'BEGIN { printf "GT-%s: start %.1f ms vs peer %.1f ms (%.2fx); peak RSS %.1f vs %.1f MB (%.2fx)   [%s]\n",
                 n, ht/1000, pt/1000, ht/pt, hm/1024, pm/1024, hm/pm, c }'
done
