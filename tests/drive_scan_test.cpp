// The thumbdrive scan: on real FAT, exFAT and ext4 images mounted through FUSE, and on
// Windows-style drive letters for the cases this machine cannot have.

#include <gtest/gtest.h>
#ifndef _WIN32
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "app/Text.h"
#include "drive/ImageDrives.h"
#include "drive/ScanForUSBs.h"
#include "drive/VolumeHelpers.h"
#include "drive/VolumeProbe.h"
#include "library/TransferCommands.h"
#include "support/DriveImages.h"
#include "support/FakeVolumes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::ImageDriveContext;
using test::ImageRecipe;
using test::TempTree;

// The five transfer buttons, '1' for each one enabled.
std::string transferButtons(const MainState& s) {
    std::string on;
    for (int i = 0; i < kTransferButtons; ++i)
        on += s.isEnabled(controlName("btnUSB_Docs", i)) ? '1' : '0';
    return on;
}

TEST(DriveScan, AcceptedFatSticksEnableTheirCommands) {
    TVK_REQUIRE_FUSE();
    struct Case {
        ImageRecipe recipe;
        const char* files;
        bool mirrorFolder;
        std::string fileSystem, serialHex, items, buttons;
    };
    const Case cases[] = {
        {ImageRecipe("fat32", 40, "ORGAN STICK", "00C0FFEE"), "SUPSET01.LPG|ESONG001.EMR|A.MID",
         false, "FAT32", "C0FFEE", "2 items", "00111"},
        {ImageRecipe("fat16", 32, "SMALL", "12345678"), "", true, "FAT", "12345678", "0 items",
         "11111"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.recipe.kind);
        test::ImageStick drives(c.recipe, test::split(c.files));
        if (c.mirrorFolder)
            fs::create_directories(drives.session->paths.libraryRoot /
                                   mirrorFolderName(c.recipe.label, c.serialHex));
        Context ctx = drives.ctx();
        ctx.state.pattern = "*.*";
        ScanForUSBs(ctx);

        EXPECT_TRUE(drives.ui.shown.empty());
        const ThumbDriveState& d = ctx.state.drive;
        EXPECT_TRUE(d.present);
        EXPECT_EQ(d.fileSystem, c.fileSystem);
        EXPECT_EQ(d.root, drives.root());
        EXPECT_EQ(drives.ui.status[StatusPanel::Drive], "Volume Name: " + c.recipe.label +
                                                            "  Serial Number:" + c.serialHex +
                                                            "  DevID:" + pathToUtf8(drives.image));
        EXPECT_EQ(drives.ui.status[StatusPanel::Progress], c.items);
        EXPECT_EQ(ctx.state.usbPattern, "*.*");
        EXPECT_EQ(transferButtons(ctx.state), c.buttons);
        EXPECT_TRUE(ctx.state.isEnabled("btnRenameVol"));
        EXPECT_EQ(ctx.state.isEnabled("btnSort"), *c.files != 0);
    }
}

TEST(DriveScan, MissingTavrinFolderIsCreatedOnlyWhenTheUserSaysYes) {
    TVK_REQUIRE_FUSE();
    for (const Answer answer : {Answer::Yes, Answer::No}) {
        test::ImageStick drives({"fat16", 32, "NO FOLDER", ""});
        Context ctx = drives.ctx();
        drives.ui.expect("NO TAVRIN FOLDER", answer);
        ScanForUSBs(ctx);
        ASSERT_EQ(drives.ui.shown.size(), 1u);
        EXPECT_EQ(drives.ui.shown[0].text,
                  "This Thumbdrive is properly formatted but does not have a TAVRIN folder.\r\r"
                  "Do you want to create a TAVRIN folder on this thumbdrive?");
        const bool yes = answer == Answer::Yes;
        EXPECT_EQ(fs::is_directory(drives.root() / "TAVRIN"), yes);
        EXPECT_EQ(ctx.state.drive.present, yes);
        EXPECT_EQ(ctx.state.usbPattern, yes ? ctx.state.pattern : std::string("*.nothing"));
    }
}

TEST(DriveScan, UnnamedStickKeepsTheTransferButtonsOffAndIsNotBackedUp) {
    TVK_REQUIRE_FUSE();
    struct Case {
        std::string label;
        bool autoBackup;
        ScanOutcome outcome;
    };
    for (const Case& c :
         {Case{"", true, ScanOutcome::Refused}, Case{"BACKUP", false, ScanOutcome::Accepted},
          Case{"BACKUP", true, ScanOutcome::AutoBackupWanted}}) {
        SCOPED_TRACE(c.label + (c.autoBackup ? " auto" : ""));
        test::ImageStick drives({"fat32", 40, c.label, ""}, std::vector<std::string>{});
        Context ctx = drives.ctx();
        ctx.settings.autoBackup = c.autoBackup;
        if (c.label.empty()) drives.ui.expect("TVK");
        EXPECT_EQ(ScanForUSBs(ctx), c.outcome);
        EXPECT_TRUE(ctx.state.isEnabled("btnRenameVol"));
        if (!c.label.empty()) continue;
        EXPECT_EQ(drives.ui.shown.at(0).text, "The attached thumbdrive needs a Volume Name.");
        EXPECT_EQ(transferButtons(ctx.state), "00000");
    }
}

