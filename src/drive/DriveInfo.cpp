#include "drive/DriveInfo.h"

#include <array>

#include "app/CommonRoutines.h"
#include "app/Text.h"

namespace tvk {

namespace {

const char* boolText(bool value) {
    return value ? "True" : "False";
}

}  // namespace

std::string driveInfoTypeName(int code) {
    static const std::array<const char*, 7> names = {
        "Unknown", "No root directory", "Removable", "Fixed", "Remote", "CD ROM", "Ramdisk"};
    if (code < 0 || code >= static_cast<int>(names.size())) return names[0];
    return names[static_cast<std::size_t>(code)];
}

void DriveInfo::Initialize(Context& ctx, const std::string& drive) {
    Volumes& volumes = *ctx.volumes;
    const VolumeInfo info = volumes.volumeInformation(drive);
    const bool empty = DriveEmpty(ctx, volumes.rootPath(drive), volumes.systemEntries(drive));
    Initialize(static_cast<int>(volumes.driveType(drive)), info, empty);
}

void DriveInfo::Initialize(int driveType, const VolumeInfo& info, bool isEmpty) {
    DriveType = driveType;
    VolumeName = CleanString(info.volumeName);
    FileSystemName = CleanString(info.fileSystemName);
    SerialNumber = info.serialNumber;
    MaxComponentLength = info.maxComponentLength;
    FileSystemFlags = info.fileSystemFlags;
    IsEmpty = isEmpty;
}

std::string DriveInfo::CleanString(const std::string& buffer) {
    return buffer.substr(0, buffer.find('\0'));
}

std::string DriveInfo::ToString() const {
    std::string out;
    const auto line = [&](const char* label, const std::string& value) {
        out += label;
        out += '\t';
        out += value;
        out += kCrLf;
    };
    line("DriveType:", driveInfoTypeName(DriveType));
    line("VolumeName: ", VolumeName);
    line("FileSystemName: ", FileSystemName);
    // Hexadecimal, as the status bar and the mirror folder's name show it.
    line("SerialNumber: ", hexUpper(SerialNumber));
    line("MaxComponentLength: ", std::to_string(MaxComponentLength));
    line("SupportsLongFileNames: ", boolText(SupportsLongFileNames()));
    line("FileSystemFlags: ", std::to_string(FileSystemFlags));
    line("PreservesNames: ", boolText(PreservesNames()));
    line("CaseSensitiveSearch: ", boolText(CaseSensitiveSearch()));
    line("SupportsUnicodeOnDisk: ", boolText(SupportsUnicodeOnDisk()));
    line("SupportsPersistentAcls: ", boolText(SupportsPersistentAcls()));
    line("SupportsFileCompression: ", boolText(SupportsFileCompression()));
    line("VolumeIsCompressed: ", boolText(VolumeIsCompressed()));
    line("SupportsEncryption: ", boolText(SupportsEncryption()));
    line("SupportsObjectIds: ", boolText(SupportsObjectIds()));
    line("SupportsReparsePoints: ", boolText(SupportsReparsePoints()));
    line("SupportsSparseFiles: ", boolText(SupportsSparseFiles()));
    line("SupportsVolumeQuotas: ", boolText(SupportsVolumeQuotas()));
    line("IsEmpty: ", boolText(IsEmpty));
    return out;
}

}  // namespace tvk
