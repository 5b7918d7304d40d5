// Rename and format of a real block device through udisks2: a loop device over a FAT
// image, on a system bus and udisks of the test's own. The device cannot be mounted
// here (no vfat module), so the stick is taken as the scan left it: its id, label and
// the folder it was last seen mounted at.

#include <gtest/gtest.h>

#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "drive/Udisks.h"
#include "drive/VolumeCommands.h"
#include "drive/VolumeProbe.h"
#include "support/DriveImages.h"
#include "udisks/UdisksServices.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

const std::string kErrorBox = "TVK: RUNTIME ERROR";

#define TVK_REQUIRE_LOOP_DEVICES()                                                        \
    do {                                                                                  \
        const std::string why = test::UdisksServices::unavailableReason();                \
        if (!why.empty()) GTEST_SKIP() << "udisks on a loop device unavailable: " << why; \
    } while (0)

std::string fatLabel(const std::string& device) {
    std::string out;
    EXPECT_EQ(test::runCommand("fatlabel /dev/" + device, &out), 0) << out;
    return trimWhitespace(out);
}

// A stick with presets, attached as a loop device and known to the session as the scan
// would have found it when it was still mounted.
struct LoopStick {
    LoopStick(test::UdisksServices& services, const std::string& label)
        : services(services),
          image({"fat16", 32, label, "0000BEEF"}, std::vector<std::string>{"SUPSET01.SPG"}),
          device(services.attach(image.image)),
          drives({pathFromUtf8("/dev/" + device)}),
          ctx(drives.ctx()),
          label(label) {
        drives.library.write("media/" + label + "/TAVRIN/SUPSET01.SPG", "x");
        scanned();
    }
    // The drive as the scan accepted it (each command's own scan forgets it again).
    void scanned() {
        ThumbDriveState& d = ctx.state.drive;
        d.present = true;
        d.letter = device;
        d.root = drives.library.path("media/" + label);
        d.volumeName = label;
        d.serialHex = "BEEF";
        d.fileSystem = "FAT";
        d.driveType = static_cast<int>(DriveType::Removable);
    }
    ~LoopStick() { services.detach(device); }
    test::UdisksServices& services;
    test::StickImage image;
    std::string device;
    test::ImageDriveContext drives;
    Context ctx;
    std::string label;
};

TEST(UdisksVolume, RenameChangesTheLabelOnDiskOrShowsWhyNot) {
    TVK_REQUIRE_LOOP_DEVICES();
    test::UdisksServices services(TVK_UDISKS_STATE);
    ASSERT_TRUE(services.up());
    struct Case {
        const char* answer;
        bool pulled;  // the device is gone before the rename
        const char* labelAfter;
        const char* refusal;  // the start of udisks' message, when it refuses
    };
    const Case cases[] = {
        {"new organ stick", false, "NEW ORGAN S", nullptr},
        {"a*b", false, "OLD NAME", "character '*' not supported in VFAT labels"},
        {"pulled", true, "OLD NAME", "No such interface"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer);
        LoopStick stick(services, "OLD NAME");
        ASSERT_FALSE(stick.device.empty());
        if (c.pulled) services.detach(stick.device);
        auto& ui = stick.drives.ui;
        ui.expectPrompt("RENAME VOLUME", c.answer).expect("RENAME USB", Answer::Yes);
        if (c.refusal) ui.expect("RENAME USB DRIVE");
        btnRenameVol_Click(stick.ctx);
        EXPECT_TRUE(ui.done());
        if (c.refusal) {
            const Message& box = ui.shown.back();
            EXPECT_EQ(box.icon, Icon::Exclamation);
            EXPECT_EQ(box.buttons, Buttons::Ok);
            EXPECT_EQ(
                box.text.rfind(std::string("The volume name was not changed.\r\r") + c.refusal, 0),
                0u)
                << box.text;
        }
        EXPECT_EQ(c.pulled ? probeVolume(stick.image.image)->label : fatLabel(stick.device),
                  c.labelAfter);
    }
}

TEST(UdisksVolume, FormatLeavesFreshFatWithTheLabelAndTheStickNotReady) {
    TVK_REQUIRE_LOOP_DEVICES();
    test::UdisksServices services(TVK_UDISKS_STATE);
    ASSERT_TRUE(services.up());
    LoopStick stick(services, "ORGAN");
    ASSERT_FALSE(stick.device.empty());
    auto& ui = stick.drives.ui;
    // Unmounted after the format, the stick has no folder to hold TAVRIN: the handler
    // says so, and the scan afterwards finds no drive ready.
    ui.expect("FORMAT THUMBDRIVE", Answer::Yes).expect(kErrorBox, Answer::Ignore);
    mnuFileFormat_Click(stick.ctx);
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(ui.shown.at(1).text.rfind("Encountered Err#71\rDisk not ready\r\r", 0), 0u)
        << ui.shown.at(1).text;
    EXPECT_FALSE(stick.ctx.state.drive.present);

    std::string out;
    EXPECT_EQ(test::runCommand("fsck.fat -n /dev/" + stick.device, &out), 0) << out;
    EXPECT_EQ(fatLabel(stick.device), "ORGAN");
    EXPECT_EQ(test::udisksBlockProperty(stick.device, "IdLabel"), "ORGAN");
    const auto after = probeVolume(stick.image.image);
    EXPECT_NE(after->serialNumber, 0xBEEFu);
    EXPECT_EQ(test::imageNames(stick.image.image, ""), std::vector<std::string>{});
}

TEST(UdisksVolume, WithoutTheServiceTheStickIsLeftAsItWas) {
    TVK_REQUIRE_LOOP_DEVICES();
    test::UdisksServices nothing(TVK_UDISKS_STATE, test::UdisksServices::Start::Nothing);
    LoopStick stick(nothing, "OLD NAME");
    ASSERT_FALSE(stick.device.empty());
    auto& ui = stick.drives.ui;
    ui.expectPrompt("RENAME VOLUME", "new").expect("RENAME USB", Answer::Yes);
    ui.expect("RENAME USB DRIVE");
    btnRenameVol_Click(stick.ctx);
    stick.scanned();
    ui.expect("FORMAT THUMBDRIVE", Answer::Yes).expect("FORMAT THUMBDRIVE");
    mnuFileFormat_Click(stick.ctx);
    EXPECT_TRUE(ui.done());
    const auto texts = ui.texts();
    EXPECT_EQ(texts.at(1), std::string("The volume name was not changed.\r\r") + udisks::kMissing);
    EXPECT_EQ(texts.at(3),
              std::string("The thumbdrive was not formatted; its files are as they were.\r\r") +
                  udisks::kMissing);
    EXPECT_EQ(fatLabel(stick.device), "OLD NAME");
    EXPECT_EQ(test::imageNames(stick.image.image, "TAVRIN"),
              std::vector<std::string>{"SUPSET01.SPG"});
}

}  // namespace
}  // namespace tvk
