// The transfer buttons and "&Sort" clicked in the window on a real FAT stick image, with
// the results checked on disk, and the stick pulled out while its list is shown.

#include <algorithm>
#include <functional>
#include <map>

#include <QLineEdit>

#include "drive/StickLock.h"
#include "drive/Volumes.h"
#include "support/DriveImages.h"
#include "support/FakeVolumes.h"
#include "ui/DeviceWatch.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

constexpr const char* kSortTitle = "SORT PRESET AND RECORDING NAMES";

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(folder)) names.push_back(fileNameUtf8(e.path()));
    std::sort(names.begin(), names.end());
    return names;
}

struct StickWindow : WindowFixture {
    fs::path tavrin;

    // Attaches a FAT image holding `files` in its TAVRIN folder and lets the window scan it.
    void plug(const Files& files) {
        const auto image = makeImage(tree, "stick.img", {"fat16", 32, "ORGAN", "1234ABCD"});
        auto volumes = makePlatformVolumes({{image}, false});
        const auto root = volumes->rootPath(volumes->drives().at(0));
        fs::create_directory(root / "TAVRIN");
        for (const auto& [name, bytes] : files) writeFile(root / "TAVRIN" / name, bytes);
        window->session().volumes = volumes;
        window->scanForDrives();
        ASSERT_TRUE(window->session().state.drive.present);
        tavrin = window->session().state.drive.tavrinFolder();
    }
    // "10111": which of the five transfer buttons can be clicked.
    std::string transferButtons() const {
        std::string on;
        for (int i = 0; i < 5; ++i)
            on += find<QPushButton>(("btnUSB_Docs_" + std::to_string(i)).c_str())->isEnabled()
                      ? '1'
                      : '0';
        return on;
    }
    void TearDown() override {
        window->session().volumes.reset();
        WindowFixture::TearDown();
    }
};

