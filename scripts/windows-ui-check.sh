#!/usr/bin/env bash
# Compiles every file of src/ui that the Windows build compiles (all but *_linux.cpp,
# main.cpp included) with the MinGW compiler, syntax only, against Debian's Qt 6 headers.
# Debian has no Qt for Windows to link with, so this is how the window's Windows-only
# code (DeviceWatch_win32.cpp, the _WIN32 branches) is compiled on every test run; the
# Windows runner's workflow builds and links it for real.
set -euo pipefail
cd "$(dirname "$0")/.."

cxx=x86_64-w64-mingw32-g++-posix
qt=$(pkg-config --variable=includedir Qt6Core)
flags=(-std=c++20 -fsyntax-only -Wall -Wextra -Wno-unused-parameter -Werror=return-type
    -DUNICODE -D_UNICODE -DWIN32_LEAN_AND_MEAN -DNOMINMAX -Isrc -isystem "$qt")
for module in QtCore QtGui QtWidgets QtNetwork QtMultimedia; do
    flags+=(-isystem "$qt/$module")
done

started=$SECONDS
files=$(find src/ui -name '*.cpp' ! -name '*_linux.cpp' | sort)
# One compiler per core; xargs fails when any of them does.
if printf '%s\n' $files | xargs -P "$(nproc)" -n 1 "$cxx" "${flags[@]}"; then
    echo "windows-ui-check: $(wc -w <<<"$files") files of src/ui compile for Windows ($((SECONDS - started)) s)"
else
    echo "windows-ui-check: FAILED" >&2
    exit 1
fi
