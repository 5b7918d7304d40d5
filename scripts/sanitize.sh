#!/usr/bin/env bash
# Builds the core and its tests with the address and undefined-behaviour sanitizers in
# their own tree and runs the core tests there. The window and its tests stay out, to
# keep the stage short.
set -euo pipefail
cd "$(dirname "$0")/.."

tree=${TVK_SANITIZE_DIR:-build-sanitize}
flags="-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer"
cmake -S . -B "$tree" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
    -DTVK_BUILD_GUI=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
nice cmake --build "$tree" --target tvk_tests tvk
# The tests run tvk from the same tree; leaks at exit are not what this stage looks for.
ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 "$tree/tests/tvk_tests" --gtest_brief=1
