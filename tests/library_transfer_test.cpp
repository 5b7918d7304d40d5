// The transfer buttons on real folders and on real FAT sticks: the names each command
// gives, its questions, the round trip stick -> library -> stick, and what is left on both
// sides when the stick is pulled or a disk fills.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "library/TransferCommands.h"
#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"
#include "support/DriveImages.h"
#include "support/FakeSystem.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::TempTree;
using Files = std::map<std::string, std::string>;  // name (with subfolder) -> bytes

struct WatchedInteraction : test::ScriptedInteraction {
    std::function<void()> onEvents;
    void processEvents() override {
        ScriptedInteraction::processEvents();
        if (onEvents) onEvents();
    }
};

std::string organ(Series family, FileKind kind, const std::string& name) {
    RandomSource random(11);
    return buildTestFile(family, kind, name, random);
}
std::string su(const std::string& name) {
    return organ(Series::SU, FileKind::Preset, name);
}

void put(const fs::path& folder, const Files& files) {
    for (const auto& [name, bytes] : files) {
        fs::create_directories((folder / pathFromUtf8(name)).parent_path());
        test::writeFile(folder / pathFromUtf8(name), bytes);
    }
}

// Everything in a folder, subfolders included, but the program's hidden notes.
Files contents(const fs::path& folder) {
    Files files;
    if (!fs::is_directory(folder)) return files;
    for (const auto& e : fs::recursive_directory_iterator(folder))
        if (e.is_regular_file())
            files[pathToUtf8(fs::relative(e.path(), folder).generic_u8string())] =
                test::readFile(e.path());
    return files;
}

std::vector<std::string> names(const Files& files) {
    std::vector<std::string> out;
    for (const auto& [name, bytes] : files) out.push_back(name);
    return out;
}

// A session whose stick is a plain folder: fast, and every name is allowed.
struct TransferTest : ::testing::Test {
    TempTree tree;
    WatchedInteraction ui;
    Session session{std::make_unique<test::FakeSystem>(), ui};
    Context ctx = session.context();
    fs::path stick;

    TransferTest() {
        session.paths.libraryRoot = tree.mkdir("lib");
        ThumbDriveState& d = ctx.state.drive;
        d.present = true;
        d.root = tree.mkdir("stick");
        d.volumeName = "ORGAN";
        d.serialHex = "1A2B";
        stick = tree.mkdir("stick/TAVRIN");
    }
    void traced() {
        session.trace.open(tree.path("TVK_ErrorLog.txt"));
        session.trace.debug = true;
    }
};

// Stick files every naming case starts from.
const Files& stickFiles() {
    static const Files files = {
        {"SUPSET01.LPG", su("Piano")},
        {"SUPSET02.LPG", su("Piano")},
        {"APSET003.LPG", organ(Series::A, FileKind::Preset, "A/B:C?")},
        {"ESONG004.EMR", organ(Series::E, FileKind::Recording, "")},
        {"Song.mp3", "mp3"},
        {"tune.mid", "midi"},
    };
    return files;
}

TEST_F(TransferTest, AddAllAndThePoolsNameFilesAndNeverReplaceOne) {
    put(stick, stickFiles());
    put(session.paths.presetPool(), {{"Piano.SPG", "mine"}});
    struct Case {
        TransferButton button;
        fs::path folder;
        std::vector<std::pair<std::string, Answer>> boxes;
        std::vector<std::string> names;  // the folder afterwards
    };
    const Case cases[] = {
        {TransferButton::AddAll,
         tree.path("lib/ORGAN - 1A2B"),
         {{"DUPLICATE FILES", Answer::Ok}},
         {"A\u00D8B\u00A8C\u00BF.LPG", "ESONG004.EMR", "Piano (1).LPG", "Piano.LPG", "Song.mp3",
          "tune.mid"}},
        {TransferButton::PoolPresets,
         session.paths.presetPool(),
         {{"COPY PRESETS TO POOL", Answer::Ok}},
         {"A\u00D8B\u00A8C\u00BF.APG", "Piano.SPG", "Piano_#1.SPG", "Piano_#2.SPG"}},
        {TransferButton::PoolRecordings,
         session.paths.musicRecordings(),
         {{"COPY RECORDINGS TO POOL", Answer::Ok}},
         {"ESONG004.EMR"}},
        {TransferButton::PoolRecordings,
         session.paths.musicRecordings(),
         {{"COPY RECORDINGS TO POOL", Answer::Cancel}},
         {"ESONG004.EMR"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.button));
        ui.shown.clear();
        for (const auto& [title, answer] : c.boxes) ui.expect(title, answer);
        const auto report = btnUSB_Docs_Click(ctx, static_cast<int>(c.button));
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(names(contents(c.folder)), c.names);
        EXPECT_EQ(ctx.state.series, 0);
        EXPECT_EQ(ctx.state.selectedCategory, 0);
        EXPECT_FALSE(ui.progressVisible);
        EXPECT_EQ(contents(stick), stickFiles());
        if (c.button == TransferButton::AddAll) {
            EXPECT_EQ(ui.shown.at(0).text, "There are 1 duplicate files marked with (#)");
            EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_0"));
            EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_1"));
        }
        if (c.button == TransferButton::PoolPresets) {
            EXPECT_EQ(ui.shown.at(0).text, "This will copy 3 PRESET files to the \"Preset Pool\"");
            EXPECT_EQ(contents(c.folder).at("Piano.SPG"), "mine");
        }
        if (c.button == TransferButton::PoolRecordings)
            EXPECT_EQ(ui.shown.at(0).text,
                      "This will copy 1 RECORDING files to \"Music Recordings\"");
    }
}

