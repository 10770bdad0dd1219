#!/usr/bin/env bash
# Coverage-guided fuzzing of the loaders that take bytes from outside: .syx files, data files
# (raw images), settings files, the MIDI input through the dump receiver and settings texts.
#
#   scripts/fuzz.sh SECONDS [TARGET...]
#
# Builds the fuzz targets with clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer
# in build-fuzz/, then runs each for SECONDS, starting from the inputs in fuzz/corpus/ and what
# earlier runs found (out/fuzz/TARGET/corpus/). Fails on a crash, a broken law, a sanitizer
# report, a leak or an input that takes longer than FUZZ_INPUT_TIMEOUT seconds (default 10); the
# input is kept as out/fuzz/TARGET/crash-* (or leak-*, timeout-*) and the log as
# out/fuzz/TARGET/log.txt. Prints each target's figures at the end.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:?usage: scripts/fuzz.sh SECONDS [TARGET...]}
shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] ||
    targets=(syx_file_fuzzer data_file_fuzzer ini_file_fuzzer midi_input_fuzzer text_file_fuzzer)
input_timeout=${FUZZ_INPUT_TIMEOUT:-10}

# clang with libFuzzer and the sanitizers' run-time, and the symbolizer for readable reports.
scripts/deps.sh clang libclang-rt-14-dev llvm

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DFERRULE_FUZZ=ON -DFERRULE_WERROR=ON -DFERRULE_TESTS=OFF -DFERRULE_BENCH=OFF \
    "${launcher[@]}" >/dev/null
cmake --build build-fuzz -j "$(nproc)" --target "${targets[@]}"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export QT_QPA_PLATFORM=offscreen
failed=()
summary=()
for t in "${targets[@]}"; do
    work=out/fuzz/$t
    mkdir -p "$work/corpus"
    rm -f "$work"/crash-* "$work"/leak-* "$work"/timeout-* "$work"/oom-*
    echo "== $t: $seconds s"
    status=0
    # A target's dictionary: the words of its input format.
    dict=()
    [ -f "fuzz/$t.dict" ] && dict=(-dict="fuzz/$t.dict")
    # New inputs go to the first folder; the committed starting inputs stay as they are.
    build-fuzz/fuzz/$t -max_total_time="$seconds" -timeout="$input_timeout" -detect_leaks=1 \
        -print_final_stats=1 "${dict[@]}" -artifact_prefix="$work/" "$work/corpus" "fuzz/corpus/$t" \
        >"$work/log.txt" 2>&1 || status=$?
    done_line=$(grep -E '^#[0-9]+[[:space:]]+DONE' "$work/log.txt" | tail -1 || true)
    if [ $status -ne 0 ]; then
        failed+=("$t")
        echo "FAILED: $t (exit $status); input and log kept in $work/:"
        ls "$work" | grep -E '^(crash|leak|timeout|oom)-' || true
        grep -E 'ERROR:|law broken|runtime error|SUMMARY' "$work/log.txt" | head -5 || true
    fi
    summary+=("$(printf '%-20s %s' "$t" "${done_line:-(no final figures)}")")
done

echo "== Figures (cov: edges, ft: features, corp: inputs/bytes, exec/s)"
printf '%s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing failed: ${failed[*]}"
    exit 1
fi
echo "fuzzing passed: ${#targets[@]} targets, $seconds s each"
