#!/bin/sh
# Installs every Debian package the project needs to build, run and test.
# Does nothing when all of them are present. Runs apt-get through sudo when
# not root, and never asks a question (jackd2 asks about real-time
# scheduling at install; the answer is left at its default).
set -eu

PACKAGES="
cmake g++ make pkg-config
qt6-base-dev libgl-dev libx11-dev libxi-dev
librtaudio-dev libasound2-dev librtmidi-dev
ableton-link-dev libasio-dev
jackd2 libjack-jackd2-dev
libgtest-dev libgmock-dev libbenchmark-dev
fonts-liberation fonts-dejavu-core fonts-dejavu-extra
xvfb xauth imagemagick xdotool libxtst-dev
clang libclang-rt-14-dev
"

missing=""
for p in $PACKAGES; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed"; then
        missing="$missing $p"
    fi
done

[ -z "$missing" ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    SUDO=""
else
    SUDO="sudo"
fi

echo "Installing:$missing"
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get update -q
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -q \
    -o Dpkg::Options::=--force-confdef -o Dpkg::Options::=--force-confold \
    $missing
