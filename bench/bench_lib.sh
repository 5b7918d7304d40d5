# Shared by the bench scripts: builds a Release tvk, gives a scratch folder with a mount
# point, makes blank stick images and times commands.
#   source bench/bench_lib.sh; bench_start NAME DEFAULT-RUNS; best_us CMD...
# RUNS sets how many runs the best is taken of; TVK_BENCH_BUILD the Release tree.

# Builds tvk alone in Release into $1 and sets $tvk to it.
build_tvk() {
    cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTVK_BUILD_GUI=OFF \
        -DTVK_BUILD_TESTS=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
    ninja -C "$1" tvk >/dev/null
    tvk="$(cd "$1" && pwd)/src/tvk"
}

# The start of every bench: $runs, a Release tvk in build-bench-NAME and a scratch folder.
bench_start() { # name default-runs
    runs=${RUNS:-$2}
    build_tvk "${TVK_BENCH_BUILD:-build-bench-$1}"
    bench_scratch
}

# 1,500 generated presets, 250 of each family in two FAKEPRFILES folders below $1.
make_presets() { # folder
    "$tvk" make-files "$1" --presets 250 --songs 0 --seed 1 --suffix one >/dev/null
    "$tvk" make-files "$1" --presets 250 --songs 0 --seed 2 --suffix two >/dev/null
}

# Sets $work to a scratch folder and $mnt to a mount point inside it; both go at exit,
# the mount first. HOME points inside it, so the user's own settings and library stay out.
bench_scratch() {
    work=$(mktemp -d)
    mnt="$work/mnt"
    mkdir -p "$mnt" "$work/home"
    trap 'fusermount -u "$mnt" 2>/dev/null || true; rm -rf "$work"' EXIT
    export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" MTOOLS_SKIP_CHECK=1
}

# A blank FAT32 stick image holding an empty TAVRIN folder.
blank_stick() { # file size label serial
    truncate -s "$2" "$1"
    mkfs.fat -F 32 -n "$3" -i "$4" "$1" >/dev/null
    mmd -i "$1" ::TAVRIN
}

# Wall time of one command in microseconds; its output is dropped.
time_us() {
    local start end
    start=$(date +%s%N)
    "$@" >/dev/null
    end=$(date +%s%N)
    echo $(((end - start) / 1000))
}

# Best wall time of $runs runs of a command, in microseconds, running PREPARE (untimed)
# before each; the command's exit code is ignored.
best_prepared_us() { # prepare command...
    local prepare=$1 best=0 us i
    shift
    for ((i = 0; i < runs; i++)); do
        $prepare
        us=$(time_us "$@" || true)
        if ((best == 0 || us < best)); then best=$us; fi
    done
    echo "$best"
}
best_us() { best_prepared_us : "$@"; }
