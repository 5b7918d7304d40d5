#pragma once
// The drives the machine has, as the thumbdrive commands see them: which drives to try,
// their kind, their volume information, label change, format, and the arrival and
// removal notices. One implementation per platform (Volumes_win32.cpp: drive letters;
// Volumes_linux.cpp: mounted removable volumes and FAT image files).

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tvk {

// The platform's drive-type codes, as GetDriveType returns them.
enum class DriveType : std::uint8_t {
    Unknown = 0,
    NoRootDir = 1,
    Removable = 2,
    Fixed = 3,
    Remote = 4,
    CdRom = 5,
    RamDisk = 6
};

// "Removable (USB)", "CD-ROM", ...: the names the scan's status texts use.
std::string driveTypeStatusName(int code);

// The documented file-system flag bits of the volume-information query.
namespace fsflags {
inline constexpr std::uint32_t kCaseSensitiveSearch = 0x00000001;
inline constexpr std::uint32_t kCasePreservedNames = 0x00000002;
inline constexpr std::uint32_t kUnicodeOnDisk = 0x00000004;
inline constexpr std::uint32_t kPersistentAcls = 0x00000008;
inline constexpr std::uint32_t kFileCompression = 0x00000010;
inline constexpr std::uint32_t kVolumeQuotas = 0x00000020;
inline constexpr std::uint32_t kSparseFiles = 0x00000040;
inline constexpr std::uint32_t kReparsePoints = 0x00000080;
inline constexpr std::uint32_t kVolumeIsCompressed = 0x00008000;
inline constexpr std::uint32_t kObjectIds = 0x00010000;
inline constexpr std::uint32_t kEncryption = 0x00020000;
}  // namespace fsflags

struct VolumeInfo {
    std::string volumeName;  // UTF-8; empty when the volume has no label
    std::uint32_t serialNumber = 0;
    std::string fileSystemName;  // as Windows names it: "FAT", "FAT32", "exFAT", "NTFS"
    std::uint32_t maxComponentLength = 0;
    std::uint32_t fileSystemFlags = 0;
};

// What a device notice says: the drive it concerns and the identifier shown after
// "DevID:". On Windows `drive` comes from the notice's unit mask (GetDrive).
struct DeviceNotice {
    enum class Kind { Arrival, Removal };
    Kind kind = Kind::Arrival;
    std::string drive;
    std::string deviceId;
};

// SHFormatDrive's results: the format identity on success, or one of these.
inline constexpr int kFormatError = -1;
inline constexpr int kFormatCancelled = -2;
inline constexpr int kFormatNotPossible = -3;

struct FormatOutcome {
    int result = kFormatError;
    std::string problem;  // why it failed, for a message; empty when there is nothing to say
};

class Volumes {
  public:
    virtual ~Volumes() = default;

    // The drives a full scan tries, in the order it tries them ("A" to "Z" on Windows;
    // on Linux image drives first, then removable volumes in a stable order).
    virtual std::vector<std::string> drives() = 0;
    virtual DriveType driveType(const std::string& drive) = 0;
    // Where the drive's files are: "E:\" or the mount point.
    virtual std::filesystem::path rootPath(const std::string& drive) = 0;
    // What the user knows the root as when it is not rootPath itself ("demo-stick.img:"
    // for an image file), else empty.
    virtual std::string shownRoot(const std::string& /*drive*/) { return {}; }
    // Throws RuntimeError when the volume cannot be read (pulled out, unreadable).
    virtual VolumeInfo volumeInformation(const std::string& drive) = 0;
    // The identifier shown after "DevID:" when the scan found the drive itself.
    virtual std::string deviceId(const std::string& drive) = 0;
    // Names in the root that the file system itself shows but the user never made
    // (a FUSE driver's label entry, ext's lost+found); DriveEmpty skips them.
    virtual std::vector<std::string> systemEntries(const std::string& drive) = 0;

    // Sets the volume label. Empty when done, else why not (Windows reports nothing, as
    // the program never did).
    virtual std::string setLabel(const std::string& drive, const std::string& label) = 0;
    // Whether formatting shows the operating system's own format window (where the user
    // picks the file system); elsewhere the program formats FAT itself.
    virtual bool hasFormatWindow() const = 0;
    // Formats the drive, keeping `label` where the program formats it itself.
    virtual FormatOutcome format(const std::string& drive, const std::string& label) = 0;

    // Whether the drive layer holds the stick for this process as long as it is attached,
    // so no other command of the program can work on it meanwhile (an image file, which
    // one FUSE driver at a time may serve).
    virtual bool heldWhileAttached(const std::string& /*drive*/) { return false; }
    // Files a stopped write had left half done under their own names, which the drive
    // layer removed when it attached the drive (image drives); each is told once.
    virtual std::vector<std::string> takeUnfinishedRemoved(const std::string& /*drive*/) {
        return {};
    }

    // Device notices. A descriptor that becomes ready (POLLPRI) when mounts change, or
    // -1 where notices come as window messages; then takeNotices() lists what arrived and
    // what was removed since the last call.
    virtual int noticeHandle() { return -1; }
    virtual std::vector<DeviceNotice> takeNotices() { return {}; }
    // The owning window, for the format window (HWND on Windows).
    void* ownerWindow = nullptr;
};

// The drive a full scan takes: the first removable drive that holds a volume. An empty
// card-reader slot is removable too, but its volume query fails as not ready (71), so it
// is passed over. Empty when no removable drive holds one.
std::string firstRemovableDrive(Volumes& volumes);

// The letter a volume device notice (device type 2) concerns: bit 0 of the unit mask is
// "A", bit 25 "Z". Empty when no bit is set.
std::string GetDrive(std::uint32_t unitMask);
// SHFormatDrive's drive number: "E" is 4.
int driveNumber(const std::string& drive);
// "E" and "E:" become "E:\"; anything else is returned as it is.
std::string normaliseDriveText(const std::string& drive);

struct VolumesOptions {
    std::vector<std::filesystem::path> images;  // FAT (or other) image files to attach
    bool systemVolumes = true;                  // also the machine's own removable drives
};

// The platform's drives. Throws RuntimeError when an image cannot be attached.
std::shared_ptr<Volumes> makePlatformVolumes(const VolumesOptions& options = {});

}  // namespace tvk
