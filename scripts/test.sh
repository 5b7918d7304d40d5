#!/usr/bin/env bash
# Builds everything, cross-compiles the core, the Windows services and tvk.exe with
# MinGW, then runs every test. Ends with the CTest summary; fails when anything fails.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh
build=${TVK_BUILD_DIR:-build}
status=0

echo "== Windows cross-compile (MinGW) =="
cmake -S . -B "$build-mingw" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
    -DTVK_BUILD_GUI=OFF -DTVK_BUILD_TESTS=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
if cmake --build "$build-mingw" --target tvk; then
    echo "MinGW build of the core and tvk.exe: OK"
else
    echo "MinGW build FAILED"
    status=1
fi

echo "== Fuzzing (sanitized harnesses: corpus replay, then a few seconds each) =="
scripts/fuzz.sh --seconds 8 || status=1

echo "== Sanitizers (core tests under the address and undefined-behaviour checks) =="
scripts/sanitize.sh || status=1

echo "== Tests =="
(cd "$build" && ctest --output-on-failure -j "$(nproc)") || status=1
exit $status
