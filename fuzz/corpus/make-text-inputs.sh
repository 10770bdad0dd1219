#!/usr/bin/env bash
# Writes the starting inputs of text_file_fuzzer with ferrule-host itself:
#
#   fuzz/corpus/make-text-inputs.sh [FERRULE_HOST]   (default build/bin/ferrule-host)
#
# For every model the text of the default data and of an edited image, a GT-10 text of two
# settings in one byte, then texts with one fault each, made from the GT-10's edited text and checked to be refused for that fault.
set -euo pipefail
# The program's path is taken as given, from where the script was started.
host=$(realpath "${1:-$(dirname "$0")/../../build/bin/ferrule-host}")
cd "$(dirname "$0")"
out=text_file_fuzzer
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen
mkdir -p "$out"

# Every byte the default raw image has, one up (7-bit, so any byte sent can hold it); an
# edited image holds a dozen settings and three bytes of that, picked at random.
perl -0777 -pe 's/(.)/chr((ord($1) + 1) % 128)/gse' data_file_fuzzer/default-image.bin \
    >"$work/changed.bin"
for m in 3 5 6 8 10; do
    "$host" --model "$m" --export "$out/gt$m-default.txt" >/dev/null
    "$host" --model "$m" --data "$work/changed.bin" --export "$work/changed.txt" >/dev/null
    { echo "# Model: GT-$m"
      awk -v start="$m" 'BEGIN { srand(start) }
          /^#|^$/ { next }
          /^Address/ { bytes[nb++] = $0; next }
          { settings[ns++] = $0 }
          END { for (i = 0; i < ns; i++) if (rand() * ns < 12) print settings[i]
                for (i = 0; i < nb; i++) if (rand() * nb < 3) print bytes[i] }' "$work/changed.txt"
    } >"$work/edited.txt"
    "$host" --model "$m" --data "$work/edited.txt" --export "$out/gt$m-edited.txt" >/dev/null \
        2>&1
done

# One byte that two settings share, the GT-10's "USB Driver" in "EXP Pedal 2 (external) / Min",
# at a value of both: the text lists both.
echo -e '# Model: GT-10\nEXP / EXP Pedal 2 (external) / Min = 1' >"$work/edited.txt"
"$host" --model 10 --data "$work/edited.txt" --export "$out/gt10-shared-byte.txt" >/dev/null
grep -q '^System / System / USB Driver = Advanced$' "$out/gt10-shared-byte.txt"

# refused NAME EXPECTED: the text in $work/bad.txt is refused with EXPECTED in its one line.
refused() {
    local why
    if why=$("$host" --model 10 --data "$work/bad.txt" --export "$work/x.syx" 2>&1); then
        echo "$1: was not refused" >&2
        return 1
    fi
    grep -q -- "$2" <<<"$why" || { echo "$1: refused otherwise: $why" >&2; return 1; }
    cp "$work/bad.txt" "$out/$1"
}
edited=$out/gt10-edited.txt
settings=$(grep -n -v -e '^#' -e '^$' -e '^Address' "$edited" | cut -d: -f1)
first=$(head -1 <<<"$settings")
sed "${first}s/ = / x = /" "$edited" >"$work/bad.txt"
refused unknown-name.txt 'unknown setting'
{ cat "$edited"; sed -n "${first}p" "$edited"; } >"$work/bad.txt"
refused set-twice.txt 'is set again'
sed "${first}s/ = / /" "$edited" >"$work/bad.txt"
refused no-equals.txt 'is not "Page / Heading / Caption'
for n in $settings; do
    sed -E "${n}s/= .*/= 300/" "$edited" >"$work/bad.txt"
    refused too-big.txt 'does not fit in the one 7-bit byte' 2>/dev/null && break
done
[ -f "$out/too-big.txt" ] || { echo "no setting of one 7-bit byte to put 300 into" >&2; exit 1; }
ls -l "$out"
