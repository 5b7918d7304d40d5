// Volume rename and format: on image drives (fatlabel and mkfs.fat under the FUSE
// mount) and on Windows-style letters for the shell's format window.

#include <gtest/gtest.h>

#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "drive/VolumeCommands.h"
#include "drive/VolumeProbe.h"
#include "support/DriveImages.h"
#include "support/FakeVolumes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

TEST(VolumeRename, AnswersBecomeElevenUpperCaseCharacters) {
    struct Case {
        const char *answer, *label;
    };
    for (const Case c : {Case{"abcdefghijklmno", "ABCDEFGHIJK"}, Case{"my stick", "MY STICK"},
                         Case{"stra\xC3\x9F"
                              "e und m\xC3\xA4hren",
                              "STRA\xC3\x9F"
                              "E UND "},
                         Case{"", ""}})
        EXPECT_EQ(volumeLabelFromAnswer(c.answer), c.label) << c.answer;
}

TEST(VolumeRename, ImageDriveGetsTheNewLabelOrSaysWhyNot) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"fat16", 32, "OLD NAME", "0000BEEF"});
    Context ctx = drives.ctx();
    fs::create_directory(drives.root() / "TAVRIN");
    ScanForUSBs(ctx);
    ASSERT_TRUE(ctx.state.drive.present);

    drives.ui.expectPrompt("RENAME VOLUME", "new organ stick").expect("RENAME USB", Answer::Yes);
    btnRenameVol_Click(ctx);
    EXPECT_TRUE(drives.ui.done());
    EXPECT_EQ(drives.ui.shown.at(0).text,
              "Please confirm you want to rename this USB to \rNEW ORGAN S?");
    EXPECT_EQ(drives.ui.shown.at(0).icon, Icon::Question);
    EXPECT_EQ(ctx.state.drive.volumeName, "NEW ORGAN S");
    EXPECT_EQ(drives.ui.status[StatusPanel::Drive],
              "Volume Name: NEW ORGAN S  Serial Number:BEEF  DevID:" + pathToUtf8(drives.image));
    EXPECT_EQ(probeVolume(drives.image)->label, "NEW ORGAN S");
    // Still the same stick with its files, now under a name that wants a new mirror folder.
    EXPECT_TRUE(fs::is_directory(drives.root() / "TAVRIN"));

    // No, an empty answer and a cancelled prompt change nothing.
    drives.ui.expectPrompt("RENAME VOLUME", "other").expect("RENAME USB", Answer::No);
    drives.ui.expectPrompt("RENAME VOLUME", "").expectPrompt("RENAME VOLUME", std::nullopt);
    for (int i = 0; i < 3; ++i) btnRenameVol_Click(ctx);
    EXPECT_TRUE(drives.ui.done());
    EXPECT_EQ(probeVolume(drives.image)->label, "NEW ORGAN S");

    // A label the file system refuses is reported and the old one stays.
    drives.ui.expectPrompt("RENAME VOLUME", "gr\xC3\xBCn")
        .expect("RENAME USB", Answer::Yes)
        .expect("RENAME USB DRIVE");
    btnRenameVol_Click(ctx);
    EXPECT_TRUE(drives.ui.done());
    EXPECT_EQ(drives.ui.shown.back().text.rfind("The volume name was not changed.\r\r", 0), 0u);
    EXPECT_EQ(ctx.state.drive.volumeName, "NEW ORGAN S");
    EXPECT_EQ(probeVolume(drives.image)->label, "NEW ORGAN S");
    EXPECT_TRUE(ctx.state.drive.present);
}

