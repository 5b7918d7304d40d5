#!/usr/bin/env bash
# Builds the program, records the installation as the Windows installer would, and
# starts the window. When no stick is attached the demo stick image is used.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh
build=${TVK_BUILD_DIR:-build}

# The program folder holds the manual, the downloader and the trace log.
program_folder="$PWD/$build/program"
mkdir -p "$program_folder"
"$build/src/tvk" register --location "$program_folder"

exec "$build/src/ui/tavrin-file-manager" "$@"
