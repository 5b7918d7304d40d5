#!/usr/bin/env bash
# Installs the Debian packages the build, the program and the tests need; does nothing
# when they are all there already.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config clang-format python3
    clang libclang-rt-14-dev
    libgtest-dev libbenchmark-dev
    qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev libgl-dev
    g++-mingw-w64-x86-64-posix googletest wine wine64
    dosfstools mtools fusefat fuse3 exfat-fuse exfatprogs fuse2fs e2fsprogs fiu-utils
    libglib2.0-bin
    libsystemd-dev dbus udev udisks2
    lame ffmpeg gstreamer1.0-plugins-good
    xvfb xauth xdg-utils
    qt6-qpa-plugins nsis lintian desktop-file-utils appstream
    rsync
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -q
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q "${missing[@]}"
fi
