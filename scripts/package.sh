#!/usr/bin/env bash
# Builds both installers into build/packages/ and checks them:
#   tavrin-file-manager_VERSION_amd64.deb  Release build of the window, tvk and the manual;
#                                          lintian, desktop-file-validate, appstreamcli
#   tavrin-file-manager-VERSION-setup.exe  64-bit NSIS installer: the MinGW tvk.exe and the
#                                          manual, and the window when one is handed over
#
#   scripts/package.sh [--window-dir DIR]
#
# DIR is a Windows build of the window made ready with windeployqt (TavrinFileManager.exe,
# its Qt libraries and plugins), as the Windows runner's job hands it over. Run it again
# at any time: it installs only what is missing and rebuilds only what changed.
set -euo pipefail
cd "$(dirname "$0")/.."

window_dir=""
while [ $# -gt 0 ]; do
    case "$1" in
    --window-dir)
        window_dir=$(realpath "$2")
        [ -f "$window_dir/TavrinFileManager.exe" ] || {
            echo "package.sh: no TavrinFileManager.exe in $window_dir" >&2
            exit 2
        }
        shift 2
        ;;
    *)
        echo "usage: scripts/package.sh [--window-dir DIR]" >&2
        exit 2
        ;;
    esac
done

scripts/deps.sh
out=$PWD/${TVK_BUILD_DIR:-build}/packages
release=${TVK_RELEASE_DIR:-build-release}
mingw=${TVK_BUILD_DIR:-build}-mingw
mkdir -p "$out"

echo "== Debian package =="
cmake -S . -B "$release" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTVK_PACKAGE=ON \
    -DTVK_BUILD_TESTS=OFF -DTVK_BUILD_BENCH=OFF >/dev/null
cmake --build "$release"
version=$("$release/src/tvk" --version)
deb=$out/tavrin-file-manager_${version}_amd64.deb
rm -rf "$out/cpack" "$deb" "$out/window-files.nsh"
(cd "$release" && cpack -G DEB -B "$out/cpack" >/dev/null)
mv "$out/cpack/$(basename "$deb")" "$deb"
rm -rf "$out/cpack"

# The package's own checks: lintian's errors, and its desktop entry and AppStream data
# as they are in the package.
lintian --fail-on error "$deb"
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
dpkg-deb -x "$deb" "$unpacked"
desktop-file-validate "$unpacked"/usr/share/applications/*.desktop
appstreamcli validate --no-net "$unpacked"/usr/share/metainfo/*.metainfo.xml
echo "$deb"

echo "== Windows installer =="
# The same MinGW build tree and settings as the Windows stage of scripts/test.sh.
cmake -S . -B "$mingw" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake \
    -DTVK_BUILD_GUI=OFF -DTVK_BUILD_TESTS=ON -DTVK_BUILD_BENCH=OFF >/dev/null
cmake --build "$mingw" --target tvk
exe=$out/tavrin-file-manager-${version}-setup.exe
defines=(-DVERSION="$version" -DTVK_EXE="$PWD/$mingw/src/tvk.exe"
    -DMANUAL="$PWD/$release/program/User's Manual.pdf" -DOUTFILE="$exe")
if [ -n "$window_dir" ]; then
    # The uninstaller removes exactly the files the window brought, deepest first.
    include=$out/window-files.nsh
    {
        echo '!macro WINDOW_INSTALL'
        echo '    SetOutPath "$INSTDIR"'
        echo "    File /r \"$window_dir/*.*\""
        echo '!macroend'
        echo '!macro WINDOW_UNINSTALL'
        (cd "$window_dir" && find . -mindepth 1 -type f | sort -r) |
            sed -e 's#^\./##' -e 's#/#\\#g' -e 's#.*#    Delete "$INSTDIR\\&"#'
        (cd "$window_dir" && find . -mindepth 1 -type d | sort -r) |
            sed -e 's#^\./##' -e 's#/#\\#g' -e 's#.*#    RMDir "$INSTDIR\\&"#'
        echo '!macroend'
    } >"$include"
    defines+=(-DWINDOW_FILES="$include")
fi
makensis -V2 "${defines[@]}" packaging/windows/installer.nsi
echo "$exe"
