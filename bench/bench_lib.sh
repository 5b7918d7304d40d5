# Shared by the bench scripts: builds a Release tvk and times commands.
#   source bench/bench_lib.sh; build_tvk build-dir; best_us CMD...
# RUNS (default 5) sets how many runs best_us takes the best of.

runs=${RUNS:-5}

# Builds tvk alone in Release into $1 and sets $tvk to it.
build_tvk() {
    cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTVK_BUILD_GUI=OFF \
        -DTVK_BUILD_TESTS=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
    ninja -C "$1" tvk >/dev/null
    tvk="$PWD/$1/src/tvk"
}

# Best wall time of $runs runs of a command, in microseconds; its exit code is ignored.
best_us() {
    local best=0 start end us i
    for ((i = 0; i < runs; i++)); do
        start=$(date +%s%N)
        "$@" >/dev/null || true
        end=$(date +%s%N)
        us=$(((end - start) / 1000))
        if ((best == 0 || us < best)); then best=$us; fi
    done
    echo "$best"
}
