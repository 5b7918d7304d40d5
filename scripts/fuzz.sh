#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang under the address and undefined-behaviour
# sanitizers, replays the seed corpus and the saved regressions, then fuzzes each
# harness for a bounded time. Fails when any harness finds something; the input is then
# in $TVK_FUZZ_DIR/artifacts.
#
#   scripts/fuzz.sh [--seconds N] [HARNESS...]     (default 10 seconds each, all harnesses)
#
# A long run by hand, an hour per harness at the lowest priority:
#   nice -n 19 scripts/fuzz.sh --seconds 3600
# The corpus grown by each run is kept in $TVK_FUZZ_DIR/corpus for the next one.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=10
harnesses=()
while (($#)); do
    case $1 in
        --seconds) seconds=$2; shift 2 ;;
        *) harnesses+=("$1"); shift ;;
    esac
done
if ((${#harnesses[@]} == 0)); then
    harnesses=(settings registry organfile mp3 volume_probe system_texts names)
fi

build=${TVK_BUILD_DIR:-build}
fuzz=${TVK_FUZZ_DIR:-build-fuzz}
# The seeds are made by the program's own tvk; the sanitized tree builds only harnesses.
[ -x "$build/src/tvk" ] || { cmake -S . -B "$build" -G Ninja >/dev/null && cmake --build "$build" --target tvk; }
CXX=clang++ cmake -S . -B "$fuzz" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTVK_BUILD_FUZZ=ON \
    -DTVK_BUILD_GUI=OFF -DTVK_BUILD_TESTS=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
cmake --build "$fuzz" --target fuzz
if [ ! -d "$fuzz/seeds" ]; then
    rm -rf "$fuzz/seeds.new"
    tests/fuzz/make-seeds.sh "$build/src/tvk" "$fuzz/seeds.new"
    mv "$fuzz/seeds.new" "$fuzz/seeds"
fi

status=0
mkdir -p "$fuzz/artifacts"
printf '%-14s %8s %10s %6s %6s  %s\n' harness seconds runs cov ft result
for h in "${harnesses[@]}"; do
    binary=$fuzz/tests/fuzz/fuzz_$h
    corpus=$fuzz/corpus/$h
    regressions=tests/fuzz/regressions/$h
    mkdir -p "$corpus" "$regressions"
    log=$fuzz/artifacts/$h.log
    result=ok
    # Replay first: every seed and every input that once found a fault.
    if ! "$binary" -runs=0 "$fuzz/seeds/$h" "$regressions" >"$log" 2>&1; then
        result="REPLAY FAILED"
    elif ! "$binary" -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=2048 \
        -timeout=10 -print_final_stats=1 -artifact_prefix="$fuzz/artifacts/$h-" \
        "$corpus" "$fuzz/seeds/$h" "$regressions" >"$log" 2>&1; then
        result="FOUND (see $log)"
    fi
    [ "$result" = ok ] || status=1
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    elapsed=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$log")
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | cut -d' ' -f2)
    ft=$(grep -o 'ft: [0-9]*' "$log" | tail -1 | cut -d' ' -f2)
    printf '%-14s %8s %10s %6s %6s  %s\n' "$h" "${elapsed:--}" "${runs:--}" "${cov:--}" "${ft:--}" "$result"
done
exit $status
