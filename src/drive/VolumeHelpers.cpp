#include "drive/VolumeHelpers.h"

#include <algorithm>
#include <iterator>

#include "app/FileIO.h"
#include "app/Text.h"

namespace tvk {

namespace fs = std::filesystem;

std::string readTextFile(const fs::path& file) {
    return readTextFileOrEmpty(file);
}

DriveType blockDeviceType(const fs::path& sysfsDevice, unsigned major) {
    constexpr unsigned kScsiCdMajor = 11;
    if (major == kScsiCdMajor) return DriveType::CdRom;
    std::error_code ec;
    const fs::path disk =
        fs::exists(sysfsDevice / "partition", ec) ? sysfsDevice.parent_path() : sysfsDevice;
    const std::string flag = trimWhitespace(readTextFile(disk / "removable"));
    const bool onUsb = pathToUtf8(sysfsDevice).find("/usb") != std::string::npos;
    return flag == "1" || onUsb ? DriveType::Removable : DriveType::Fixed;
}

std::vector<SystemVolume> removableVolumes(const std::vector<MountEntry>& mounts,
                                           const fs::path& sysRoot) {
    std::vector<SystemVolume> found;
    for (const auto& m : mounts) {
        if (m.major == 0 || m.root != "/" || !startsWith(m.source, "/dev/")) continue;
        const bool seen = std::any_of(found.begin(), found.end(), [&](const SystemVolume& v) {
            return v.mount.major == m.major && v.mount.minor == m.minor;
        });
        if (seen) continue;
        std::error_code ec;
        const fs::path sys = fs::canonical(
            sysRoot / "dev" / "block" / (std::to_string(m.major) + ":" + std::to_string(m.minor)),
            ec);
        if (ec) continue;
        const DriveType type = blockDeviceType(sys, m.major);
        if (type != DriveType::Removable && type != DriveType::CdRom) continue;
        found.push_back({fileNameUtf8(sys), m, type});
    }
    std::sort(found.begin(), found.end(), [](const SystemVolume& a, const SystemVolume& b) {
        return std::make_pair(a.id.size(), a.id) < std::make_pair(b.id.size(), b.id);
    });
    return found;
}

VolumeProbe probeFromUdev(const std::map<std::string, std::string>& udev,
                          const std::string& mountType) {
    const auto get = [&](const char* key) {
        const auto it = udev.find(key);
        return it == udev.end() ? std::string() : it->second;
    };
    VolumeProbe p;
    const std::string type = get("ID_FS_TYPE").empty() ? mountType : get("ID_FS_TYPE");
    p.fileSystemName = windowsFileSystemName(type, get("ID_FS_VERSION"));
    if (p.fileSystemName == "FAT")
        p.fatBits = toUpperAscii(get("ID_FS_VERSION")) == "FAT12" ? 12 : 16;
    if (p.fileSystemName == "FAT32") p.fatBits = 32;
    p.label = decodeUdevEscapes(get("ID_FS_LABEL_ENC"));
    if (const auto serial = serialFromUuid(get("ID_FS_UUID"))) {
        p.serialNumber = *serial;
        p.hasSerial = true;
    }
    return p;
}

std::optional<std::uint32_t> serialFromUuid(const std::string& uuid) {
    std::string hex;
    for (const char c : uuid)
        if (c != '-') hex += c;
    if (hex.empty() || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return std::nullopt;
    // NTFS gives 16 digits of which Windows shows the low half; others begin with it.
    if (hex.size() == 16) hex = hex.substr(8);
    if (hex.size() > 8) hex = hex.substr(0, 8);
    return static_cast<std::uint32_t>(std::stoul(hex, nullptr, 16));
}

std::vector<std::string> imageSystemEntries(const VolumeProbe& probe) {
    if (startsWith(probe.fileSystemName, "ext")) return {"lost+found"};
    if (probe.fatBits == 0 || probe.label.empty()) return {};
    const auto noBlanks = [](std::string s) {
        s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
        return s;
    };
    std::string padded = probe.label;
    padded.resize(std::max<std::size_t>(padded.size(), 11), ' ');
    const std::string base = noBlanks(padded.substr(0, 8)), ext = noBlanks(padded.substr(8, 3));
    std::vector<std::string> names = {ext.empty() ? base : base + "." + ext};
    if (noBlanks(probe.label) != names[0]) names.push_back(noBlanks(probe.label));
    return names;
}

std::string fatBitsForSize(std::uintmax_t bytes) {
    constexpr std::uintmax_t kMiB = 1024 * 1024;
    if (bytes >= 64 * kMiB) return "32";
    if (bytes >= 16 * kMiB) return "16";
    return {};
}

std::vector<DeviceNotice> diffSnapshots(const DriveSnapshot& before, const DriveSnapshot& after) {
    std::vector<DeviceNotice> notices;
    const auto contains = [](const DriveSnapshot& s, const auto& item) {
        return std::find(s.begin(), s.end(), item) != s.end();
    };
    for (const auto& item : before)
        if (!contains(after, item))
            notices.push_back({DeviceNotice::Kind::Removal, item.first, item.second});
    for (const auto& item : after)
        if (!contains(before, item))
            notices.push_back({DeviceNotice::Kind::Arrival, item.first, item.second});
    return notices;
}

}  // namespace tvk
