#!/usr/bin/env bash
# Times the content search (Count Only) over 1,500 generated presets in one folder, side
# by side in the same run with `grep -c` over the same files. The search reads 55 name
# fields of each file, grep the whole file; the target is at most the grep time.
#
#   bench/search_bench.sh            # builds Release into build-bench-search, then runs
#   RUNS=10 bench/search_bench.sh    # best of 10 instead of 5
set -euo pipefail
cd "$(dirname "$0")/.."

source bench/bench_lib.sh
bench_start search 5

# 1,500 presets in one folder: two generated sets of 750, the second renamed as the copy
# engine names duplicates.
make_presets "$work"
folder="$work/FAKEPRFILES - one"
for f in "$work/FAKEPRFILES - two"/*; do
    name=$(basename "$f")
    mv "$f" "$folder/${name%.*} (1).${name##*.}"
done
mapfile -t files < <(find "$folder" -type f | sort)

report() {
    local label=$1 text=$2 tvkflags=$3 grepflags=$4
    local search grep matches
    # shellcheck disable=SC2086
    matches=$("$tvk" search "$text" --folder "$folder" --presets --count-only $tvkflags </dev/null |
        sed -n 's/.* was found \([0-9]*\) times.*/\1/p')
    # shellcheck disable=SC2086
    search=$(best_us "$tvk" search "$text" --folder "$folder" --presets --count-only $tvkflags)
    # shellcheck disable=SC2086
    grep=$(best_us grep -c $grepflags "$text" "${files[@]}")
    awk -v l="$label" -v m="${matches:-0}" -v s="$search" -v g="$grep" 'BEGIN {
        printf "%-12s %6s matches   tvk search %8.2f ms   grep -c %8.2f ms   ratio %5.2f\n",
               l, m, s / 1000, g / 1000, s / g }'
}

cat "${files[@]}" >/dev/null  # warm the cache for both
bytes=$(du -cb "${files[@]}" | tail -1 | cut -f1)
echo "${#files[@]} presets, $(awk -v b="$bytes" 'BEGIN { printf "%.1f", b / 1048576 }') MB;" \
    "best of $runs runs, warm cache ($(nproc) cores)"
report "any case" "piano" "" "-i"
report "match case" "Piano" "--match-case" ""
report "whole word" "Soft Piano" "--whole-word" "-i"