TEST(DriveScan, OtherFileSystemsAreOfferedAFormatOnlyWhenEmpty) {
    TVK_REQUIRE_FUSE();
    struct Case {
        ImageRecipe recipe;
        std::string fileSystem;
        bool holdsFiles;
    };
    const Case cases[] = {{{"exfat", 20, "EXSTICK", ""}, "exFAT", false},
                          {{"ext4", 8, "LINUX", ""}, "ext4", false},
                          {{"exfat", 20, "EXSTICK", ""}, "exFAT", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.recipe.kind + (c.holdsFiles ? " with files" : " empty"));
        test::ImageStick drives(c.recipe);
        Context ctx = drives.ctx();
        if (c.holdsFiles) test::writeFile(drives.root() / "song.mp3", "x");
        drives.ui.expect(c.holdsFiles ? "TVK" : "WRONG FILE SYSTEM",
                         c.holdsFiles ? Answer::Ok : Answer::No);
        ScanForUSBs(ctx);
        ASSERT_EQ(drives.ui.shown.size(), 1u);
        EXPECT_EQ(drives.ui.shown[0].text,
                  c.holdsFiles
                      ? "This Thumbdrive is NOT formatted correctly for use in a Tavrin Organ."
                      : "This thumbdrive has the \"" + c.fileSystem +
                            "\" File System.\rIt should have the \"FAT\" or \"FAT32\" File "
                            "System.\r\rThis thumbdrive is also EMPTY.\r\rDo you want to FORMAT "
                            "this thumbdrive to the correct File System?");
        EXPECT_EQ(ctx.state.usbPattern, "*.nothing");
        EXPECT_FALSE(ctx.state.drive.present);
        EXPECT_EQ(probeVolume(drives.image)->fileSystemName, c.fileSystem);
    }
}

TEST(DriveScan, EmptyExfatStickFormattedOnYesComesBackAsFatWithTavrin) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"exfat", 20, "EXSTICK", ""});
    Context ctx = drives.ctx();
    drives.ui.expect("WRONG FILE SYSTEM", Answer::Yes).expect("FORMAT THUMBDRIVE", Answer::Yes);
    ScanForUSBs(ctx);
    EXPECT_TRUE(drives.ui.done());
    EXPECT_EQ(drives.ui.shown.size(), 2u);  // no format window on Linux, so no "FAT" hint
    EXPECT_TRUE(ctx.state.drive.present);
    EXPECT_EQ(ctx.state.drive.fileSystem, "FAT");
    EXPECT_EQ(ctx.state.drive.volumeName, "EXSTICK");
    EXPECT_TRUE(fs::is_directory(drives.root() / "TAVRIN"));
}

TEST(DriveScan, PulledStickArrivesAsANoticeAndLeavesNoDrive) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"fat16", 32, "GONE", ""}, {{"SUPSET01.LPG"}});
    Context ctx = drives.ctx();
    ScanForUSBs(ctx);
    ASSERT_TRUE(ctx.state.drive.present);
    Volumes& volumes = *drives.session->volumes;
    ASSERT_GE(volumes.noticeHandle(), 0);
    EXPECT_FALSE(waitForNotices(volumes, 0));

    ASSERT_EQ(test::runCommand("fusermount -u '" + pathToUtf8(drives.root()) + "'"), 0);
    EXPECT_TRUE(waitForNotices(volumes, 2000));
    const auto notices = volumes.takeNotices();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0].kind, DeviceNotice::Kind::Removal);
    EXPECT_EQ(notices[0].deviceId, pathToUtf8(drives.image));
    EXPECT_FALSE(waitForNotices(volumes, 0));

    SysInfo1_DeviceRemoveComplete(ctx, notices[0]);
    EXPECT_TRUE(drives.ui.shown.empty());
    EXPECT_FALSE(ctx.state.drive.present);
    EXPECT_EQ(ctx.state.drive.letter, "");
    EXPECT_EQ(ctx.state.usbPattern, "*.nothing");
    EXPECT_FALSE(ctx.state.isEnabled(controlName("btnUSB_Docs", 2)));
}

TEST(DriveScan, MountsLeftByACrashedRunAreRemovedByTheNext) {
#ifdef _WIN32
    TVK_LINUX_ONLY("kills a tvk holding a FUSE mount");
#else
    TVK_REQUIRE_FUSE();
    TempTree tree;
    const auto image = test::makeImage(tree, "stick.img", {"fat16", 32, "CRASH", ""});
    // tvk mounts the image, then waits at the NO TAVRIN FOLDER question and is killed.
    int input[2];
    ASSERT_EQ(pipe(input), 0);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(input[0], 0);
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, 1);
        dup2(quiet, 2);
        close(input[1]);
        execl(TVK_CLI_PATH, "tvk", "scan", "--drive-image", image.c_str(), nullptr);
        _exit(127);
    }
    close(input[0]);
    const auto mountDir = imageMountFolder() / (std::to_string(pid) + "-1");
    const auto mounted = [&] {
        return test::readFile("/proc/self/mountinfo").find(" " + pathToUtf8(mountDir) + " ") !=
               std::string::npos;
    };
    for (int i = 0; i < 250 && !mounted(); ++i) usleep(20000);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    close(input[1]);
    ASSERT_TRUE(mounted());

    makePlatformVolumes({{}, false});
    EXPECT_FALSE(mounted());
    EXPECT_FALSE(fs::exists(mountDir));
