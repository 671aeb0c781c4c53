#!/bin/sh
# Sets up, builds and runs every test: the whole suite in build/, the core
# tests again under AddressSanitizer and UndefinedBehaviorSanitizer in
# build-asan/, the thread tests under ThreadSanitizer in build-tsan/, and the
# file readers under libFuzzer. The sanitizer builds hold only the test
# programs they run, no benchmarks.
set -eu
cd "$(dirname "$0")/.."
jobs="$(nproc)"
sh tools/build.sh
export OX_SOURCE_DIR="$PWD"

# The core tests under ASan and UBSan (with clang: also the integer checks).
core="test_song test_engine test_sound test_editing test_file test_ui test_midi_input test_midi_clock
      test_link_grid"
CC=clang CXX=clang++ cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSANITIZE=asan -DBUILD_BENCHMARKS=OFF >/dev/null
# shellcheck disable=SC2086
cmake --build build-asan --target $core -j"$jobs"
for t in $core; do
    echo "== $t under ASan and UBSan"
    "build-asan/tests/$t" --gtest_brief=1
done

# The tests where the GUI side and the audio side run at once, under TSan.
CC=clang CXX=clang++ cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSANITIZE=tsan -DBUILD_BENCHMARKS=OFF >/dev/null
cmake --build build-tsan --target test_sound -j"$jobs"
echo "== thread tests under TSan"
TSAN_OPTIONS=halt_on_error=1 build-tsan/tests/test_sound --gtest_brief=1 \
    --gtest_filter='HandOff.*:EngineLock.*:*CatchUp*'

# The instrument file and wave file readers under libFuzzer and the
# sanitizers, for a minute in all.
sh tools/fuzz.sh 60
ctest --test-dir build --output-on-failure -j"$jobs"
