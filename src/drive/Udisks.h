#pragma once
// The udisks2 service on the system bus (Linux): it relabels and formats a block device
// for a user without root, as the desktop does. Each call returns an empty text when
// done, else why not: udisks' own message, or that the service is not there.

#include <string>

namespace tvk::udisks {

// What a call says when there is no system bus or no udisks2 on it.
inline constexpr const char* kMissing =
    "This needs the udisks2 service, which is not running on this computer, so the "
    "thumbdrive was left as it was.";

// `device` is the kernel's name of the block device: "sdb1", "loop7".
std::string setLabel(const std::string& device, const std::string& label);
std::string unmount(const std::string& device);
std::string mount(const std::string& device);
// A fresh FAT file system, with `label` unless it is empty.
std::string formatFat(const std::string& device, const std::string& label);

// udisks' object path for a block device: every byte but ASCII letters, digits and "_"
// becomes "_" + two hex digits ("dm-0" is ".../block_devices/dm_2d0").
std::string blockObjectPath(const std::string& device);

}  // namespace tvk::udisks
