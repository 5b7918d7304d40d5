// The transfer buttons on FAT images mounted as sticks: the round trip stick -> library ->
// stick, Auto Backup at the scan, and both sides compared before and after a pulled stick
// or a full disk.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "library/TransferCommands.h"
#include "organfiles/MakeFiles.h"
#include "support/DriveImages.h"
#include "support/FakeSystem.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::TempTree;
using Files = std::map<std::string, std::string>;

struct WatchedInteraction : test::ScriptedInteraction {
    std::function<void()> onEvents;
    void processEvents() override {
        ScriptedInteraction::processEvents();
        if (onEvents) onEvents();
    }
};

std::string organ(Series family, FileKind kind, const std::string& name) {
    RandomSource random(3);
    return buildTestFile(family, kind, name, random);
}

Files contents(const fs::path& folder) {
    Files files;
    if (!fs::is_directory(folder)) return files;
    for (const auto& e : fs::recursive_directory_iterator(folder))
        if (e.is_regular_file() && !startsWith(fileNameUtf8(e.path()), "."))
            files[pathToUtf8(fs::relative(e.path(), folder))] = test::readFile(e.path());
    return files;
}

void put(const fs::path& folder, const Files& files) {
    for (const auto& [name, bytes] : files) test::writeFile(folder / pathFromUtf8(name), bytes);
}

// One plug-in of a stick image: its own session on the given library, traced so that
// Abort ends a command rather than the program.
struct Plugged {
    WatchedInteraction ui;
    std::unique_ptr<Session> session;
    Plugged(const fs::path& library, const fs::path& image, const fs::path& trace) {
        auto system = std::make_unique<test::FakeSystem>();
        system->documents = library.parent_path();
        session = std::make_unique<Session>(std::move(system), ui);
        session->paths.libraryRoot = library;
        session->volumes = makePlatformVolumes({{image}, false});
        session->trace.open(trace);
        session->trace.debug = true;
    }
    Context ctx() { return session->context(); }
    fs::path tavrin() { return session->state.drive.tavrinFolder(); }
    // Accepts the stick as the window's scan does.
    void scan(bool autoBackup = false) {
        Context c = ctx();
        c.settings.autoBackup = autoBackup;
        afterScan(c, ScanForUSBs(c));
        ASSERT_TRUE(session->state.drive.present);
    }
};

const Files& organFiles() {
    static const Files files = {
        {"SUPSET01.LPG", organ(Series::SU, FileKind::Preset, "Piano")},
        {"SUPSET02.LPG", organ(Series::SU, FileKind::Preset, "Piano")},
        {"APSET003.LPG", organ(Series::A, FileKind::Preset, "A/B:C?")},
        {"EPSET010.EPG", organ(Series::E, FileKind::Preset, "Waltz")},
        {"SUSONG01.LMR", organ(Series::SU, FileKind::Recording, "Rock")},
        {"ASONG002.LMR", organ(Series::A, FileKind::Recording, "Ballad")},
        {"ESONG004.EMR", organ(Series::E, FileKind::Recording, "")},
        {"SONG.MP3", std::string(300000, 'm')},
        {"TUNE.MID", "midi"},
    };
    return files;
}

struct StickTest : ::testing::Test {
    TempTree tree;
    fs::path library = tree.mkdir("Documents/Tavrin File Manager");

    fs::path stickImage(const std::string& name, const std::string& serial, int sizeMiB = 32) {
        const auto image = test::makeImage(
            tree, name, {sizeMiB < 16 ? "fat12" : "fat16", sizeMiB, "ORGAN", serial});
        test::fillTavrin(tree, image, {});
        return image;
    }
    std::unique_ptr<Plugged> plug(const fs::path& image) {
        return std::make_unique<Plugged>(library, image, tree.path("TVK_ErrorLog.txt"));
    }
};

