#!/usr/bin/env bash
# The Windows installer under Wine in a fresh prefix: a silent install writes the
# uninstall key in the 64-bit view, the installed tvk.exe finds its program folder from
# it, a second run updates in place, and the silent uninstaller takes it all away but
# the user's library.
#   tests/installers/nsis_roundtrip.sh build/packages/tavrin-file-manager-VERSION-setup.exe
set -euo pipefail
root=$(realpath "$(dirname "$0")/../..")
setup=$(realpath "$1")
version=$(basename "$setup" | sed -E 's/^tavrin-file-manager-(.*)-setup\.exe$/\1/')
prefix=$(mktemp -d)/wineprefix
trap 'WINEPREFIX=$prefix wineserver -k 2>/dev/null || true; rm -rf "$(dirname "$prefix")"' EXIT
key='HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\Tavrin File Manager'
folder="$prefix/drive_c/Program Files/Tavrin File Manager"
menu="$prefix/drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Tavrin File Manager"
fail() {
    echo "nsis_roundtrip: $*" >&2
    exit 1
}
wine_() { "$root/scripts/wine-run.sh" "$prefix" "$@"; }
settle() { WINEPREFIX=$prefix wineserver --wait; }
value() { wine_ reg query "$key" /v "$1" /reg:64 2>/dev/null | tr -d '\r' | sed -nE "s/^ *$1 +REG_[A-Z]+ +//p"; }

wine_ "$setup" /S
settle
[ "$(value DisplayVersion)" = "$version" ] || fail "DisplayVersion: '$(value DisplayVersion)'"
[ "$(value InstallLocation)" = 'C:\Program Files\Tavrin File Manager' ] ||
    fail "InstallLocation: '$(value InstallLocation)'"
for v in DisplayName Publisher UninstallString DisplayIcon; do
    [ -n "$(value $v)" ] || fail "no $v"
done
for f in tvk.exe "User's Manual.pdf" Uninstall.exe; do
    [ -f "$folder/$f" ] || fail "not installed: $f"
done
[ -f "$menu/User's Manual.lnk" ] || fail "no Start-menu entry"

# Started from elsewhere, the program folder can only come from the key.
out=$(cd /tmp && wine_ "$folder/tvk.exe" --yes startup +DEBUG </dev/null 2>&1 | tr -d '\r') ||
    fail "tvk.exe startup: $out"
echo "$out" | grep -qxF 'Program folder: C:\Program Files\Tavrin File Manager' ||
    fail "program folder not from the key: $out"
[ -f "$folder/TVK_ErrorLog.txt" ] || fail "no trace in the program folder"

# An update: the same folder, the version written again, still one key.
wine_ reg add "$key" /v DisplayVersion /d 2020.0101.0001 /f /reg:64 >/dev/null
wine_ "$setup" /S
settle
[ "$(value DisplayVersion)" = "$version" ] || fail "update left DisplayVersion '$(value DisplayVersion)'"
[ "$(wine_ reg query 'HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall' /reg:64 |
    tr -d '\r' | grep -c 'Tavrin File Manager$')" = 1 ] || fail "a second uninstall entry"

library=$(find "$prefix/drive_c/users" -maxdepth 3 -path '*/Documents/Tavrin File Manager' | head -1)
[ -n "$library" ] || fail "the start-up made no library"
wine_ "$folder/Uninstall.exe" /S
settle
wine_ reg query "$key" /reg:64 >/dev/null 2>&1 && fail "the key is still there"
[ ! -e "$folder" ] || fail "left in the program folder: $(ls "$folder")"
[ ! -e "$menu" ] || fail "the Start-menu entry is still there"
[ -f "$library/TVK.ini" ] || fail "the uninstaller touched the library"
echo "nsis_roundtrip: $version installed, updated and removed under Wine"
