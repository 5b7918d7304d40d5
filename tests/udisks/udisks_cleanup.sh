#!/bin/sh
# Stops what a udisks test started and detaches its loop devices, for when the test
# could not do it itself (killed on its timeout). Everything comes from the state file
# the test wrote: loop devices over its own images, services by pid and start time (a
# pid reused by someone else's process is left alone), its own folders.
state=$1
[ -f "$state" ] || exit 0

while read -r kind what _; do
    [ "$kind" = image ] || continue
    for device in $(losetup --list --noheadings --output NAME --associated "$what" 2>/dev/null); do
        losetup -d "$device" && echo "detached $device ($what)"
    done
done <"$state"

# Newest first: udisksd before the udev and the bus it uses.
tac "$state" | while read -r kind pid started; do
    [ "$kind" = pid ] || continue
    [ -r "/proc/$pid/stat" ] || continue
    # Field 22 of stat, counted after the command name, which may hold blanks.
    now=$(sed 's/.*) //' "/proc/$pid/stat" | cut -d' ' -f20)
    [ "$now" = "$started" ] || continue
    kill -TERM "$pid" 2>/dev/null && echo "stopped $pid"
    for _ in 1 2 3 4 5 6 7 8 9 10; do
        state_letter=$(sed 's/.*) //' "/proc/$pid/stat" 2>/dev/null | cut -d' ' -f1)
        [ -z "$state_letter" ] || [ "$state_letter" = Z ] && break
        sleep 0.5
    done
    [ -n "$state_letter" ] && [ "$state_letter" != Z ] && kill -KILL "$pid" 2>/dev/null
done

while read -r kind what _; do
    [ "$kind" = folder ] || continue
    case $what in
        /run/udev | */tvk-udisks-*) rm -rf "$what" ;;
    esac
done <"$state"
rm -f "$state"
