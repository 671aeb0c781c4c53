#!/bin/sh
# Builds the instrument file reader's fuzzer with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer into build-fuzz/, then fuzzes it for SECONDS
# (default 60), starting from the good and broken files of the file tests.
# A crash, a leak or any sanitizer report fails the run.
#
#     sh tools/fuzz.sh [SECONDS]
set -eu
cd "$(dirname "$0")/.."
seconds="${1:-60}"
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSANITIZE=asan -DOX_FUZZ=ON -DBUILD_BENCHMARKS=OFF >/dev/null
cmake --build build-fuzz --target fuzz_instrument_file -j"$(nproc)"
# New inputs collect in the first folder, which later runs start from too.
mkdir -p build-fuzz/corpus
build-fuzz/fuzz/fuzz_instrument_file -max_total_time="$seconds" -print_final_stats=1 \
    -artifact_prefix=build-fuzz/ \
    build-fuzz/corpus tests/file/fixtures