#endif
}

// Drive letters, as only Windows has them.
using LetterScan = test::LetterDrivesTest;

TEST_F(LetterScan, LowestRemovableLetterWinsAndNoticesChooseTheirOwn) {
    add("C", DriveType::Fixed, "NTFS");
    add("E", DriveType::Removable, "FAT32", "EEE");
    add("F", DriveType::Removable, "FAT", "FFF");
    add("G", DriveType::CdRom, "FAT");
    Context c = letterContext();
    ScanForUSBs(c);
    EXPECT_EQ(c.state.drive.letter, "E");
    EXPECT_EQ(ui.status[StatusPanel::Drive], "Volume Name: EEE  Serial Number:1234  DevID:16");

    // A second stick is ignored while the first is attached, and taken once it is gone.
    SysInfo1_DeviceArrival(c, {DeviceNotice::Kind::Arrival, "F", "32"});
    EXPECT_EQ(c.state.drive.letter, "E");
    volumes->letters.erase("E");
    SysInfo1_DeviceRemoveComplete(c, {DeviceNotice::Kind::Removal, "E", "16"});
    EXPECT_EQ(c.state.drive.letter, "F");
    // A CD-ROM is a drive kind the organ accepts, but only a notice brings it in.
    volumes->letters.erase("F");
    SysInfo1_DeviceArrival(c, {DeviceNotice::Kind::Arrival, "G", "64"});
    EXPECT_EQ(c.state.drive.letter, "G");
    EXPECT_TRUE(c.state.drive.present);
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(LetterScan, RefusalsByKindAndExactFileSystemName) {
    struct Case {
        DriveType type;
        std::string fileSystem, title, text;
    };
    const Case cases[] = {
        {DriveType::Fixed, "FAT32", "TVK", "The storage device attached is not USB or CD-ROM"},
        {DriveType::Remote, "FAT", "TVK", "The storage device attached is not USB or CD-ROM"},
        {DriveType::Removable, "fat32", "TVK",
         "This Thumbdrive is NOT formatted correctly for use in a Tavrin Organ."},
        {DriveType::Removable, "FAT12", "TVK",
         "This Thumbdrive is NOT formatted correctly for use in a Tavrin Organ."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fileSystem);
        add("H", c.type, c.fileSystem);
        ui.shown.clear();
        ui.expect(c.title);
        Context cx = letterContext();
        const DeviceNotice notice{DeviceNotice::Kind::Arrival, "H", "128"};
        ScanForUSBs(cx, &notice);
        ASSERT_EQ(ui.shown.size(), 1u);
        EXPECT_EQ(ui.shown[0].text, c.text);
        EXPECT_EQ(cx.state.usbPattern, "*.nothing");
        EXPECT_FALSE(cx.state.drive.present);
    }
}

// A card reader's empty slot is removable but holds no volume: the full scan passes over
// it to the stick; a notice for it, or any other failure of the volume query, is reported.
TEST_F(LetterScan, EmptyCardSlotsArePassedOverButOtherFailuresReported) {
    struct Case {
        const char* name;
        int errorE, errorF;  // what the volume queries of E and F fail with
        bool noticeForE;
        const char* chosen;
        bool box;
    };
    const Case cases[] = {
        {"empty slot before the stick", kErrDiskNotReady, 0, false, "F", false},
        {"two sticks", 0, 0, false, "E", false},
        {"every slot empty", kErrDiskNotReady, kErrDiskNotReady, false, "", false},
        {"unreadable stick before another", kErrDeviceIO, 0, false, "", true},
        {"notice for an empty slot", kErrDiskNotReady, 0, true, "", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        add("C", DriveType::Fixed, "NTFS");
        add("E", DriveType::Removable, "FAT32", "EEE").volumeError = c.errorE;
        add("F", DriveType::Removable, "FAT", "FFF").volumeError = c.errorF;
        ui.shown.clear();
        if (c.box) ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
        Context cx = letterContext();
        const DeviceNotice notice{DeviceNotice::Kind::Arrival, "E", "16"};
        ScanForUSBs(cx, c.noticeForE ? &notice : nullptr);
        EXPECT_TRUE(ui.done());
        ASSERT_EQ(ui.shown.size(), c.box ? 1u : 0u);
        if (c.box) {
            EXPECT_NE(ui.shown[0].text.find("ScanForUSBs"), std::string::npos);
        }
        EXPECT_EQ(cx.state.drive.letter, c.chosen);
        EXPECT_EQ(cx.state.drive.present, *c.chosen != '\0');
        if (!*c.chosen) {
            EXPECT_EQ(cx.state.usbPattern, "*.nothing");
        }
    }
}

}  // namespace
}  // namespace tvk
