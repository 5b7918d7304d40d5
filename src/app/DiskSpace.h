#pragma once
// How much room a volume has, counted the way the file system hands it out: every file
// takes whole allocation units (clusters on FAT), so a thousand small presets need more
// than their bytes. Every command that checks room before it writes counts it here.

#include <cstdint>
#include <filesystem>
#include <functional>

namespace tvk {

struct DiskSpace {
    std::uintmax_t available = 0;  // bytes the user may still write
    std::uintmax_t unit = 512;     // allocation unit in bytes
    bool readOnly = false;         // write-protected, or mounted for reading only
    // The room a file of `size` bytes takes.
    std::uintmax_t roomFor(std::uintmax_t size) const {
        return unit == 0 ? size : (size + unit - 1) / unit * unit;
    }
};

// Throws RuntimeError (71 when the volume is gone).
DiskSpace diskSpace(const std::filesystem::path& folder);

// Some drivers do not report free space (an image file's FUSE mount says 0 bytes free):
// the drive layer hands over how to count it for everything under `mountDir`, until
// forgotten. The counter throws RuntimeError like diskSpace.
using SpaceCounter = std::function<DiskSpace()>;
void countSpaceWith(const std::filesystem::path& mountDir, SpaceCounter counter);
void forgetSpaceCounter(const std::filesystem::path& mountDir);

// What the operating system reports for the volume holding `folder`.
DiskSpace systemDiskSpace(const std::filesystem::path& folder);

}  // namespace tvk
