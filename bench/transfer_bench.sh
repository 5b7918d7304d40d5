#!/usr/bin/env bash
# Times "&Add ALL to Computer" (`tvk add-all`) of a FAT32 stick image holding 750 presets,
# 40 recordings and 20 MP3 files of 3 MB, side by side with the floor: `cp` of the same
# files into the library, then one `mv` per file that add all renames. Both sides mount
# the image with fusefat and unmount it again; each run starts from an empty library.
# The target is at most 1.2 times the floor.
#
# Then "&Update FROM Thumbdrive" (`tvk update`) of a stick of 750 presets and 40
# recordings of which 10 changed since the mirror folder was made, side by side with
# `rsync -a --delete --checksum` of the stick's folder into a plain folder holding the
# files as they were (rsync compares by name, so it holds them under the stick's names).
# Both read every file of the stick; the target is at most 1.5 times rsync.
#
#   bench/transfer_bench.sh            # builds Release into build-bench-transfer, then runs
#   RUNS=5 bench/transfer_bench.sh     # best of 5 instead of 3
set -euo pipefail
cd "$(dirname "$0")/.."

source bench/bench_lib.sh
bench_start transfer 3

lib="$HOME/Documents/Tavrin File Manager"
mkdir -p "$lib"
mirror="$lib/BENCH - 2021BEEF"

# 250 presets of each family and 40 recordings from the test-file generator.
"$tvk" make-files "$work" --presets 250 --songs 14 --seed 1 --suffix bench >/dev/null
stick="$work/stick.img"

# PART=update times only the update.
if [[ "${PART:-all}" != update ]]; then
# The stick: 250 presets of each family and 40 recordings from the test-file generator,
# 20 MP3 files of 3 MB.
pristine="$work/pristine.img"
blank_stick "$pristine" 256M BENCH 2021BEEF
fusefat -o rw+ "$pristine" "$mnt"
songs=0
for f in "$work"/FAKEPRFILES*/*; do
    case "$f" in
    *SONG*) ((songs < 40)) || continue; songs=$((songs + 1)) ;;
    esac
    cp "$f" "$mnt/TAVRIN/"
done
for i in $(seq -w 1 20); do head -c $((3 << 20)) /dev/urandom >"$mnt/TAVRIN/Track $i.mp3"; done
fusermount -u "$mnt"
fresh() {
    cp --sparse=always "$pristine" "$stick"
    rm -rf "$mirror"
}

# The renames add all makes, taken from one run, for the floor to repeat with mv.
fresh
"$tvk" add-all --drive-image "$stick" </dev/null | grep ' -> ' >"$work/names.txt"
files=$(wc -l <"$work/names.txt")
renamed=$(awk -F' -> ' '$1 != $2' "$work/names.txt" | wc -l)

tvk_run() { "$tvk" add-all --drive-image "$stick" </dev/null; }
floor_run() {
    fusefat -o ro "$stick" "$mnt"
    mkdir -p "$mirror"
    cp -p "$mnt/TAVRIN"/* "$mirror/"
    fusermount -u "$mnt"
    while IFS= read -r line; do
        from=${line%% -> *} to=${line#* -> }
        [[ "$from" == "$to" ]] || mv -n "$mirror/$from" "$mirror/$to"
    done <"$work/names.txt"
}

echo "best of $runs runs, $(nproc) cores; $files files ($renamed renamed), $(du -sh "$work/FAKEPRFILES"* | awk '{s=s" "$1} END {print s}') of organ files + 60 MB of MP3"
tvk_us=$(best_prepared_us fresh tvk_run)
floor_us=$(best_prepared_us fresh floor_run)
awk -v t="$tvk_us" -v c="$floor_us" 'BEGIN {
    printf "add all   tvk add-all %9.1f ms   cp + mv %9.1f ms   ratio %5.2f\n", t / 1000, c / 1000, t / c }'

fi

# The update: a stick of 790 organ files (written with mtools, which is far quicker than
# fusefat), its mirror folder made by one update, then 10 files changed on the stick.
stick790="$work/stick790.img"
plain0="$work/plain0"
blank_stick "$stick790" 256M BENCH 2021BEEF
mkdir -p "$plain0"
songs=0
for f in "$work"/FAKEPRFILES*/*; do
    case "$f" in
    *SONG*) ((songs < 40)) || continue; songs=$((songs + 1)) ;;
    esac
    cp -p "$f" "$plain0/"
done
mcopy -i "$stick790" "$plain0"/* ::TAVRIN/
rm -rf "$mirror"
"$tvk" --yes update --drive-image "$stick790" </dev/null >/dev/null
mirror0="$work/mirror0"
cp -a "$mirror" "$mirror0"
for f in $(ls "$plain0" | awk 'NR % 79 == 1 && n++ < 10'); do
    cp "$plain0/$f" "$work/changed"
    printf 'changed' >>"$work/changed"
    mcopy -o -i "$stick790" "$work/changed" "::TAVRIN/$f"
done
stick_files=$(ls "$plain0" | wc -l)

update_fresh() {
    cp --sparse=always "$stick790" "$stick"
    rm -rf "$mirror" "$work/plain"
    cp -a "$mirror0" "$mirror"
    cp -a "$plain0" "$work/plain"
}
update_run() { "$tvk" --yes update --drive-image "$stick" </dev/null; }
rsync_run() {
    fusefat -o ro "$stick" "$mnt"
    rsync -a --delete --checksum "$mnt/TAVRIN/" "$work/plain/"
    fusermount -u "$mnt"
}
update_fresh
summary=$(update_run | tail -1)
echo "update: $stick_files files on the stick; tvk says: $summary"
update_us=$(best_prepared_us update_fresh update_run)
rsync_us=$(best_prepared_us update_fresh rsync_run)
awk -v t="$update_us" -v c="$rsync_us" 'BEGIN {
    printf "update    tvk update  %9.1f ms   rsync     %9.1f ms   ratio %5.2f\n", t / 1000, c / 1000, t / c }'
