#!/usr/bin/env bash
# Retakes the window's pictures in docs/ (README and the user's manual use them) under a
# virtual display, on the demo stick and a library of its own made from it.
#
#   scripts/take-screenshots.sh            (needs a build of tvk and the window in build/)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${TVK_BUILD_DIR:-build}
window="$build/src/ui/tavrin-file-manager"
tvk="$build/src/tvk"
for tool in "$window" "$tvk"; do
    [ -x "$tool" ] || { echo "take-screenshots: build $tool first" >&2; exit 1; }
done
command -v xvfb-run >/dev/null || { echo "take-screenshots: xvfb-run is missing (scripts/deps.sh installs it)" >&2; exit 1; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch/home"
mkdir -p "$HOME" "$scratch/program"
stick="$scratch/demo-stick.img"
scripts/make-demo-stick.sh --tvk "$tvk" "$stick" >/dev/null
"$tvk" register --location "$scratch/program" >/dev/null
"$tvk" --yes add-all --drive-image "$stick" >/dev/null
"$tvk" --yes pool-presets --drive-image "$stick" >/dev/null

# Picture, then the menu item that opens its window (none: the main window).
shots=(
    "main-window.png:"
    "file-viewer.png:mnuOpen"
    "rename-presets.png:mnuEditRename"
    "search.png:mnuEditFind"
    "make-files.png:mnuMakeFiles"
    "preferences.png:mnuEditPrefs"
    "about.png:mnuHelpAbout"
)
for shot in "${shots[@]}"; do
    picture=${shot%%:*} control=${shot#*:}
    args=(--drive-image "$stick" --screenshot "$PWD/docs/$picture")
    [ -n "$control" ] && args+=(--screenshot-of "$control")
    rm -f "docs/$picture"
    xvfb-run -a "$window" "${args[@]}" >/dev/null 2>&1
    [ -s "docs/$picture" ] || { echo "take-screenshots: no picture from $control" >&2; exit 1; }
    echo "docs/$picture"
done
