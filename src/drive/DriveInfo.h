#pragma once
// The properties of one volume as the volume-information and drive-type queries return
// them, for the diagnostic text of `tvk scan` and the trace.

#include <cstdint>
#include <string>

#include "app/Context.h"
#include "drive/Volumes.h"

namespace tvk {

class DriveInfo {
  public:
    // Fills the properties for a drive; throws RuntimeError when its volume cannot be
    // read. IsEmpty comes from DriveEmpty, so it needs the context.
    void Initialize(Context& ctx, const std::string& drive);
    // The same from values already read (the flag booleans follow the flags).
    void Initialize(int driveType, const VolumeInfo& info, bool isEmpty);

    int DriveType = 0;
    std::string VolumeName;
    std::string FileSystemName;
    std::uint32_t SerialNumber = 0;
    std::uint32_t MaxComponentLength = 0;
    std::uint32_t FileSystemFlags = 0;
    bool IsEmpty = false;

    bool SupportsLongFileNames() const { return MaxComponentLength > 12; }
    bool PreservesNames() const { return has(fsflags::kCasePreservedNames); }
    bool CaseSensitiveSearch() const { return has(fsflags::kCaseSensitiveSearch); }
    bool SupportsUnicodeOnDisk() const { return has(fsflags::kUnicodeOnDisk); }
    bool SupportsPersistentAcls() const { return has(fsflags::kPersistentAcls); }
    bool SupportsFileCompression() const { return has(fsflags::kFileCompression); }
    bool VolumeIsCompressed() const { return has(fsflags::kVolumeIsCompressed); }
    bool SupportsEncryption() const { return has(fsflags::kEncryption); }
    bool SupportsObjectIds() const { return has(fsflags::kObjectIds); }
    bool SupportsReparsePoints() const { return has(fsflags::kReparsePoints); }
    bool SupportsSparseFiles() const { return has(fsflags::kSparseFiles); }
    bool SupportsVolumeQuotas() const { return has(fsflags::kVolumeQuotas); }

    // One line per property: label, a tab, the value; lines end in CR LF.
    std::string ToString() const;

    // Cuts a fixed-size text buffer at its first zero character.
    static std::string CleanString(const std::string& buffer);

  private:
    bool has(std::uint32_t bit) const { return (FileSystemFlags & bit) != 0; }
};

// "Removable", "CD ROM", ...: the names ToString uses; codes above 6 are "Unknown".
std::string driveInfoTypeName(int code);

}  // namespace tvk