TEST_F(TransferTest, UpdateGivesNumberedNamesRemovesWhatIsGoneAndKeepsSubfolders) {
    struct Case {
        std::uint8_t numberSeq;
        std::string clashName;
    };
    for (const Case& c : {Case{0, "Piano_#01.LPG"}, Case{1, "Piano_#08.LPG"}}) {
        SCOPED_TRACE(int(c.numberSeq));
        ctx.settings.numberSeq = c.numberSeq;
        const auto mirror = mirrorFolder(ctx);
        fs::remove_all(mirror);
        fs::remove_all(stick);
        put(mirror, {{"Gone_#05.LPG", su("Gone")}, {"Mine/keep.txt", "kept"}});
        // Two stick names that ask for the same readable name and number.
        put(stick, {{"SUPSET07.LPG", su("Piano")},
                    {"SUPSET7.LPG", su("Piano")},
                    {"Plain.SPG", su("Plain")},
                    {"Song.mp3", "mp3"}});
        ui.expect("UPDATE COMPUTER", Answer::Yes);
        const auto report = btnUSB_Docs_Click(ctx, 0);
        EXPECT_TRUE(report.completed);
        std::vector<std::string> expected = {"Mine/keep.txt", c.clashName, "Piano_#07.LPG",
                                             "Plain.SPG", "Song.mp3"};
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(names(contents(mirror)), expected);
        EXPECT_EQ(ui.shown.at(0).text,
                  "This process will UPDATE the COMPUTERS's files to reflect the THUMBDRIVE's "
                  "contents.\r\rAny files on the COMPUTER that are NOT on the THUMBDRIVE, will "
                  "be removed!\r\rDo you want to continue?");
        EXPECT_EQ(names(contents(tree.path("lib"))).size(), contents(mirror).size())
            << "nothing left beside the mirror folder";
    }
}

TEST_F(TransferTest, AFailedUpdateLeavesTheComputersCopyAsItWas) {
    traced();
    const Files before = {{"Old_#05.LPG", su("Old")}, {"Mine/keep.txt", "kept"}};
    for (const Answer answer : {Answer::Ignore, Answer::Abort, Answer::No}) {
        SCOPED_TRACE(answerName(answer));
        const auto mirror = mirrorFolder(ctx);
        fs::remove_all(mirror);
        put(mirror, before);
        put(stick, {{"SUPSET01.LPG", su("Piano")}, {"SUPSET02.LPG", su("Organ")}});
        ui.expect("UPDATE COMPUTER", answer == Answer::No ? Answer::No : Answer::Yes);
        if (answer != Answer::No) {
            // The second file vanishes before its copy, as on a stick pulled part way.
            ui.onEvents = [&] { fs::remove(stick / "SUPSET02.LPG"); };
            ui.expect("TVK: RUNTIME ERROR", answer).expect("UPDATE COMPUTER");
        }
        const auto report = btnUSB_Docs_Click(ctx, 0);
        ui.onEvents = nullptr;
        EXPECT_TRUE(ui.done());
        EXPECT_FALSE(report.completed);
        EXPECT_EQ(contents(mirror), before);
        EXPECT_EQ(names(contents(tree.path("lib"))).size(), before.size());
        if (answer != Answer::No)
            EXPECT_EQ(toDisplayLines(ui.shown.back().text),
                      "The update did not finish: 1 files could not be copied (first "
                      "\"SUPSET02.LPG\", error 53).\n\nThe computer's copy in \"" +
                          pathToUtf8(mirror) + "\" was not changed.")
                << answerName(answer);
    }
}

