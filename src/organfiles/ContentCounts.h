#pragma once
// How many files of each kind a thumbdrive's TAVRIN folder holds.

namespace tvk {

struct ContentCounts {
    int presets = 0, music = 0, mp3 = 0, midi = 0, other = 0, all = 0;
    bool operator==(const ContentCounts&) const = default;
};

}  // namespace tvk
