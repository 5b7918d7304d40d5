#!/usr/bin/env bash
# Without a display, scripts/run.sh stops at once (before installing or building) and
# says how to run it under a virtual display.
set -uo pipefail
out=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$(dirname "$0")/../scripts/run.sh" 2>&1)
status=$?
echo "$out"
[ "$status" -eq 2 ] || { echo "exit status $status, wanted 2"; exit 1; }
grep -q "no display found" <<<"$out" && grep -q "xvfb-run -a scripts/run.sh" <<<"$out"
