#!/usr/bin/env bash
# The Debian package on this machine, as root: installed over an older release, started
# by a user with an empty home and nothing set up, then purged without a trace.
#   tests/installers/deb_roundtrip.sh build/packages/tavrin-file-manager_VERSION_amd64.deb
set -euo pipefail
deb=$(realpath "$1")
[ "$(id -u)" -eq 0 ] || { echo "deb_roundtrip: needs root (dpkg -i)" >&2; exit 2; }
version=$(dpkg-deb -f "$deb" Version)
record=/etc/xdg/tavrin-file-manager/registry.ini
work=$(mktemp -d)
chmod 755 "$work"
trap 'dpkg --purge tavrin-file-manager >/dev/null 2>&1 || true; rm -rf "$work"' EXIT
fail() {
    echo "deb_roundtrip: $*" >&2
    exit 1
}

# An older release made from this one: its version and machine record say 2020.
dpkg-deb -R "$deb" "$work/old"
sed -i "s/^Version: .*/Version: 2020.0101.0001/" "$work/old/DEBIAN/control"
sed -i "s/^DisplayVersion=.*/DisplayVersion=2020.0101.0001/" "$work/old$record"
rm -f "$work/old/DEBIAN/md5sums"
dpkg-deb --root-owner-group -b "$work/old" "$work/old.deb" >/dev/null

dpkg -i "$work/old.deb" >/dev/null
dpkg -i "$deb" >/dev/null
[ "$(dpkg-query -W -f='${Version}' tavrin-file-manager)" = "$version" ] || fail "not upgraded"
grep -qx "DisplayVersion=$version" "$record" || fail "machine record not upgraded"
for f in /usr/bin/tavrin-file-manager /usr/bin/tvk "/usr/share/tavrin-file-manager/User's Manual.pdf"; do
    [ -f "$f" ] || fail "missing $f"
done

# A new user: nothing in the home, the program folder under /usr not writable.
home=$work/home
mkdir "$home"
chown nobody:nogroup "$home"
as_user() {
    setpriv --reuid=nobody --regid=nogroup --clear-groups \
        env -i PATH=/usr/bin:/bin HOME="$home" "$@"
}
# The first start writes the settings; the traced second one reads them (a settings
# write would close the trace, as it always has) and must show no box at all.
for switches in "" +DEBUG; do
    out=$(as_user tvk startup $switches </dev/null 2>&1) || fail "tvk startup $switches failed: $out"
    ! grep -q '^\[' <<<"$out" || fail "tvk startup $switches showed a box: $out"
done
log="$home/.local/state/tavrin-file-manager/TVK_ErrorLog.txt"
grep -q "frmMain.Form_Load - ENTER" "$log" || fail "no trace in $log: $out"
[ -d "$home/Documents/Tavrin File Manager/"$'\u00a0'"Preset Pool" ] || fail "no library"
[ ! -e "$home/.config/Tavrin File Manager/registry.ini" ] || fail "start-up wrote a record"

# Root can write the program folder, so its traced start leaves a log there.
(cd / && HOME=$work/root tvk startup +DEBUG </dev/null >/dev/null 2>&1) || fail "root start-up"
[ -f /usr/share/tavrin-file-manager/TVK_ErrorLog.txt ] || fail "root's trace not in the program folder"

# The folders of its own go too; shared ones (/usr/share/applications, ...) stay.
owned=(/usr/share/tavrin-file-manager /usr/share/doc/tavrin-file-manager /etc/xdg/tavrin-file-manager)
files=$(dpkg -L tavrin-file-manager | while IFS= read -r f; do [ -f "$f" ] && echo "$f"; done)
dpkg --purge tavrin-file-manager >/dev/null
left=$(while IFS= read -r f; do [ -e "$f" ] && echo "$f"; done <<<"$files"; ls -d "${owned[@]}" 2>/dev/null || true)
[ -z "$left" ] || fail "left after purge: $left"
echo "deb_roundtrip: $version installed over 2020.0101.0001, started by a new user, purged"
