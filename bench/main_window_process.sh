#!/usr/bin/env bash
# Whole-process wall time of `ferrule-host --main-screenshot` (the main window rendered headless)
# against `--screenshot` (the editor) for each model, runs alternating, medians and their ratio.
# Usage: bench/main_window_process.sh [build-dir] [runs]
set -euo pipefail
# shellcheck source=process_common.sh
source "$(dirname "$0")/process_common.sh"
race_per_model --main-screenshot m.png --screenshot e.png
