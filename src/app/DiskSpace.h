#pragma once
// How much room a volume has, counted the way the file system hands it out: every file
// takes whole allocation units (clusters on FAT), so a thousand small presets need more
// than their bytes.

#include <cstdint>
#include <filesystem>

namespace tvk {

struct DiskSpace {
    std::uintmax_t available = 0;  // bytes the user may still write
    std::uintmax_t unit = 512;     // allocation unit in bytes
    // The room a file of `size` bytes takes.
    std::uintmax_t roomFor(std::uintmax_t size) const {
        return unit == 0 ? size : (size + unit - 1) / unit * unit;
    }
};

// Throws RuntimeError (71 when the volume is gone).
DiskSpace diskSpace(const std::filesystem::path& folder);

}  // namespace tvk
