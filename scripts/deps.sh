#!/usr/bin/env bash
# Installs the Debian packages Ferrule needs to build, test and run, when they are missing.
set -euo pipefail

packages=(build-essential cmake ninja-build pkg-config qt6-base-dev libgl-dev libgtest-dev
          libbenchmark-dev librtmidi-dev fonts-dejavu-core xvfb xdotool)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
