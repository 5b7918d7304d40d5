#!/usr/bin/env bash
# Times `tvk copy` over 1,500 presets both ways between a library folder and a FAT stick
# image mounted with fusefat, side by side with `cp` of the same files to the same place
# (the floor), and prints the figures and the ratio. The target is at most 1.3 times cp.
#
#   RIGHT  1,500 presets with readable names, library folder -> the stick's TAVRIN folder
#   LEFT   1,500 numbered presets, the stick's TAVRIN folder -> an empty library folder
#
# Both sides count the same work: mounting the image, copying, unmounting. Each run starts
# from a fresh copy of the image or an empty folder.
#
#   bench/copy_bench.sh            # builds Release into build-bench-copy, then runs
#   RUNS=5 bench/copy_bench.sh     # best of 5 instead of 3
set -euo pipefail
cd "$(dirname "$0")/.."
source bench/bench_lib.sh
bench_start copy 3

lib="$HOME/Documents/Tavrin File Manager"
mkdir -p "$lib"

# 1,500 presets: 250 of each family in two generated folders, then readable names.
make_presets "$work"
mkdir "$lib/Readable"
for folder in "$work"/FAKEPRFILES*; do
    "$tvk" copy --mode DIFF "$folder" "$lib/Readable" >/dev/null
done
count=$(find "$lib/Readable" -type f | wc -l)

# A 256 MB FAT32 stick with an empty TAVRIN folder, kept pristine for every run.
blank="$work/blank.img"
blank_stick "$blank" 256M BENCH 2021BEEF
stick="$work/stick.img"

mount_stick() {
    fusefat -o rw+ "$stick" "$mnt"
}
unmount_stick() {
    fusermount -u "$mnt"
}

cp_right() {
    mount_stick
    cp "$lib/Readable"/* "$mnt/TAVRIN/"
    unmount_stick
}
tvk_right() {
    "$tvk" copy --mode RIGHT --drive-image "$stick" "$lib/Readable" STICK </dev/null
}
cp_left() {
    mount_stick
    cp "$mnt/TAVRIN"/* "$lib/Left/"
    unmount_stick
}
tvk_left() {
    "$tvk" copy --mode LEFT --drive-image "$stick" STICK "$lib/Left" </dev/null
}

# Each run resets the destination first, outside the timing.
fresh_stick() { cp --sparse=always "$blank" "$stick"; }
numbered_stick() {
    fresh_stick
    tvk_right >/dev/null  # the numbered presets the LEFT runs read
    rm -rf "$lib/Left"
    mkdir "$lib/Left"
}
empty_left() {
    rm -rf "$lib/Left"
    mkdir "$lib/Left"
}

report() {
    local label=$1 tvk_us=$2 cp_us=$3
    awk -v l="$label" -v n="$count" -v t="$tvk_us" -v c="$cp_us" 'BEGIN {
        printf "%-6s %5d files   tvk copy %9.1f ms   cp %9.1f ms   ratio %5.2f\n",
               l, n, t / 1000, c / 1000, t / c }'
}

echo "best of $runs runs, $(nproc) cores, fusefat $(fusefat -V 2>&1 | head -1 || true)"
right_tvk=$(best_prepared_us fresh_stick tvk_right)
right_cp=$(best_prepared_us fresh_stick cp_right)
report RIGHT "$right_tvk" "$right_cp"

numbered_stick
left_tvk=$(best_prepared_us empty_left tvk_left)
left_cp=$(best_prepared_us empty_left cp_left)
report LEFT "$left_tvk" "$left_cp"
