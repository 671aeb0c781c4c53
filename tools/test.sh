#!/bin/sh
# Sets up, builds and runs every test.
set -eu
cd "$(dirname "$0")/.."
sh tools/build.sh
ctest --test-dir build --output-on-failure -j"$(nproc)"
