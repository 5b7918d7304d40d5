#pragma once
// Readers for the two texts Linux describes its volumes in: /proc/self/mountinfo (what
// is mounted where) and the udev database (/run/udev/data/b<major>:<minor>: label,
// serial number and file-system type of a block device).

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvk {

struct MountEntry {
    unsigned major = 0, minor = 0;
    std::string root;        // the part of the file system mounted ("/" for all of it)
    std::string mountPoint;  // unescaped
    std::string fsType;      // "vfat", "fuse.fusefat", ...
    std::string source;      // "/dev/sdb1", the image file, ...
    std::string options;     // per-mount options ("rw,nosuid,...")
    bool readOnly() const;
};

// "\040" and the other octal escapes the kernel writes for blanks, tabs, newlines and
// backslashes in paths.
std::string unescapeMountField(std::string_view field);
// Nullopt for a line that is not a mount record.
std::optional<MountEntry> parseMountInfoLine(std::string_view line);
std::vector<MountEntry> parseMountInfo(std::string_view text);

// The "E:" properties of a udev data file.
std::map<std::string, std::string> parseUdevData(std::string_view text);
// udev's "\x20" escapes, as in ID_FS_LABEL_ENC.
std::string decodeUdevEscapes(std::string_view text);

}  // namespace tvk
