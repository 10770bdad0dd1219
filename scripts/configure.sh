#!/usr/bin/env bash
# Configures the normal build tree `build`, as scripts/test.sh and scripts/package.sh use it:
# RelWithDebInfo, warnings as errors, installed under /usr, the layout the Debian package has
# (the host finds the plug-in relative to its own binary, so the layout is compiled in).
set -euo pipefail
cd "$(dirname "$0")/.."

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFERRULE_WERROR=ON \
      -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
