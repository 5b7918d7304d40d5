#!/usr/bin/env bash
# Makes the demo thumbdrive: a FAT32 image labelled "DEMO STICK" with a TAVRIN folder,
# filled with organ test files when tvk is built. Start the program or tvk with
# --drive-image FILE to use it as if a stick had been plugged in.
#
#   scripts/make-demo-stick.sh [--force] [--tvk PATH] [FILE]     (default build/demo-stick.img)
set -euo pipefail
cd "$(dirname "$0")/.."

force=0
tvk=""
image=""
while [ $# -gt 0 ]; do
    case "$1" in
        --force) force=1 ;;
        --tvk) shift; tvk="$1" ;;
        -h|--help) sed -n '2,6p' "$0"; exit 0 ;;
        *) image="$1" ;;
    esac
    shift
done
image=${image:-build/demo-stick.img}
if [ -z "$tvk" ]; then
    for candidate in "${TVK_BUILD_DIR:-build}/src/tvk" build/src/tvk; do
        if [ -x "$candidate" ]; then tvk=$candidate; break; fi
    done
fi

if [ -e "$image" ] && [ "$force" = 0 ]; then
    echo "Demo stick already there: $image (--force makes it again)"
    exit 0
fi
for tool in mkfs.fat mmd mcopy; do
    command -v "$tool" >/dev/null || { echo "make-demo-stick: $tool is missing (scripts/deps.sh installs it)" >&2; exit 1; }
done

mkdir -p "$(dirname "$image")"
rm -f "$image"
# 128 MB sparse: FAT32 wants at least 64 MB to sit well with the FUSE driver, and only
# the file tables take real space. A fixed serial number keeps the demo's mirror folder
# name ("DEMO STICK - 2021ABCD") the same from one build to the next.
truncate -s 128M "$image"
mkfs.fat -F 32 -n "DEMO STICK" -i 2021ABCD "$image" >/dev/null
export MTOOLS_SKIP_CHECK=1
mmd -i "$image" ::TAVRIN

if [ -n "$tvk" ]; then
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    "$tvk" make-files "$scratch" --presets 5 --songs 3 --seed 2021 >/dev/null
    for f in "$scratch"/*/*; do
        mcopy -i "$image" "$f" ::TAVRIN/
    done
    echo "Demo stick made: $image ($(ls "$scratch"/*/ | wc -l) organ files in TAVRIN)"
else
    echo "Demo stick made: $image (empty TAVRIN folder; build tvk to fill it)"
fi
