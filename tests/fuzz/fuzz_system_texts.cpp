// The texts Linux describes its volumes in: the mount table and the udev database. Any
// text parses without failing; a mount point written with the kernel's escapes, and a
// label written with udev's, come back exactly.

#include "FuzzSupport.h"
#include "drive/MountInfo.h"
#include "drive/VolumeHelpers.h"

using namespace tvk;

namespace {

// As the kernel writes a path in mountinfo: blank, tab, newline and backslash as \ooo.
std::string kernelEscape(std::string_view path) {
    std::string out;
    for (const char c : path) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\\') {
            const auto b = static_cast<unsigned char>(c);
            out += '\\';
            out += static_cast<char>('0' + (b >> 6));
            out += static_cast<char>('0' + ((b >> 3) & 7));
            out += static_cast<char>('0' + (b & 7));
        } else {
            out += c;
        }
    }
    return out;
}

// As udev writes ID_FS_LABEL_ENC: everything but plain letters and digits as \xNN.
std::string udevEscape(std::string_view text) {
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    for (const char c : text) {
        const auto b = static_cast<unsigned char>(c);
        if ((b >= '0' && b <= '9') || (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z')) {
            out += c;
        } else {
            out += "\\x";
            out += kHex[b >> 4];
            out += kHex[b & 15];
        }
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::asText(data, size);

    std::size_t lines = 1;
    for (const char c : text) lines += c == '\n';
    const auto mounts = parseMountInfo(text);
    fuzz::check(mounts.size() <= lines, "more mounts than lines");
    removableVolumes(mounts, fuzz::fuzzContext().scratch);

    const auto udev = parseUdevData(text);
    for (const auto& [key, value] : udev) decodeUdevEscapes(value);
    probeFromUdev(udev, "vfat");
    if (const auto uuid = udev.find("ID_FS_UUID"); uuid != udev.end()) serialFromUuid(uuid->second);

    // The input as a path and as a label (a mount point holds no NUL).
    if (text.find('\0') == std::string_view::npos && !text.empty()) {
        const auto entry = parseMountInfoLine("36 35 8:17 / " + kernelEscape(text) +
                                              " rw,nosuid shared:1 - vfat /dev/sdb1 rw");
        fuzz::check(entry && entry->mountPoint == text, "an escaped mount point did not come back");
    }
    const auto label = parseUdevData("E:ID_FS_LABEL_ENC=" + udevEscape(text) + "\n");
    fuzz::check(decodeUdevEscapes(label.at("ID_FS_LABEL_ENC")) == text,
                "an escaped label did not come back");
    return 0;
}
