#pragma once
// Small decisions of the Linux drive services, kept apart so they can be tested alone.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "drive/MountInfo.h"
#include "drive/VolumeProbe.h"
#include "drive/Volumes.h"

namespace tvk {

// A small system file's text (/proc, /sys, udev data); empty when it cannot be read.
std::string readTextFile(const std::filesystem::path& file);

// The drive type of a block device from its sysfs folder: CD-ROM for SCSI CD drives,
// removable when the parent disk says so or it hangs off a USB bus, else fixed.
DriveType blockDeviceType(const std::filesystem::path& sysfsDevice, unsigned major);

struct SystemVolume {
    std::string id;  // the device's name, "sdb1"
    MountEntry mount;
    DriveType type = DriveType::Unknown;
};

// The removable volumes (and CD-ROMs) among the mounts, each device once, whole mounts
// only, in the order of their device names ("sdb1" before "sdc1" before "sdaa1").
// `sysRoot` is "/sys" but for tests.
std::vector<SystemVolume> removableVolumes(const std::vector<MountEntry>& mounts,
                                           const std::filesystem::path& sysRoot);

// Label, serial number and file system as udev recorded them for a block device;
// `mountType` stands in when udev has no type.
VolumeProbe probeFromUdev(const std::map<std::string, std::string>& udev,
                          const std::string& mountType);

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
