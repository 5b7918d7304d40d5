#!/usr/bin/env bash
# Builds the window and tvk (not the tests), records the installation as the Windows
# installer would, and starts the window. When no stick is attached the demo stick image
# is used instead. Without a display it stops before building and says how to get one.
set -euo pipefail
cd "$(dirname "$0")/.."

# The window needs a display; Qt would otherwise end in a core dump.
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    cat >&2 <<'TEXT'
run.sh: no display found (DISPLAY and WAYLAND_DISPLAY are not set), so the window cannot open.
Start it from a desktop session, or under a virtual display:
    xvfb-run -a scripts/run.sh
(xvfb-run comes with the "xvfb" package, which scripts/deps.sh installs.)
TEXT
    exit 2
fi

scripts/deps.sh
build=${TVK_BUILD_DIR:-build}
if [ ! -x "$build/src/ui/tavrin-file-manager" ]; then
    echo "First build of the window: some minutes (about half of a full build with the tests); later runs rebuild only what changed."
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" --target tavrin-file-manager tvk tvk_manual

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