TEST(VolumeFormat, ImageDriveIsFormattedFatKeepingItsLabel) {
    TVK_REQUIRE_FUSE();
    struct Case {
        test::ImageRecipe recipe;
        bool holdsFiles;
        Answer answer;
        std::string fileSystemAfter;
    };
    const Case cases[] = {
        {{"fat32", 80, "FULL STICK", ""}, true, Answer::Yes, "FAT32"},
        {{"fat16", 32, "EMPTY STICK", ""}, false, Answer::Yes, "FAT"},
        {{"fat16", 32, "KEEP ME", ""}, true, Answer::No, "FAT"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.recipe.label);
        test::ImageStick drives(c.recipe);
        Context ctx = drives.ctx();
        if (c.holdsFiles) {
            fs::create_directory(drives.root() / "TAVRIN");
            test::writeFile(drives.root() / "TAVRIN" / "SUPSET01.LPG", "x");
        } else {
            // Only the label entry the FUSE driver shows ("EMPTYST.ICK") is there, which
            // does not count.
            drives.ui.expect("NO TAVRIN FOLDER", Answer::No);
        }
        ScanForUSBs(ctx);
        drives.ui.shown.clear();
        const auto serialBefore = probeVolume(drives.image)->serialNumber;

        drives.ui.expect("FORMAT THUMBDRIVE", c.answer);
        mnuFileFormat_Click(ctx);
        EXPECT_TRUE(drives.ui.done());
        const Message& box = drives.ui.shown.at(0);
        const std::string where =
            "Drive: " + pathToUtf8(drives.root()) + "    VolumeName: " + c.recipe.label;
        EXPECT_EQ(box.text,
                  c.holdsFiles
                      ? "YOU ARE ABOUT TO FORMAT THIS THUMBDRIVE\rThis thumbdrive it NOT EMPTY.\r"
                        "Do you want to FORMAT this thumbdrive, currently known as \r" +
                            where
                      : "YOU ARE ABOUT TO FORMAT THIS THUMBDRIVE\rPlease confirm you want to "
                        "format this thumbdrive currently known as \r" +
                            where);
        EXPECT_EQ(box.defaultAnswer(), Answer::No);
        const auto after = probeVolume(drives.image);
        EXPECT_EQ(after->fileSystemName, c.fileSystemAfter);
        EXPECT_EQ(after->label, c.recipe.label);
        const bool formatted = c.answer == Answer::Yes;
        EXPECT_EQ(after->serialNumber != serialBefore, formatted);
        EXPECT_EQ(fs::exists(drives.root() / "TAVRIN" / "SUPSET01.LPG"),
                  c.holdsFiles && !formatted);
        EXPECT_TRUE(fs::is_directory(drives.root() / "TAVRIN"));
        EXPECT_TRUE(ctx.state.drive.present);
    }
}

struct LetterFormat : test::LetterDrivesTest {
    Context driveE(DriveType type, bool tavrinThere) {
        const auto& l = add("E", type, "FAT32", "STICK", tavrinThere);
        Context c = letterContext();
        c.state.drive.letter = "E";
        c.state.drive.root = l.root;
        c.state.drive.volumeName = "STICK";
        return c;
    }
};

TEST_F(LetterFormat, ShellFormatGetsDriveNumberAndTheFatHint) {
    // The user cancels the format window: the TAVRIN folder that is still there cannot be
    // made again, which goes to the error handler; Ignore goes on with the scan.
    Context c = driveE(DriveType::Removable, true);
    volumes->formatResult = kFormatCancelled;
    ui.expect("FORMAT THUMBDRIVE", Answer::Yes)
        .expect("TVK")
        .expect("TVK: RUNTIME ERROR", Answer::Ignore);
    mnuFileFormat_Click(c);
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(volumes->formattedDriveNumbers, std::vector<int>{4});
    EXPECT_EQ(ui.shown.at(1).text,
              "In the next window, be sure to select \"FAT\" in the File System dropdown box.");
    EXPECT_NE(ui.shown.at(2).text.find("Path/File access error"), std::string::npos);
    EXPECT_TRUE(c.state.drive.present);
}

TEST_F(LetterFormat, NonRemovableDrivesAreNeverFormatted) {
    for (const DriveType type : {DriveType::Fixed, DriveType::Remote, DriveType::CdRom}) {
        Context c = driveE(type, false);
        ui.expect("FORMAT THUMBDRIVE", Answer::Yes).expect("TVK").expect("FORMAT THUMBDRIVE");
        mnuFileFormat_Click(c);
        EXPECT_TRUE(ui.done());
        EXPECT_TRUE(volumes->formattedDriveNumbers.empty());
        EXPECT_FALSE(fs::exists(tree.path("E/TAVRIN")));
    }
}

TEST_F(LetterFormat, FailedFormatOfAFullDriveLeavesItWithoutANewFolder) {
    Context c = driveE(DriveType::Removable, false);
    test::writeFile(tree.path("E/notes.txt"), "x");
    volumes->formatResult = kFormatError;
    ui.expect("FORMAT THUMBDRIVE", Answer::Yes)
        .expect("TVK")
        .expect("NO TAVRIN FOLDER", Answer::No);
    mnuFileFormat_Click(c);
    EXPECT_TRUE(ui.done());
    EXPECT_FALSE(fs::exists(tree.path("E/TAVRIN")));
}

}  // namespace
}  // namespace tvk
