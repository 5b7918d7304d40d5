#!/usr/bin/env bash
# Times `tvk info` over 1,500 preset files and over 100 MP3 files with large ID3v2 tags,
# side by side with `cat` of the same files (the cost of just reading them), and prints
# the figures and the ratio. The target is at most 3 times the cat time.
#
#   bench/info_bench.sh            # builds Release into build-bench-info, then runs
#   RUNS=10 bench/info_bench.sh    # best of 10 instead of 5
set -euo pipefail
cd "$(dirname "$0")/.."

source bench/bench_lib.sh
bench_start info 5

# 1,500 presets: 250 of each family in two folders.
make_presets "$work"
mapfile -t presets < <(find "$work" -name '*PG' | sort)

# 100 MP3 files of 10 seconds, each behind a 300 KB ID3v2 tag (cover art and the like).
ffmpeg -v error -y -f lavfi -i 'sine=frequency=440:duration=10' -ac 2 "$work/tone.wav"
lame --quiet -b 128 --tt Bench --add-id3v2 --pad-id3v2-size 300000 "$work/tone.wav" "$work/tone.mp3"
mkdir "$work/mp3"
for i in $(seq -w 1 100); do cp "$work/tone.mp3" "$work/mp3/track$i.mp3"; done
mapfile -t mp3s < <(find "$work/mp3" -name '*.mp3' | sort)

report() {
    local label=$1
    shift
    local files=("$@")
    local bytes
    cat "${files[@]}" >/dev/null  # warm the cache for both
    bytes=$(du -cb "${files[@]}" | tail -1 | cut -f1)
    local info cat
    info=$(best_us "$tvk" info "${files[@]}")
    cat=$(best_us cat "${files[@]}")
    awk -v l="$label" -v n="${#files[@]}" -v b="$bytes" -v i="$info" -v c="$cat" 'BEGIN {
        printf "%-8s %5d files %8.1f MB   tvk info %8.2f ms   cat %8.2f ms   ratio %5.2f\n",
               l, n, b / 1048576, i / 1000, c / 1000, i / c }'
}

echo "best of $runs runs, warm cache ($(nproc) cores)"
report presets "${presets[@]}"
report mp3 "${mp3s[@]}"
