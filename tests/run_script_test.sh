#!/usr/bin/env bash
# Without a display, scripts/run.sh stops at once (before installing or building) and
# says how to run it under a virtual display; so does the window's own binary ($1, when
# given), instead of ending in Qt's core dump.
set -uo pipefail
expect_refusal() { # wanted-hint command...
    local hint=$1 out status
    shift
    out=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$@" 2>&1)
    status=$?
    echo "$out"
    [ "$status" -eq 2 ] || { echo "$*: exit status $status, wanted 2"; return 1; }
    grep -q "no display found" <<<"$out" && grep -q "$hint" <<<"$out"
}
expect_refusal "xvfb-run -a scripts/run.sh" "$(dirname "$0")/../scripts/run.sh" || exit 1
[ $# -eq 0 ] || expect_refusal "xvfb-run -a tavrin-file-manager" "$1" || exit 1
