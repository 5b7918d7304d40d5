// tvk's stick commands from the console, each on a FAT image: the arguments reach the
// command, the boxes are answered from --yes or the empty input, the exit codes, and
// what only the console does (STICK for the stick's folder, the user's settings read).
// What each command does to the files is the core tests'.
#include <gtest/gtest.h>

#include <ctime>

#include "app/IniFile.h"
#include "app/Text.h"
#include "drive/VolumeProbe.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

struct TvkOnStick : ::testing::Test {
    test::TempTree home;
    fs::path lib = home.mkdir("Documents/Tavrin File Manager");
    fs::path image;
    std::string out;

    void SetUp() override { TVK_REQUIRE_FUSE(); }
    void plug(const test::ImageRecipe& recipe, const std::vector<std::string>& tavrin) {
        image = test::makeImage(home, "stick.img", recipe);
        test::fillTavrin(home, image, tavrin);
    }
    // A preset named `name` as the stick's file `onStick`.
    void presetOnStick(const std::string& onStick, const std::string& name) {
        const auto file = home.write(
            "preset.bin", test::generatedOrganFile(Series::SU, FileKind::Preset, name, 5));
        ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -i '" + pathToUtf8(image) + "' '" +
                                   pathToUtf8(file) + "' ::TAVRIN/" + onStick),
                  0);
    }
    void settings(const Settings& s) {
        test::writeFile(lib / "TVK.ini", formatIniFile(s, std::tm{}));
    }
    // tvk in the library folder with `home` as the only home, on the stick if there is one,
    // with nothing on its input.
    int tvk(const std::string& args) {
        const std::string drive = image.empty() ? "" : " --drive-image '" + pathToUtf8(image) + "'";
        return test::runCommand(
            "cd '" + pathToUtf8(lib) + "' && env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME='" +
                pathToUtf8(home.root()) + "' " + TVK_CLI_PATH + " " + args + drive + " </dev/null",
            &out);
    }
    bool said(const std::string& text) const { return out.find(text) != std::string::npos; }
};

TEST_F(TvkOnStick, CopyBothWaysWithTheUsersSettings) {
    plug({"fat16", 32, "STICK", ""}, {"SUPSET01.LPG"});
    // "Number Seq" on: a numbered file goes on after its own number.
    Settings s;
    s.numberSeq = 1;
    settings(s);
    test::put(lib / "Mine",
              {{"SUPSET05.LPG", test::generatedOrganFile(Series::SU, FileKind::Preset, "Bells", 5)},
               {"Piano.SPG", "p"}});
    home.mkdir("Documents/Tavrin File Manager/Back");
    ASSERT_EQ(tvk("copy Mine STICK"), 0) << out;
    EXPECT_TRUE(said("Piano.SPG -> SUPSET02.LPG\n")) << out;
    EXPECT_TRUE(said("SUPSET05.LPG -> SUPSET06.LPG\n")) << out;
    ASSERT_EQ(tvk("copy STICK Back SUPSET06.LPG"), 0) << out;
    EXPECT_TRUE(said("SUPSET06.LPG -> Bells.SPG\n")) << out;

    // The same folder makes duplicates after a question; the cautious answer copies nothing.
    ASSERT_EQ(tvk("copy Back Back"), 0) << out;
    EXPECT_TRUE(said("[DUPLICATE FILE] Do you want to make a duplicate file in the")) << out;
    EXPECT_TRUE(said("0 copied, 1 skipped, 0 failed, 0 duplicate names tried\n")) << out;
    EXPECT_EQ(tvk("copy --mode SIDEWAYS Back Mine"), 2) << out;
    image.clear();
    EXPECT_EQ(tvk("copy Back STICK"), 1) << out;
    EXPECT_TRUE(said("STICK needs an attached stick")) << out;
}

