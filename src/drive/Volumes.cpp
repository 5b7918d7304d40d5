#include "drive/Volumes.h"

#include <array>
#include <cctype>

#include "app/RuntimeError.h"

namespace tvk {

std::string driveTypeStatusName(int code) {
    static const std::array<const char*, 7> names = {
        "Unknown", "No Root Dir", "Removable (USB)", "Fixed", "Remote", "CD-ROM", "RamDisk"};
    if (code < 0 || code >= static_cast<int>(names.size())) return names[0];
    return names[static_cast<std::size_t>(code)];
}

std::string GetDrive(std::uint32_t unitMask) {
    for (int bit = 0; bit < 26; ++bit)
        if (unitMask & (1u << bit)) return std::string(1, static_cast<char>('A' + bit));
    return {};
}

int driveNumber(const std::string& drive) {
    if (drive.empty()) return -1;
    return std::toupper(static_cast<unsigned char>(drive[0])) - 'A';
}

std::string normaliseDriveText(const std::string& drive) {
    if (drive.size() == 1) return drive + ":\\";
    if (drive.size() == 2 && drive[1] == ':') return drive + "\\";
    return drive;
}

std::string firstRemovableDrive(Volumes& volumes) {
    for (const auto& id : volumes.drives()) {
        if (volumes.driveType(id) != DriveType::Removable) continue;
        try {
            volumes.volumeInformation(id);
        } catch (const RuntimeError& e) {
            if (e.number() == kErrDiskNotReady) continue;  // a slot with no card in it
        }
        // Any other failure is the scan's to report when it reads the drive.
        return id;
    }
    return {};
}

}  // namespace tvk
