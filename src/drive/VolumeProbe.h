#pragma once
// Reads a volume's identity straight from its first sectors: the FAT boot sector and the
// root directory's label entry (as Windows reads them), the exFAT boot region, and the
// NTFS and ext signatures. Used for image drives, and for real devices when readable.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tvk {

struct VolumeProbe {
    std::string fileSystemName;  // "FAT", "FAT32", "exFAT", "NTFS", "ext4", ...
    int fatBits = 0;             // 12, 16 or 32 for a FAT volume
    std::uint32_t serialNumber = 0;
    bool hasSerial = false;
    std::string label;  // UTF-8, trailing blanks removed; empty when none
    std::uint64_t totalBytes = 0;
};

// Reads `size` bytes at `offset`; returns fewer at the end of the medium.
using SectorReader = std::function<std::string(std::uint64_t offset, std::size_t size)>;

// Nullopt when the first sectors hold no file system this knows (a damaged boot sector).
std::optional<VolumeProbe> probeVolume(const SectorReader& read);
// Reads a device or an image file. Throws RuntimeError when it cannot be opened or read.
std::optional<VolumeProbe> probeVolume(const std::filesystem::path& deviceOrImage);

// The free room of a FAT volume: its free clusters counted in the first FAT (the FSInfo
// sector's figure is only a hint, which not every driver keeps). Nullopt when the boot
// sector is not FAT's.
struct FatFreeSpace {
    std::uint64_t freeClusters = 0;
    std::uint32_t clusterBytes = 0;
};
std::optional<FatFreeSpace> countFatFreeSpace(const SectorReader& read);

// A FAT directory-entry name (11 bytes, code page 437) as UTF-8.
std::string decodeOemName(std::string_view bytes);

// The name Windows gives a file system, from the type and version a Linux probe (udev's
// ID_FS_TYPE / ID_FS_VERSION, or the mount's type) reports: "vfat" + "FAT16" is "FAT".
std::string windowsFileSystemName(std::string_view type, std::string_view version = {});

}  // namespace tvk
