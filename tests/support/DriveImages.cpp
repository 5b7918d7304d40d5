#include "support/DriveImages.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "app/Text.h"
#include "support/FakeSystem.h"

namespace tvk::test {

std::filesystem::path makeImage(const TempTree& tree, const std::string& name,
                                const ImageSpec& spec) {
    const auto image = tree.path(name);
    std::string command =
        "truncate -s " + std::to_string(spec.sizeMiB) + "M '" + pathToUtf8(image) + "' && ";
    if (startsWith(spec.kind, "fat")) {
        command += "mkfs.fat -F " + spec.kind.substr(3);
        if (!spec.label.empty()) command += " -n '" + spec.label + "'";
        if (!spec.serialHex.empty()) command += " -i " + spec.serialHex;
    } else if (spec.kind == "exfat") {
        command += "mkfs.exfat";
        if (!spec.label.empty()) command += " -L '" + spec.label + "'";
    } else {
        command += "mkfs.ext4 -q";
        if (!spec.label.empty()) command += " -L '" + spec.label + "'";
    }
    command += " '" + pathToUtf8(image) + "'";
    std::string output;
    EXPECT_EQ(runCommand(command, &output), 0) << command << "\n" << output;
    return image;
}

std::string fuseUnavailableReason() {
    if (access("/dev/fuse", R_OK | W_OK) != 0) return "/dev/fuse cannot be opened";
    for (const char* tool : {"fusefat", "fusermount", "mkfs.fat", "fatlabel"})
        if (!haveTool(tool)) return std::string(tool) + " is not installed";
    return {};
}

ImageDriveContext::ImageDriveContext(const std::vector<std::filesystem::path>& images) {
    auto system = std::make_unique<FakeSystem>();
    system->documents = library.root();
    session = std::make_unique<Session>(std::move(system), ui);
    session->paths.libraryRoot = library.mkdir("Tavrin File Manager");
    session->volumes = makePlatformVolumes({images, false});
}

Context ImageDriveContext::ctx() {
    return session->context();
}

std::filesystem::path ImageDriveContext::root() {
    return session->volumes->rootPath(session->volumes->drives().at(0));
}

}  // namespace tvk::test
