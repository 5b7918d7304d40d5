#pragma once
// The attached thumbdrive as the last scan left it.

#include <filesystem>
#include <string>

namespace tvk {

struct ThumbDriveState {
    bool present = false;         // accepted by the scan
    std::string letter;           // "E" on Windows; the volume's id on Linux
    std::filesystem::path root;   // "E:\" or the mount point
    std::string serialHex = "0";  // upper-case hexadecimal, no leading zeros
    std::string volumeName;
    std::string fileSystem;  // "FAT", "FAT32", ...
    int driveType = 0;
    std::string deviceId;
    bool tavrinPresent = false;
    bool fileSystemOk = false;
    // What the user knows the root as, when that is not `root` itself: an image drive is
    // "demo-stick.img:", not the folder the program mounted it on.
    std::string shownRoot;
    std::filesystem::path tavrinFolder() const { return root / "TAVRIN"; }
};

}  // namespace tvk