TEST_F(StickTest, RoundTripAddAllUpdateRestore) {
    TVK_REQUIRE_FUSE();
    const auto image = stickImage("stick.img", "1234ABCD");
    auto stick = plug(image);
    stick->scan();
    Context ctx = stick->ctx();
    EXPECT_FALSE(ctx.state.isEnabled("btnUSB_Docs_0"));
    EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_2"));
    put(stick->tavrin(), organFiles());

    stick->ui.expect("DUPLICATE FILES");
    EXPECT_TRUE(btnUSB_Docs_Click(ctx, 2).completed);
    const auto mirror = library / "ORGAN - 1234ABCD";
    const Files added = contents(mirror);
    EXPECT_EQ(added.at("Piano.LPG"), organFiles().at("SUPSET01.LPG"));
    EXPECT_EQ(added.at("Piano (1).LPG"), organFiles().at("SUPSET02.LPG"));
    EXPECT_EQ(added.at("A\u00D8B\u00A8C\u00BF.LPG"), organFiles().at("APSET003.LPG"));
    EXPECT_EQ(added.at("ESONG004.EMR"), organFiles().at("ESONG004.EMR"));
    EXPECT_EQ(added.size(), organFiles().size());
    EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_0") && ctx.state.isEnabled("btnUSB_Docs_1"));

    fs::remove(stick->tavrin() / "TUNE.MID");
    stick->ui.expect("UPDATE COMPUTER", Answer::Yes);
    EXPECT_TRUE(btnUSB_Docs_Click(ctx, 0).completed);
    const Files updated = contents(mirror);
    EXPECT_EQ(updated.count("TUNE.MID"), 0u);
    EXPECT_EQ(updated.at("Piano_#01.LPG"), organFiles().at("SUPSET01.LPG"));
    EXPECT_EQ(updated.at("Waltz_#010.EPG"), organFiles().at("EPSET010.EPG"));
    EXPECT_EQ(updated.at("ESONG004_#004.EMR"), organFiles().at("ESONG004.EMR"));

    for (const auto& e : fs::directory_iterator(stick->tavrin())) fs::remove(e.path());
    stick->ui.expect("RESTORE THUMBDRIVE", Answer::Yes);
    EXPECT_TRUE(btnUSB_Docs_Click(ctx, 1).completed);
    Files expected = organFiles();
    expected.erase("TUNE.MID");
    EXPECT_EQ(contents(stick->tavrin()), expected);
    EXPECT_EQ(contents(mirror), updated);
    EXPECT_TRUE(stick->ui.done());

    // The same label on another stick has its own mirror folder.
    stick.reset();
    auto other = plug(stickImage("other.img", "5678DCBA"));
    other->scan();
    Context otherCtx = other->ctx();
    EXPECT_FALSE(otherCtx.state.isEnabled("btnUSB_Docs_0"));
    EXPECT_TRUE(btnUSB_Docs_Click(otherCtx, 2).completed);
    EXPECT_TRUE(fs::is_directory(library / "ORGAN - 5678DCBA"));
    EXPECT_EQ(contents(mirror), updated);
}

TEST_F(StickTest, APulledStickLosesNothing) {
    TVK_REQUIRE_FUSE();
    const auto mirror = library / "ORGAN - 1234ABCD";
    const Files inMirror = {{"Piano_#01.LPG", organFiles().at("SUPSET01.LPG")},
                            {"Rock_#01.SMR", organFiles().at("SUSONG01.LMR")},
                            {"SONG.MP3", organFiles().at("SONG.MP3")}};
    struct Case {
        int button;
        std::vector<std::pair<std::string, Answer>> boxes;
    };
    const Case cases[] = {{2, {}},
                          {0, {{"UPDATE COMPUTER", Answer::Yes}}},
                          {1, {{"RESTORE THUMBDRIVE", Answer::Yes}}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.button);
        fs::remove_all(mirror);
        fs::create_directories(mirror);
        put(mirror, inMirror);
        const Files libraryBefore = contents(library);
        const auto image = stickImage("pulled" + std::to_string(c.button) + ".img", "1234ABCD");
        {
            auto stick = plug(image);
            stick->scan();
            put(stick->tavrin(), organFiles());
            Context ctx = stick->ctx();
            for (const auto& [title, answer] : c.boxes) stick->ui.expect(title, answer);
            stick->ui.expect("TVK: RUNTIME ERROR", Answer::Abort);
            int events = 0;
            stick->ui.onEvents = [&] {
                if (++events == 3) test::pullImage(stick->session->state.drive.root);
            };
            stick->ui.lenient = true;  // the lists and counts of a pulled stick fail too
            EXPECT_FALSE(btnUSB_Docs_Click(ctx, c.button).completed);
            stick->ui.onEvents = nullptr;
            if (c.button == 0) {
                const auto& shown = stick->ui.shown;
                EXPECT_TRUE(std::any_of(shown.begin(), shown.end(), [](const Message& m) {
                    return m.text.find("was not changed") != std::string::npos;
                }));
            }
        }
        // The library is as it was, for every command; add all left its new folder as it got.
        if (c.button != 2) EXPECT_EQ(contents(library), libraryBefore);
        for (const auto& [name, bytes] : libraryBefore) EXPECT_EQ(contents(library)[name], bytes);
        if (c.button != 1) continue;
        // Plugged in again: the scan offers to finish the restore.
        auto again = plug(image);
        again->ui.expect("RESTORE THUMBDRIVE", Answer::Yes);
        again->scan();
        EXPECT_TRUE(again->ui.done());
        EXPECT_NE(again->ui.shown.at(0).text.find("did not finish"), std::string::npos);
        EXPECT_EQ(contents(again->tavrin()), (Files{{"SUPSET01.LPG", inMirror.at("Piano_#01.LPG")},
                                                    {"SUSONG01.LMR", inMirror.at("Rock_#01.SMR")},
                                                    {"SONG.MP3", inMirror.at("SONG.MP3")}}));
        EXPECT_FALSE(fs::exists(again->session->state.drive.root / ".tvk-restore"));
        EXPECT_EQ(contents(library), libraryBefore);
    }
}