TEST_F(TransferTest, RestoreGivesOrganNamesBackAndAsksAboutATakenOne) {
    const auto mirror = mirrorFolder(ctx);
    const Files library = {
        {"Ballad_#002.LMR", organ(Series::A, FileKind::Recording, "Ballad")},
        {"Bright_#07.SPG", su("Bright")},
        {"Jazz_#003.LPG", organ(Series::A, FileKind::Preset, "Jazz")},
        {"Organ_#01.LPG", su("Organ")},
        {"Piano_#07.LPG", su("Piano")},
        {"Polka.EMR", organ(Series::E, FileKind::Recording, "Polka")},
        {"Rock_#01.SMR", organ(Series::SU, FileKind::Recording, "Rock")},
        {"Short.LPG", "tiny"},
        {"Song.mp3", "mp3"},
        {"Strings.SPG", su("Strings")},
        {"Waltz_#001.EPG", organ(Series::E, FileKind::Preset, "Waltz")},
    };
    // Piano_#07 meets Bright_#07 on SUPSET07.LPG.
    const std::map<std::string, std::string> common = {{"ASONG002.LMR", "Ballad_#002.LMR"},
                                                       {"APSET003.LPG", "Jazz_#003.LPG"},
                                                       {"SUPSET01.LPG", "Organ_#01.LPG"},
                                                       {"ESONG001.EMR", "Polka.EMR"},
                                                       {"SUSONG01.LMR", "Rock_#01.SMR"},
                                                       {"Short.LPG", "Short.LPG"},
                                                       {"Song.mp3", "Song.mp3"},
                                                       {"EPSET001.EPG", "Waltz_#001.EPG"}};
    struct Case {
        Answer answer;
        std::map<std::string, std::string> more;  // stick name -> library name
    };
    const Case cases[] = {
        {Answer::Yes,
         {{"SUPSET07.LPG", "Bright_#07.SPG"},
          {"SUPSET02.LPG", "Piano_#07.LPG"},
          {"SUPSET03.LPG", "Strings.SPG"}}},
        {Answer::No, {{"SUPSET07.LPG", "Piano_#07.LPG"}, {"SUPSET02.LPG", "Strings.SPG"}}},
        {Answer::Cancel, {{"SUPSET07.LPG", "Bright_#07.SPG"}, {"SUPSET02.LPG", "Strings.SPG"}}},
    };
    put(mirror, library);
    for (const auto& c : cases) {
        SCOPED_TRACE(answerName(c.answer));
        put(stick, {{"OLD.TXT", "old"}});
        ui.expect("RESTORE THUMBDRIVE", Answer::Yes).expect("FILE ALREADY EXISTS", c.answer);
        const auto report = btnUSB_Docs_Click(ctx, 1);
        EXPECT_TRUE(ui.done());
        EXPECT_TRUE(report.completed);
        Files expected;
        auto all = common;
        all.insert(c.more.begin(), c.more.end());
        for (const auto& [onStick, inLibrary] : all) expected[onStick] = library.at(inLibrary);
        EXPECT_EQ(contents(stick), expected);
        EXPECT_EQ(contents(mirror), library);
        EXPECT_FALSE(fs::exists(ctx.state.drive.root / ".tvk-restore"));
        EXPECT_EQ(toDisplayLines(ui.shown.at(1).text),
                  "The file \"SUPSET07.LPG\" is already on the USB.\n\nToo include it on the USB, "
                  "it is recommended to renumber this file. Not renumbering it will REPLACE the "
                  "existing file on the USB.\n\nDo you want it renumbered? Or Cancel this copy?");
        ui.shown.clear();
    }
}

TEST_F(TransferTest, RestoreRefusesWhatItCannotDoAndChangesNothing) {
    put(stick, {{"SUPSET01.LPG", su("Mine")}});
    const Files onStick = contents(stick);
    struct Case {
        const char* what;
        Files library;
        std::vector<std::pair<std::string, Answer>> boxes;
    };
    const Case cases[] = {
        {"no mirror files", {}, {{"NO FILES FOUND", Answer::Ok}}},
        {"the user says No",
         {{"Piano_#01.LPG", su("Piano")}},
         {{"RESTORE THUMBDRIVE", Answer::No}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove_all(mirrorFolder(ctx));
        put(mirrorFolder(ctx), c.library);
        for (const auto& [title, answer] : c.boxes) ui.expect(title, answer);
        EXPECT_FALSE(btnUSB_Docs_Click(ctx, 1).completed);
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(contents(stick), onStick);
    }
    EXPECT_EQ(ui.shown.at(0).text, "There are no files to restore.");
}

}  // namespace
}  // namespace tvk
