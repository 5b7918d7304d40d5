#!/usr/bin/env bash
# Runs a Windows program under Wine in the tests' own prefix:
#   scripts/wine-run.sh PREFIX PROGRAM.exe [ARGS]...
# The prefix is made on first use, quietly and without a display. Wine links Documents,
# Desktop and the like to the Linux home; here they become real folders, so what the
# program writes to Documents stays in the prefix.
set -euo pipefail

prefix=$(realpath -m "$1")
shift
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY

if [ ! -e "$prefix/.tvk-ready" ]; then
    mkdir -p "$(dirname "$prefix")"
    exec 9>"$prefix.lock"
    flock 9
    if [ ! -e "$prefix/.tvk-ready" ]; then
        rm -rf "$prefix"
        wineboot --init >/dev/null 2>&1
        wineserver --wait
        for link in "$prefix"/drive_c/users/*/*; do
            if [ -L "$link" ]; then
                rm "$link"
                mkdir "$link"
            fi
        done
        touch "$prefix/.tvk-ready"
    fi
    exec 9>&-
fi

exec wine "$@"
