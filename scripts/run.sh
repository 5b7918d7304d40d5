#!/usr/bin/env bash
# Builds the program, records the installation as the Windows installer would, and
# starts the window. When no stick is attached the demo stick image is used instead.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh
build=${TVK_BUILD_DIR:-build}

# The program folder holds the manual, the downloader and the trace log.
program_folder="$PWD/$build/program"
mkdir -p "$program_folder"
"$build/src/tvk" register --location "$program_folder"

# A mounted removable or hot-plugged volume is a real stick; otherwise use the demo.
stick_attached() {
    lsblk -rno RM,HOTPLUG,MOUNTPOINT 2>/dev/null |
        awk '($1 == "1" || $2 == "1") && $3 != "" { found = 1 } END { exit !found }'
}
args=()
if ! stick_attached; then
    scripts/make-demo-stick.sh --tvk "$build/src/tvk" "$build/demo-stick.img"
    args=(--drive-image "$PWD/$build/demo-stick.img")
fi

exec "$build/src/ui/tavrin-file-manager" "${args[@]}" "$@"
