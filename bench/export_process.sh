#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --export` (no window) against `--screenshot` (the
# editor rendered headless) for each model, runs alternating, medians and their ratio.
# Usage: bench/export_process.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
race_per_model --export x.syx --screenshot x.png
