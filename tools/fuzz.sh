#!/bin/sh
# Builds the fuzzers of the two file readers (instrument files and wave files)
# and of the MIDI parser and map text with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer into build-fuzz/, then fuzzes each for a third of
# SECONDS (default 60): the instrument reader from the good and broken files
# of the file tests, the wave reader from the bundled kit, the MIDI side from
# nothing. A crash, a leak or any sanitizer report fails the run.
#
#     sh tools/fuzz.sh [SECONDS]
set -eu
cd "$(dirname "$0")/.."
seconds="${1:-60}"
third=$((seconds / 3 > 0 ? seconds / 3 : 1))
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSANITIZE=asan -DOX_FUZZ=ON -DBUILD_BENCHMARKS=OFF >/dev/null
cmake --build build-fuzz --target fuzz_instrument_file fuzz_wave_file fuzz_midi -j"$(nproc)"
# New inputs collect in each target's first folder, which later runs start from too.
mkdir -p build-fuzz/corpus build-fuzz/corpus-wave build-fuzz/corpus-midi
build-fuzz/fuzz/fuzz_instrument_file -max_total_time="$third" -print_final_stats=1 \
    -artifact_prefix=build-fuzz/ \
    build-fuzz/corpus tests/file/fixtures
# The kit's sounds are cut to their first 4 KiB: their headers then claim more
# data than they hold, the case the reader must refuse cheaply.
build-fuzz/fuzz/fuzz_wave_file -max_total_time="$third" -max_len=4096 -print_final_stats=1 \
    -artifact_prefix=build-fuzz/wave- \
    build-fuzz/corpus-wave resources/sounds
build-fuzz/fuzz/fuzz_midi -max_total_time="$third" -print_final_stats=1 \
    -artifact_prefix=build-fuzz/midi- build-fuzz/corpus-midi