TEST_F(StickWindow, TheFiveTransferButtons) {
    TVK_REQUIRE_FUSE();
    EXPECT_EQ(transferButtons(), "00000");
    const Files stick = {
        {"SUPSET01.LPG", organFile(Series::SU, FileKind::Preset, "Zebra")},
        {"SUPSET02.LPG", organFile(Series::SU, FileKind::Preset, "Zebra")},
        {"EPSET003.EPG", organFile(Series::E, FileKind::Preset, "Waltz")},
        {"ASONG001.LMR", organFile(Series::A, FileKind::Recording, "Ballad")},
        {"SONG.MP3", std::string(5000, 'm')},
    };
    plug(stick);
    EXPECT_EQ(transferButtons(), "00111");  // no mirror folder yet

    const fs::path mirror = library() / "ORGAN - 1234ABCD";
    struct Case {
        int index;
        std::function<void()> before;
        std::vector<std::pair<const char*, Answer>> boxes;
        fs::path folder;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {2,
         [] {},
         {{"DUPLICATE FILES", Answer::Ok}},
         mirror,
         {"Ballad.LMR", "SONG.MP3", "Waltz.EPG", "Zebra (1).LPG", "Zebra.LPG"}},
        {0,
         [&] { fs::remove(tavrin / "SONG.MP3"); },
         {{"UPDATE COMPUTER", Answer::Yes}},
         mirror,
         {"Ballad_#001.LMR", "Waltz_#003.EPG", "Zebra_#01.LPG", "Zebra_#02.LPG"}},
        {1,
         [&] { writeFile(tavrin / "EXTRA.MID", "m"); },
         {{"RESTORE THUMBDRIVE", Answer::Yes}},
         tavrin,
         {"ASONG001.LMR", "EPSET003.EPG", "SUPSET01.LPG", "SUPSET02.LPG"}},
        {3,
         [] {},
         {{"COPY PRESETS TO POOL", Answer::Ok}},
         library() / pathFromUtf8(kFolderPresetPool),
         {"Waltz.EPG", "Zebra.SPG", "Zebra_#1.SPG"}},
        {4,
         [] {},
         {{"COPY RECORDINGS TO POOL", Answer::Ok}},
         library() / pathFromUtf8(kFolderMusicRecordings),
         {"Ballad.AMR"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        c.before();
        for (const auto& [title, answer] : c.boxes) ui.expect(title, answer);
        clickButton(("btnUSB_Docs_" + std::to_string(c.index)).c_str());
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(namesIn(c.folder), c.names);
        EXPECT_EQ(transferButtons(), "11111");
    }
    Files restored = stick;
    restored.erase("SONG.MP3");
    for (const auto& [name, bytes] : restored) EXPECT_EQ(readFile(tavrin / name), bytes) << name;

    // Pulled behind the program's back: the removal notice that arrives during another
    // command waits for it to end, then the list empties and nothing is left to transfer.
    runCommand("fusermount -u '" + pathToUtf8(window->session().state.drive.root) + "'");
    window->command([&] {
        emit find<ui::DeviceWatch>("SysInfo1")
            ->notice(DeviceNotice{
                DeviceNotice::Kind::Removal, window->session().state.drive.letter, {}});
        QApplication::processEvents();
        EXPECT_TRUE(window->session().state.drive.present);
    });
    EXPECT_TRUE(waitUntil([&] { return !window->session().state.drive.present; }));
    EXPECT_EQ(list("flbUSB")->count(), 0);
    EXPECT_TRUE(find<QLineEdit>("txtUSBPath")->text().isEmpty());
    EXPECT_EQ(transferButtons(), "00000");
}

TEST_F(StickWindow, SortRenumbersTheStickAlphabetically) {
    TVK_REQUIRE_FUSE();
    const Files stick = {
        {"SUPSET01.LPG", organFile(Series::SU, FileKind::Preset, "Zebra")},
        {"SUPSET02.LPG", organFile(Series::SU, FileKind::Preset, "Mango")},
        {"SUPSET03.LPG", organFile(Series::SU, FileKind::Preset, "Apple")},
    };
    plug(stick);
    ui.expect(kSortTitle, Answer::Yes).expect(kSortTitle);
    clickButton("btnSort");
    ASSERT_TRUE(ui.done());
    EXPECT_TRUE(
        startsWith(toDisplayLines(ui.shown.back().text), "Sorting complete\n\nElapsed time: "))
        << ui.shown.back().text;
    EXPECT_EQ(readFile(tavrin / "SUPSET01.LPG"), stick.at("SUPSET03.LPG"));
    EXPECT_EQ(readFile(tavrin / "SUPSET02.LPG"), stick.at("SUPSET02.LPG"));
    EXPECT_EQ(readFile(tavrin / "SUPSET03.LPG"), stick.at("SUPSET01.LPG"));
    EXPECT_EQ(names("flbUSB"), (QStringList{"SUPSET01.LPG", "SUPSET02.LPG", "SUPSET03.LPG"}));
    EXPECT_FALSE(fs::exists(library() / "FileSorting"));
}

// While another command of the program (tvk, in another process) holds a stick, the
// window's commands on it say so and change nothing; reading commands share it.
TEST_F(WindowFixture, CommandsOnABusyStickChangeNothing) {
    auto volumes = std::make_shared<FakeVolumes>();
    volumes->letters["E"].info.serialNumber = 0x5EA1F00D;
    window->session().volumes = volumes;
    window->session().state.drive.letter = "E";
    window->session().state.drive.serialHex = "5EA1F00D";
    const auto tavrin = acceptStick();
    writeFile(tavrin / "SUPSET01.LPG", organFile(Series::SU, FileKind::Preset, "Zebra"));
    writeFile(tavrin / "SUPSET02.LPG", organFile(Series::SU, FileKind::Preset, "Apple"));
    window->session().state.enabled["btnSort"] = true;
    window->refreshAll();
    {
        auto reading = StickLock::tryTake("volume-5EA1F00D", StickUse::Read);
        ASSERT_TRUE(reading);
        ui.expect("THUMBDRIVE BUSY");
        clickButton("btnSort");
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(ui.shown.size(), 1u);  // not even the sort's question
        EXPECT_EQ(readFile(tavrin / "SUPSET01.LPG"),
                  organFile(Series::SU, FileKind::Preset, "Zebra"));
    }
    ui.expect(kSortTitle, Answer::Yes).expect(kSortTitle);  // free again once it ended
    clickButton("btnSort");
    EXPECT_EQ(readFile(tavrin / "SUPSET01.LPG"), organFile(Series::SU, FileKind::Preset, "Apple"));
}

}  // namespace
}  // namespace tvk::test
