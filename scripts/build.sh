#!/usr/bin/env bash
# Installs what is missing and builds everything into ${TVK_BUILD_DIR:-build}.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

build=${TVK_BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
