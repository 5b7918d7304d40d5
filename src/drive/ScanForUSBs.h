#pragma once
// Finding the thumbdrive to work with and checking that the organ can use it: removable,
// FAT or FAT32, named, with a TAVRIN folder. Runs on the window's first activation and
// on every device arrival or removal.

#include <string>

#include "app/Context.h"
#include "drive/Volumes.h"

namespace tvk {

// How a scan ended. AutoBackupWanted: the drive passed every check and "Auto Backup" is
// on, so the caller starts "&Add ALL to Computer" next.
enum class ScanOutcome { Refused, Accepted, AutoBackupWanted };

inline constexpr const char* kNoDrivePattern = "*.nothing";
inline constexpr int kTransferButtons = 5;  // btnUSB_Docs 0 to 4

// With no notice, tries every drive in order and takes the first removable one that
// holds a volume; with a notice, takes the drive it names. An accepted stick is offered
// the rest of a sort or a restore that did not finish.
ScanOutcome ScanForUSBs(Context& ctx, const DeviceNotice* notice = nullptr);

// The device notices. An arrival while another accepted drive is still attached is
// ignored (Refused), so the first stick stays in use until it is removed.
ScanOutcome SysInfo1_DeviceArrival(Context& ctx, const DeviceNotice& notice);
ScanOutcome SysInfo1_DeviceRemoveComplete(Context& ctx, const DeviceNotice& notice);

// The drive's mirror folder in the library: label + " - " + serial number in hexadecimal.
std::string mirrorFolderName(const std::string& volumeName, const std::string& serialHex);

// "Volume Name: X  Serial Number:1234ABCD  DevID:..." for status panel 3.
std::string driveStatusText(const ThumbDriveState& drive);

}  // namespace tvk
