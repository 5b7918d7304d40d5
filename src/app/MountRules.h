#pragma once
// What a mount cannot take, as the layer that mounts it says: the image drives mount FAT
// images with a FUSE driver that stores only ASCII names and whose renames corrupt FAT12
// and FAT16 volumes. The file-I/O layer (FileIO.h) asks here before it names or writes a
// file, so those ways around the driver stay in one place and out of the commands.

#include <filesystem>
#include <optional>
#include <string>

namespace tvk {

struct MountRules {
    // A name outside ASCII is refused (52) before anything changes: the driver would
    // lose the file and leak its clusters.
    bool asciiNamesOnly = false;
    // New files are written under their own names, never through a temporary name and
    // a rename. While one is written, `writingNote` holds `notePrefix` and the file's
    // path below the mount, so the drive layer can remove it at the next mount when the
    // write never finished.
    bool writeInPlace = false;
    std::filesystem::path writingNote;
    std::string notePrefix;
};

void setMountRules(const std::filesystem::path& mountDir, MountRules rules);
void forgetMountRules(const std::filesystem::path& mountDir);

struct AppliedRules {
    std::filesystem::path mountDir;
    MountRules rules;
};
// The rules of the mount `file` lies under; nullopt for the ordinary file systems.
std::optional<AppliedRules> mountRulesFor(const std::filesystem::path& file);

// Throws 52 (bad file name) when `file` is to be named where its name cannot be stored.
void checkNameStorable(const std::filesystem::path& file);

}  // namespace tvk
