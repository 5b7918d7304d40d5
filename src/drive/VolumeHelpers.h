#pragma once
// Small decisions of the Linux drive services, kept apart so they can be tested alone.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "drive/VolumeProbe.h"
#include "drive/Volumes.h"

namespace tvk {

// The drive type of a block device from its sysfs folder: CD-ROM for SCSI CD drives,
// removable when the parent disk says so or it hangs off a USB bus, else fixed.
DriveType blockDeviceType(const std::filesystem::path& sysfsDevice, unsigned major);

// The volume serial number from udev's ID_FS_UUID ("1234-ABCD" is 0x1234ABCD).
std::optional<std::uint32_t> serialFromUuid(const std::string& uuid);

// Root entries the FUSE drivers show that are not the user's: fusefat lists the label
// entry as an empty file ("DEMO STICK" appears as "DEMOSTI.CK"), ext has lost+found.
std::vector<std::string> imageSystemEntries(const VolumeProbe& probe);

// The FAT size mkfs.fat is asked for: FAT32 from 64 MB (smaller FAT32 volumes are
// awkward for the FUSE driver), FAT16 from 16 MB, below that mkfs.fat's own choice.
std::string fatBitsForSize(std::uintmax_t bytes);

using DriveSnapshot = std::vector<std::pair<std::string, std::string>>;  // drive, device
// Removals first, then arrivals.
std::vector<DeviceNotice> diffSnapshots(const DriveSnapshot& before, const DriveSnapshot& after);

// Blocks until the drive list may have changed or the time is up (Linux); false where
// notices arrive as window messages instead.
bool waitForNotices(Volumes& volumes, int timeoutMs);

}  // namespace tvk
