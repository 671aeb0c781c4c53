#!/bin/sh
# Sets up the machine and builds the program, the tests and the benchmarks
# into build/.
set -eu
cd "$(dirname "$0")/.."
sh tools/setup.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$(nproc)"
