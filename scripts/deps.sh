#!/usr/bin/env bash
# Installs the Debian packages Ferrule needs to build, test and run, when they are missing, and
# the packages named as arguments (what one script needs besides).
# JACK (jackd2 and its development package) goes in before or together with librtmidi-dev:
# otherwise apt satisfies RtMidi's JACK dependency with the other JACK, and installing jackd2
# later removes librtmidi-dev again. at-spi2-core and dbus-x11 are there as on a desktop: with
# them Qt starts a session bus and the accessibility bridge, and the tests meet what users have.
set -euo pipefail

packages=(build-essential cmake ninja-build pkg-config qt6-base-dev libgl-dev libgtest-dev
          libbenchmark-dev time jackd2 libjack-jackd2-dev librtmidi-dev fonts-dejavu-core xvfb xdotool
          at-spi2-core dbus-x11 "$@")
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    # jackd2 asks whether to enable real-time priority; the answer is not needed here.
    echo "jackd2 jackd/tweak_rt_limits boolean false" | $sudo debconf-set-selections 2>/dev/null || true
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        jackd2 libjack-jackd2-dev
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