TEST_F(TvkOnStick, TheFiveTransfersAndAutoBackup) {
    plug({"fat16", 32, "ORGAN", "1234ABCD"}, {"TUNE.MID"});
    presetOnStick("SUPSET01.LPG", "Bells");
    struct Step {
        std::string command;
        int exitCode;
        std::string output;  // a line the output holds
    };
    const Step steps[] = {
        {"update", 1, "[UPDATE COMPUTER] This process will UPDATE"},
        {"--yes update", 0, "SUPSET01.LPG -> Bells_#01.LPG"},
        {"add-all", 0, "SUPSET01.LPG -> Bells.LPG"},
        {"--yes pool-presets", 0, "SUPSET01.LPG -> Bells.SPG"},
        {"pool-recordings", 1, "[COPY RECORDINGS TO POOL] This will copy 0 RECORDING files"},
        {"--yes restore", 0, "Bells.LPG -> SUPSET02.LPG"},
        {"scan", 0, "Accepted: yes"},
    };
    for (const auto& s : steps) {
        SCOPED_TRACE(s.command);
        if (s.command == "scan") {
            // Auto Backup on: the stick's files are all in the mirror folder already.
            Settings autoBackup;
            autoBackup.autoBackup = true;
            settings(autoBackup);
        }
        EXPECT_EQ(tvk(s.command), s.exitCode) << out;
        EXPECT_TRUE(said(s.output)) << out;
    }
    EXPECT_EQ(test::listNames(lib / "ORGAN - 1234ABCD"),
              (std::vector<std::string>{"Bells.LPG", "Bells_#01.LPG", "TUNE (1).MID", "TUNE.MID"}));
}

// The dry runs say per file what update and restore would do, and change nothing on
// either side.
TEST_F(TvkOnStick, DryRunsListWhatWouldBeDoneAndChangeNothing) {
    plug({"fat16", 32, "ORGAN", "1234ABCD"}, {"TUNE.MID", "EXTRA.TXT"});
    presetOnStick("SUPSET01.LPG", "Bells");
    const auto mirror = lib / "ORGAN - 1234ABCD";
    test::put(mirror, {{"Bells_#01.LPG",
                        test::generatedOrganFile(Series::SU, FileKind::Preset, "Bells", 5)},
                       {"TUNE.MID", "midi"},
                       {"Gone.txt", "mine"}});
    const auto before = test::snapshot(mirror);
    // The stick's files as mtools reads them from the image (mounting alone rewrites it).
    const auto onStick = [&] {
        test::Files files;
        for (const auto& name : test::imageNames(image, "TAVRIN")) {
            test::runCommand(
                "MTOOLS_SKIP_CHECK=1 mtype -i '" + pathToUtf8(image) + "' ::TAVRIN/" + name,
                &files[name]);
        }
        return files;
    };
    const test::Files stickBefore = onStick();
    ASSERT_EQ(stickBefore.size(), 3u);
    const std::pair<const char*, const char*> runs[] = {
        {"update --dry-run",
         "copy EXTRA.TXT -> EXTRA.TXT\n"
         "unchanged SUPSET01.LPG -> Bells_#01.LPG\n"
         "replace TUNE.MID -> TUNE.MID\n"
         "remove Gone.txt (to the recycle bin)\n"
         "1 to copy, 1 to replace, 1 unchanged, 1 to remove; nothing was changed\n"},
        {"restore --dry-run",
         "unchanged Bells_#01.LPG -> SUPSET01.LPG\n"
         "copy Gone.txt -> Gone.txt\n"
         "replace TUNE.MID -> TUNE.MID\n"
         "remove EXTRA.TXT (to the program's Recycle Bin)\n"
         "1 to copy, 1 to replace, 1 unchanged, 1 to remove; nothing was changed\n"},
    };
    for (const auto& [command, lines] : runs) {
        SCOPED_TRACE(command);
        EXPECT_EQ(tvk(command), 0) << out;
        EXPECT_TRUE(said(lines)) << out;
        EXPECT_EQ(test::snapshot(mirror), before);
        EXPECT_TRUE(onStick() == stickBefore) << "the stick was written";
    }
}

TEST_F(TvkOnStick, ScanRenameAndFormat) {
    image = test::makeImage(home, "stick.img", {"fat32", 40, "CLI STICK", "0BADF00D"});
    EXPECT_EQ(tvk("--yes scan"), 0) << out;
    for (const char* line :
         {"[NO TAVRIN FOLDER]", "FileSystemName: \tFAT32\n", "VolumeName: \tCLI STICK\n",
          "SerialNumber: \tBADF00D\n", "IsEmpty: \tFalse\n", "Accepted: yes\n"})
        EXPECT_TRUE(said(line)) << line << "\n" << out;
    EXPECT_EQ(tvk("--yes rename-volume 'renamed one'"), 0) << out;
    EXPECT_EQ(probeVolume(image)->label, "RENAMED ONE");
    // What the format keeps is the core tests'.
    EXPECT_EQ(tvk("--yes format"), 0) << out;
    EXPECT_TRUE(said("[FORMAT THUMBDRIVE]")) << out;
    EXPECT_NE(probeVolume(image)->serialNumber, 0x0BADF00Du);
}

}  // namespace
}  // namespace tvk
