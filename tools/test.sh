#!/bin/sh
# Sets up, builds and runs every test.
set -eu
cd "$(dirname "$0")/.."
sh tools/build.sh
# The instrument file reader under libFuzzer and the sanitizers, for a minute.
sh tools/fuzz.sh 60
ctest --test-dir build --output-on-failure -j"$(nproc)"
