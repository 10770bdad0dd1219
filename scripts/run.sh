#!/usr/bin/env bash
# Builds Ferrule and starts ferrule-host on its embedded default data. Without a display it
# renders the editor to a PNG instead and says where it wrote it. Extra arguments go to the
# host (for example: scripts/run.sh --model 8).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target ferrule-host Ferrule

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec build/bin/ferrule-host "$@"
fi
mkdir -p out
echo "No display: rendering the editor instead of opening it."
build/bin/ferrule-host --screenshot out/ferrule.png "$@"
echo "Open $(pwd)/out/ferrule.png to see it."
