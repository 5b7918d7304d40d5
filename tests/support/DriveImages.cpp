#include "support/DriveImages.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>

#include "app/Text.h"
#include "support/FakeSystem.h"

namespace tvk::test {

std::filesystem::path makeImage(const TempTree& tree, const std::string& name,
                                const ImageRecipe& recipe) {
    const auto image = tree.path(name);
    std::string command =
        "truncate -s " + std::to_string(recipe.sizeMiB) + "M '" + pathToUtf8(image) + "' && ";
    if (startsWith(recipe.kind, "fat")) {
        command += "mkfs.fat -F " + recipe.kind.substr(3);
        if (!recipe.label.empty()) command += " -n '" + recipe.label + "'";
        if (!recipe.serialHex.empty()) command += " -i " + recipe.serialHex;
        if (recipe.sectorsPerCluster > 0)
            command += " -s " + std::to_string(recipe.sectorsPerCluster);
    } else if (recipe.kind == "exfat") {
        command += "mkfs.exfat";
        if (!recipe.label.empty()) command += " -L '" + recipe.label + "'";
    } else {
        command += "mkfs.ext4 -q";
        if (!recipe.label.empty()) command += " -L '" + recipe.label + "'";
    }
    command += " '" + pathToUtf8(image) + "'";
    std::string output;
    EXPECT_EQ(runCommand(command, &output), 0) << command << "\n" << output;
    return image;
}

void fillTavrin(const TempTree& tree, const std::filesystem::path& image,
                const std::vector<std::string>& files) {
    std::string out;
    const std::string img = "'" + pathToUtf8(image) + "'";
    ASSERT_EQ(runCommand("MTOOLS_SKIP_CHECK=1 mmd -i " + img + " ::TAVRIN", &out), 0) << out;
    for (const auto& name : files) {
        const auto file = tree.write("src/" + name, "x");
        ASSERT_EQ(runCommand("MTOOLS_SKIP_CHECK=1 mcopy -i " + img + " '" + pathToUtf8(file) +
                                 "' ::TAVRIN/" + name,
                             &out),
                  0)
            << out;
    }
}

std::vector<std::string> imageNames(const std::filesystem::path& image, const std::string& folder) {
    std::string listing;
    runCommand("MTOOLS_SKIP_CHECK=1 mdir -b -i '" + pathToUtf8(image) + "' ::" + folder, &listing);
    std::vector<std::string> names;
    std::istringstream lines(listing);
    const std::string prefix = "::/" + (folder.empty() ? "" : folder + "/");
    for (std::string line; std::getline(lines, line);)
        if (startsWith(line, prefix)) names.push_back(line.substr(prefix.size()));
    return names;
}

void pullImage(const std::filesystem::path& mountPoint) {
    const std::string dir = pathToUtf8(mountPoint);
    runCommand("pkill -KILL -f -- '" + dir + "'; sleep 0.2; fusermount -u -z '" + dir +
               "' 2>/dev/null || umount -l '" + dir + "' 2>/dev/null");
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

StickImage::StickImage(const ImageRecipe& recipe,
                       const std::optional<std::vector<std::string>>& tavrin)
    : image(makeImage(tree, "stick.img", recipe)) {
    if (tavrin) fillTavrin(tree, image, *tavrin);
}

}  // namespace tvk::test
