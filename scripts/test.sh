#!/usr/bin/env bash
# Builds Ferrule and runs every test with ctest, twice: a normal build (with its Debian
# package, built and checked by scripts/package.sh), and a build with AddressSanitizer and
# UndefinedBehaviorSanitizer. Warnings are errors in both.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
jobs=$(nproc)
export QT_QPA_PLATFORM=offscreen

echo "== Normal build"
scripts/configure.sh
cmake --build build -j "$jobs"
# The Debian package, which a test unpacks and runs.
echo "== Debian package"
scripts/package.sh
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== AddressSanitizer and UndefinedBehaviorSanitizer build"
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DFERRULE_WERROR=ON -DFERRULE_SANITIZE=ON \
      -DFERRULE_BENCH=OFF >/dev/null
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -j "$jobs"