TEST_F(StickTest, FullDisksChangeNothing) {
    TVK_REQUIRE_FUSE();
    // A restore that cannot fit on a small stick is refused before anything goes.
    const auto small = stickImage("small.img", "1234ABCD", 1);
    const auto mirror = library / "ORGAN - 1234ABCD";
    fs::create_directories(mirror);
    put(mirror, {{"A.MP3", std::string(600000, 'a')}, {"B.MP3", std::string(600000, 'b')}});
    {
        auto stick = plug(small);
        stick->scan();
        put(stick->tavrin(), {{"SUPSET01.LPG", organFiles().at("SUPSET01.LPG")}});
        Context ctx = stick->ctx();
        stick->ui.expect("RESTORE THUMBDRIVE", Answer::Yes).expect("NOT ENOUGH ROOM");
        EXPECT_FALSE(btnUSB_Docs_Click(ctx, 1).completed);
        EXPECT_TRUE(stick->ui.done());
        EXPECT_EQ(contents(stick->tavrin()),
                  (Files{{"SUPSET01.LPG", organFiles().at("SUPSET01.LPG")}}));
    }
    // An update that fills the computer's disk leaves the old copy.
    const auto disk = test::makeImage(tree, "disk.img", {"fat12", 1, "LIBDISK", ""});
    const auto diskRoot = tree.mkdir("disk");
    ASSERT_EQ(test::runCommand("fusefat -o rw+ '" + pathToUtf8(disk) + "' '" +
                               pathToUtf8(diskRoot) + "'"),
              0);
    struct Unmount {
        fs::path root;
        ~Unmount() { test::runCommand("fusermount -u '" + pathToUtf8(root) + "'"); }
    } unmount{diskRoot};
    library = diskRoot / "Tavrin File Manager";
    const auto smallMirror = library / "ORGAN - 1234ABCD";
    fs::create_directories(smallMirror);
    put(smallMirror, {{"Old_#01.LPG", "old"}});
    const Files before = contents(library);
    auto stick = plug(stickImage("big.img", "1234ABCD"));
    stick->scan();
    put(stick->tavrin(),
        {{"A.MP3", std::string(600000, 'a')}, {"B.MP3", std::string(600000, 'b')}});
    Context ctx = stick->ctx();
    stick->ui.expect("UPDATE COMPUTER", Answer::Yes)
        .expect("TVK: RUNTIME ERROR", Answer::Abort)
        .expect("UPDATE COMPUTER");
    EXPECT_FALSE(btnUSB_Docs_Click(ctx, 0).completed);
    EXPECT_TRUE(stick->ui.done());
    EXPECT_EQ(contents(library), before);
}

TEST_F(StickTest, AutoBackupAddsOnlyWhatIsNewOrChanged) {
    TVK_REQUIRE_FUSE();
    const auto image = stickImage("stick.img", "1234ABCD");
    const auto mirror = library / "ORGAN - 1234ABCD";
    const Files first = {{"SUPSET01.LPG", organFiles().at("SUPSET01.LPG")},
                         {"SONG.MP3", organFiles().at("SONG.MP3")}};
    struct Case {
        Files change;  // written on the stick before the scan
        std::vector<std::string> mirrorNames;
        std::string status;
    };
    const Case cases[] = {
        {first, {"Piano.LPG", "SONG.MP3"}, ""},
        {{},
         {"Piano.LPG", "SONG.MP3"},
         "Auto Backup: 0 new or changed files added to ORGAN - 1234ABCD"},
        {{{"SUPSET01.LPG", organFiles().at("SUPSET02.LPG") + "x"}, {"TUNE.MID", "midi"}},
         {"Piano (1).LPG", "Piano.LPG", "SONG.MP3", "TUNE.MID"},
         "Auto Backup: 2 new or changed files added to ORGAN - 1234ABCD"},
    };
    for (const auto& c : cases) {
        auto stick = plug(image);
        stick->scan();
        put(stick->tavrin(), c.change);
        stick->scan(true);
        std::vector<std::string> names;
        for (const auto& [name, bytes] : contents(mirror)) names.push_back(name);
        EXPECT_EQ(names, c.mirrorNames);
        if (!c.status.empty()) EXPECT_EQ(stick->ui.status[StatusPanel::Second], c.status);
    }
}

}  // namespace
}  // namespace tvk
