#pragma once
// Real volumes for the thumbdrive tests: FAT images made by mkfs.fat (exFAT and ext4 by
// their own mkfs), attached through the program's own image drives, and a context whose
// drives are only those images.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/Session.h"
#include "drive/Volumes.h"
#include "support/ScriptedInteraction.h"
#include "support/TempTree.h"

namespace tvk::test {

struct ImageRecipe {
    std::string kind = "fat16";  // "fat12", "fat16", "fat32", "exfat", "ext4"
    int sizeMiB = 32;
    std::string label;          // none when empty
    std::string serialHex;      // mkfs.fat -i; random when empty
    int sectorsPerCluster = 0;  // mkfs.fat -s (1 makes a 4 MiB FAT16); its choice when 0
};

// Makes a sparse image file; fails the test when the mkfs tool fails.
std::filesystem::path makeImage(const TempTree& tree, const std::string& name,
                                const ImageRecipe& recipe);

// Puts a TAVRIN folder holding the given files (each one byte) into a FAT image
// before it is mounted.
void fillTavrin(const TempTree& tree, const std::filesystem::path& image,
                const std::vector<std::string>& files);

// The names mtools lists in a folder of an image ("" for the root), read from the image
// itself rather than through a mount.
std::vector<std::string> imageNames(const std::filesystem::path& image, const std::string& folder);

// Pulls a mounted image out from under the program, as a user pulls a stick: the FUSE
// driver serving `mountPoint` is killed, so every later access fails, and the mount is
// then detached.
void pullImage(const std::filesystem::path& mountPoint);

// Why FUSE images cannot be mounted here, or empty when they can.
std::string fuseUnavailableReason();

// A session whose only drives are the given images (never the machine's own sticks).
struct ImageDriveContext {
    explicit ImageDriveContext(const std::vector<std::filesystem::path>& images);
    TempTree library;
    ScriptedInteraction ui;
    std::unique_ptr<Session> session;
    Context ctx();
    // The mount point of the first image drive.
    std::filesystem::path root();
};

// A fresh image, optionally with a TAVRIN folder holding the given files.
struct StickImage {
    StickImage(const ImageRecipe& recipe, const std::optional<std::vector<std::string>>& tavrin);
    TempTree tree;
    std::filesystem::path image;
};

// ... attached as the only drive of a session.
struct ImageStick : StickImage, ImageDriveContext {
    explicit ImageStick(const ImageRecipe& recipe,
                        const std::optional<std::vector<std::string>>& tavrin = std::nullopt)
        : StickImage(recipe, tavrin), ImageDriveContext({image}) {}
};

}  // namespace tvk::test

// Skips a test that needs FUSE mounts, naming what is missing.
#define TVK_REQUIRE_FUSE()                                                          \
    do {                                                                            \
        TVK_LINUX_ONLY("FUSE image drives");                                        \
        const std::string why = ::tvk::test::fuseUnavailableReason();               \
        if (!why.empty()) GTEST_SKIP() << "FUSE image drives unavailable: " << why; \
    } while (0)
