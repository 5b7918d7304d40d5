#!/usr/bin/env bash
# Makes the seed corpus of every fuzz harness in OUT/<harness>: settings and registry
# files as tvk writes them, organ files from tvk make-files, MP3 files from lame, the
# first 64 KiB of volumes from mkfs.fat, mkfs.exfat and mke2fs, this machine's mount
# table. Usage: make-seeds.sh TVK OUT
set -euo pipefail
tvk=$(realpath "$1")
out=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$out"/{settings,registry,organfile,mp3,volume_probe,system_texts,names}

# Settings and registry: the program's own start-up in a scratch home.
export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config
mkdir -p "$HOME"
"$tvk" register --location "$work/program" >/dev/null
"$tvk" --yes startup >/dev/null 2>&1 || true
cp "$XDG_CONFIG_HOME/Tavrin File Manager/registry.ini" "$out/registry/registry.ini"
find "$HOME" -name TVK.ini -exec cp {} "$out/settings/defaults.ini" \;
cp "$here/../data/TVK-remembered.ini" "$out/settings/remembered.ini"

# Organ files of the three families, and their names.
"$tvk" make-files "$work/organ" --presets 1 --songs 1 --seed 7 >/dev/null
find "$work/organ" -type f | while read -r f; do
    name=$(basename "$f")
    cp "$f" "$out/organfile/$name"
    printf '%s' "$name" >"$out/names/$name"
done
printf '%s' 'SUPSET07 (1).LPG' >"$out/names/duplicate"
printf '%s' 'My "Best" Song: 1/2.SMR' >"$out/names/illegal"

# MP3: constant and variable bit rate, MPEG 1 and 2, with ID3v2 and ID3v1 tags.
tone() { ffmpeg -v error -f lavfi -i "sine=frequency=440:duration=$1" -ar "$2" -ac "$3" -f wav "$4"; }
tone 0.5 44100 2 "$work/a.wav"
tone 0.5 22050 1 "$work/b.wav"
lame --quiet -b 128 "$work/a.wav" "$out/mp3/cbr.mp3"
lame --quiet -V 4 --tt Title --ta Artist --add-id3v2 "$work/a.wav" "$out/mp3/vbr-id3v2.mp3"
lame --quiet -b 32 --tt Title --id3v1-only "$work/b.wav" "$out/mp3/mpeg2-id3v1.mp3"
for f in "$out"/mp3/*; do truncate -s '<16K' "$f"; done

# Volumes: only the boot region and the root directory matter to the probe.
volume() {
    local name=$1 size=$2
    shift 2
    truncate -s "$size" "$work/$name"
    "$@" "$work/$name" >/dev/null 2>&1
    head -c 65536 "$work/$name" >"$out/volume_probe/$name"
}
volume fat12 2M mkfs.fat -F 12 -n SMALL -i 1234ABCD
volume fat16 20M mkfs.fat -F 16 -n "MY STICK" -i 0000ABCD
volume fat32 40M mkfs.fat -F 32 -n "DEMO STICK" -i 2021ABCD
volume exfat 8M mkfs.exfat -L EXSTICK
volume ext4 8M mke2fs -q -t ext4 -L LINUX -F

# The texts Linux describes its volumes in.
cp /proc/self/mountinfo "$out/system_texts/mountinfo"
printf '%s\n' 'S:disk/by-label/MY\x20STICK' 'E:ID_FS_LABEL_ENC=MY\x20STICK' \
    'E:ID_FS_UUID=0A1B-2C3D' 'E:ID_FS_TYPE=vfat' 'E:ID_FS_VERSION=FAT32' >"$out/system_texts/udev"
