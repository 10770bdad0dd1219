#!/usr/bin/env bash
# Start to first rendered frame, whole process: `ferrule-host --edit --screenshot` on page 1 of
# each model against two stock Qt dialogs of the editor's fixed size (612x520), shown, grabbed
# and saved as PNG the same way: the peer, with the same widget kinds and counts as the page
# (counted from `--describe`), and the floor, the empty dialog. The three alternate run by run;
# the medians of wall time, CPU time and peak RSS are printed with the medians of the run-by-run
# ratios.
# Then the first frame in a real X window (Xvfb): from the start of the process to the end of
# the first paint of the editor (of the peer, of the floor), as each prints it when
# FERRULE_FIRST_FRAME is set. Measured processes run at nice -5 when allowed.
# Last, with valgrind, the instructions of one offscreen run of each, which a busy machine does
# not blur, and of the peer drawing its texts in the page's seven sizes and weights
# (--page-fonts): the part of the difference that is the fonts; then the same counts from exec
# to the first frame in the X window (FERRULE_FIRST_FRAME=exit ends each process there).
# Needs python3 (to count the widgets) and Xvfb. Usage: bench/start_vs_peer.sh [build] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
peer="$build/bin/ferrule_stock_peer"

# "median-of-a median-of-b median-of-a/b median-of-c median-of-a/c" of columns a, b, c.
ratios() {
    local a b c
    a=$(cut -d' ' -f1 "$1" | median); b=$(cut -d' ' -f2 "$1" | median)
    c=$(cut -d' ' -f3 "$1" | median)
    echo "$a $b $(awk '{print $1/$2}' "$1" | median) $c $(awk '{print $1/$3}' "$1" | median)"
}

declare -A counts
for model in 3 5 6 8 10; do
    counts[$model]=$("$host" --edit --model "$model" --page 1 --describe 2>/dev/null | python3 -c '
import json, sys, collections
d = json.load(sys.stdin)
c = collections.Counter(x.get("kind") for x in d["controls"])
groups = ",".join(str(x["itemCount"]) for x in d["controls"] if x.get("kind") == "options")
tabs = sum(1 for b in d["buttons"] if b.get("name", "").startswith("Tab"))
print("--knobs %d --sliders %d --switches %d --headings %d --groups %s --buttons 9 --tabs %d"
      % (c["knob"], c["slider"], c["switch"], c["heading"], groups, max(tabs, 1)))')
done

echo "Start to PNG, offscreen (medians of $runs alternating runs):"
for model in 3 5 6 8 10; do
    : >"$root/t"; : >"$root/c"; : >"$root/m"
    for _ in $(seq "$runs"); do
        read -r ht hc hm < <(measure "$host" --edit --model "$model" --page 1 --screenshot "$root/h.png")
        # shellcheck disable=SC2086
        read -r pt pc pm < <(measure "$peer" ${counts[$model]} --screenshot "$root/p.png")
        read -r ft fc fm < <(measure "$peer" --empty --screenshot "$root/f.png")
        echo "$ht $pt $ft" >>"$root/t"; echo "$hc $pc $fc" >>"$root/c"; echo "$hm $pm $fm" >>"$root/m"
    done
    read -r h p rp f rf < <(ratios "$root/t")
    read -r hc pc rpc fc rfc < <(ratios "$root/c")
    read -r hm pm rm _ _ < <(ratios "$root/m")
    awk -v n="$model" -v h="$h" -v p="$p" -v rp="$rp" -v f="$f" -v rf="$rf" -v hc="$hc" \
        -v pc="$pc" -v rpc="$rpc" -v fc="$fc" -v rfc="$rfc" -v hm="$hm" -v pm="$pm" -v rm="$rm" \
        -v c="${counts[$model]}" \
        'BEGIN { printf "GT-%s: wall: editor %.1f ms, peer %.1f ms (%.2fx), floor %.1f ms (%.2fx); CPU: editor %.1f ms, peer %.1f ms (%.2fx), floor %.1f ms (%.2fx); peak RSS %.1f vs %.1f MB (%.2fx)   [%s]\n",
                 n, h/1000, p/1000, rp, f/1000, rf, hc/1000, pc/1000, rpc, fc/1000, rfc, hm/1024, pm/1024, rm, c }'
done

start_xvfb
echo "First frame in an X window (Xvfb), start of the process to the end of the first paint:"
for model in 3 5 6 8 10; do
    : >"$root/t"
    for _ in $(seq "$runs"); do
        ht=$(first_frame "$host" --edit --model "$model" --page 1)
        # shellcheck disable=SC2086
        pt=$(first_frame "$peer" ${counts[$model]})
        ft=$(first_frame "$peer" --empty)
        echo "$ht $pt $ft" >>"$root/t"
    done
    read -r h p rp f rf < <(ratios "$root/t")
    awk -v n="$model" -v h="$h" -v p="$p" -v rp="$rp" -v f="$f" -v rf="$rf" \
        'BEGIN { printf "GT-%s: editor %.1f ms, peer %.1f ms (%.2fx), floor %.1f ms (%.2fx)\n",
                 n, h/1000, p/1000, rp, f/1000, rf }'
done

# One model's instruction counts and their ratios: counts_line MODEL EDITOR PEER PEER-IN-FONTS
# FLOOR-NAME FLOOR.
counts_line() {
    awk -v n="$1" -v h="$2" -v p="$3" -v pf="$4" -v fn="$5" -v f="$6" \
        'BEGIN { printf "GT-%s: editor %.1f M, peer %.1f M (%.3fx), peer in the page'"'"'s fonts %.1f M (%.3fx), %s %.1f M (%.3fx)\n", n, h/1e6, p/1e6, h/p, pf/1e6, h/pf, fn, f/1e6, h/f }'
}

command -v valgrind >/dev/null || exit 0
echo "Instructions of one offscreen run to PNG (valgrind's callgrind):"
for model in 3 5 6 8 10; do
    h=$(instructions "$host" --edit --model "$model" --page 1 --screenshot "$root/h.png")
    # shellcheck disable=SC2086
    p=$(instructions "$peer" ${counts[$model]} --screenshot "$root/p.png")
    # shellcheck disable=SC2086
    pf=$(instructions "$peer" ${counts[$model]} --page-fonts --screenshot "$root/p.png")
    f=$(instructions "$peer" --empty --screenshot "$root/f.png")
    counts_line "$model" "$h" "$p" "$pf" floor "$f"
done
echo "Instructions from exec to the first frame in an X window (Xvfb):"
for model in 3 5 6 8 10; do
    read -r h p pf f < <(
        export FERRULE_FIRST_FRAME=exit QT_QPA_PLATFORM=xcb
        # shellcheck disable=SC2086
        echo "$(instructions "$host" --edit --model "$model" --page 1)" \
            "$(instructions "$peer" ${counts[$model]})" \
            "$(instructions "$peer" ${counts[$model]} --page-fonts)" \
            "$(instructions "$peer" --empty)"
    )
    counts_line "$model" "$h" "$p" "$pf" "empty dialog, which draws no text," "$f"
done
