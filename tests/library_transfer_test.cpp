// The transfer buttons on folders and on FAT images mounted as sticks: the names each
// command gives, its questions, the round trip stick -> library -> stick, Auto Backup at
// the scan, and both sides compared before and after a pulled stick or a full disk.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/FileIO.h"
#include "app/Paths.h"
#include "app/Text.h"
#include "drive/ImageDrives.h"
#include "drive/ScanForUSBs.h"
#include "drive/VolumeCommands.h"
#include "drive/VolumeProbe.h"
#include "drive/Volumes.h"
#include "library/CopyNames.h"
#include "library/DeleteFiles.h"
#include "library/RenameFile.h"
#include "library/Selection.h"
#include "library/SortFiles.h"
#include "library/TransferCommands.h"
#include "organfiles/PresetNames.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::Files;
using test::names;
using test::put;
using test::TempTree;
const auto contents = test::snapshot;

std::string organ(Series family, FileKind kind, const std::string& name) {
    return test::generatedOrganFile(family, kind, name, 11);
}
std::string su(const std::string& name) {
    return organ(Series::SU, FileKind::Preset, name);
}

// A session whose stick is a plain folder: fast, and every name is allowed.
struct TransferTest : test::SessionTest {
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
        const char* box;
        Answer answer;
        const char* names;    // the folder afterwards
        const char* summary;  // status panel 2 afterwards
    };
    const Case cases[] = {
        {TransferButton::AddAll, tree.path("lib/ORGAN - 1A2B"), "DUPLICATE FILES", Answer::Ok,
         "A\u00D8B\u00A8C\u00BF.LPG|ESONG004.EMR|Piano (1).LPG|Piano.LPG|Song.mp3|tune.mid",
         "Add ALL: 6 files copied to ORGAN - 1A2B"},
        {TransferButton::PoolPresets, session.paths.presetPool(), "COPY PRESETS TO POOL",
         Answer::Ok, "A\u00D8B\u00A8C\u00BF.APG|Piano.SPG|Piano_#1.SPG|Piano_#2.SPG",
         "Add USB Presets: 3 files copied to Preset Pool"},
        {TransferButton::PoolRecordings, session.paths.musicRecordings(), "COPY RECORDINGS TO POOL",
         Answer::Ok, "ESONG004.EMR", "Add USB Recordings: 1 file copied to Music Recordings"},
        {TransferButton::PoolRecordings, session.paths.musicRecordings(), "COPY RECORDINGS TO POOL",
         Answer::Cancel, "ESONG004.EMR", ""},
        {TransferButton::Update, tree.path("lib/ORGAN - 1A2B"), "UPDATE COMPUTER", Answer::Yes,
         "A\u00D8B\u00A8C\u00BF_#003.LPG|ESONG004_#004.EMR|Piano_#01.LPG|Piano_#02.LPG|Song.mp3|"
         "tune.mid",
         "Update: 4 copied, 2 unchanged, 4 to the recycle bin"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.button));
        ui.shown.clear();
        ui.status.clear();
        ui.expect(c.box, c.answer);
        const auto report = btnUSB_Docs_Click(ctx, static_cast<int>(c.button));
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(names(contents(c.folder)), test::split(c.names));
        EXPECT_EQ(ctx.state.series, Series::All);
        EXPECT_EQ(ctx.state.selectedCategory, 0);
        EXPECT_FALSE(ui.progressVisible);
        EXPECT_EQ(contents(stick), stickFiles());
        EXPECT_EQ(ui.status[StatusPanel::Second], c.summary);
        if (c.button == TransferButton::AddAll) {
            EXPECT_EQ(ui.shown.at(0).text, "There are 1 duplicate files marked with (#)");
            EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_0"));
            EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_1"));
        }
        if (c.button == TransferButton::PoolPresets) {
            EXPECT_EQ(ui.shown.at(0).text, "This will copy 3 PRESET files to the \"Preset Pool\"");
            EXPECT_EQ(contents(c.folder).at("Piano.SPG"), "mine");
        }
        if (c.button == TransferButton::PoolRecordings) {
            EXPECT_EQ(ui.shown.at(0).text,
                      "This will copy 1 RECORDING files to \"Music Recordings\"");
        }
    }
    // A paste says the same of what it copied, naming the folder it copied to.
    const fs::path mine = tree.mkdir("lib/Mine");
    Copyfiles(ctx, copyRequest(ctx, {"Song.mp3", "tune.mid"}, stick, mine, CopyMode::Left),
              "Paste");
    EXPECT_EQ(ui.status[StatusPanel::Second], "Paste: 2 files copied to " + pathToUtf8(mine));
}

// The copies name a file from the first bytes they read of it, as reading the whole file
// would, also when its first line runs past those bytes.
TEST(ReadableName, FromTheCopysFirstBytes) {
    TempTree tree;
    const std::string longLine =
        std::string(kNamedCopyHead + 10, 'x') + organHeader(Series::SU) + "Far Away        \r\n";
    const struct {
        const char* file;
        std::string bytes, name;
    } cases[] = {
        {"EMPTY.LPG", "", "EMPTY"},
        {"SUPSET01.LPG", su("Piano"), "Piano"},
        {"APSET002.LPG", organHeader(Series::A) + "Short", "Short"},
        {"SUPSET03.LPG", longLine, "Far Away"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const auto file = tree.write(c.file, c.bytes);
        EXPECT_EQ(readableName(file, std::string_view(c.bytes).substr(0, kNamedCopyHead)), c.name);
        EXPECT_EQ(readableName(file), c.name);
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
                    {"ESONG004.EMR", organ(Series::E, FileKind::Recording, "")},
                    {"Song.mp3", "mp3"}});
        ui.expect("UPDATE COMPUTER", Answer::Yes);
        const auto report = btnUSB_Docs_Click(ctx, 0);
        EXPECT_TRUE(report.completed);
        std::vector<std::string> expected = {"ESONG004_#004.EMR", "Mine/keep.txt", c.clashName,
                                             "Piano_#07.LPG",     "Plain.SPG",     "Song.mp3"};
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

// The update brings the mirror folder up to date in place: what the stick has arrives or
// stays, and only after every copy succeeded does the rest go to the recycle bin.
TEST_F(TransferTest, UpdateMirrorsInPlaceAndRecyclesOnlyAfterEveryCopy) {
    traced();
    auto& system = static_cast<test::FakeSystem&>(*session.system);
    const std::string piano = su("Piano"), organ = su("Organ");
    struct Case {
        const char* what;
        Files mirror, stick;
        Answer onVanish;  // the handler's answer when the second stick file vanishes; Ok: none
        Files after;
        std::string counts;  // copied/unchanged/removed/failed
        std::string recycled;
    };
    const Files pianoOld = {{"Piano_#01.LPG", piano}, {"Old_#05.LPG", su("Old")}};
    const Files changedAndNew = {{"SUPSET01.LPG", piano + "x"}, {"SUPSET02.LPG", organ}};
    // clang-format off
    const Case cases[] = {
        {"a stick that lists fewer files",
         {{"Piano_#01.LPG", piano}, {"Organ_#02.LPG", organ}, {"notes.txt", "mine"}},
         {{"SUPSET01.LPG", piano}}, Answer::Ok,
         {{"Piano_#01.LPG", piano}}, "0/1/2/0", "Organ_#02.LPG|notes.txt"},
        {"a changed file takes its own name, not the next number",
         {{"Piano_#01.LPG", piano}}, changedAndNew, Answer::Ok,
         {{"Piano_#01.LPG", piano + "x"}, {"Organ_#02.LPG", organ}}, "2/0/0/0", ""},
        {"a file that cannot be read keeps every old file",
         pianoOld, changedAndNew, Answer::Ignore,
         {{"Piano_#01.LPG", piano + "x"}, {"Old_#05.LPG", su("Old")}}, "1/0/0/1", ""},
        {"Abort as well",
         pianoOld, {{"SUPSET01.LPG", piano}, {"SUPSET02.LPG", organ}}, Answer::Abort,
         pianoOld, "0/1/0/1", ""},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto mirror = mirrorFolder(ctx);
        fs::remove_all(mirror);
        fs::remove_all(stick);
        system.recycled.clear();
        put(mirror, c.mirror);
        put(mirror, {{"Mine/keep.txt", "kept"}});
        const auto leftover = temporaryNameFor(mirror / "Gone.LPG");
        test::writeFile(leftover, "left by a run cut short");
        put(stick, c.stick);
        ui.expect("UPDATE COMPUTER", Answer::Yes);
        if (c.onVanish != Answer::Ok) {
            ui.onEvents = [&] { fs::remove(stick / "SUPSET02.LPG"); };
            ui.expect("TVK: RUNTIME ERROR", c.onVanish).expect("UPDATE COMPUTER");
        }
        const auto report = btnUSB_Docs_Click(ctx, 0);
        ui.onEvents = nullptr;
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(report.completed, c.onVanish == Answer::Ok);
        Files after = c.after;
        after["Mine/keep.txt"] = "kept";
        EXPECT_EQ(contents(mirror), after);
        EXPECT_EQ(std::to_string(report.copied.size()) + "/" +
                      std::to_string(report.unchanged.size()) + "/" +
                      std::to_string(report.removed.size()) + "/" +
                      std::to_string(report.failures.size()),
                  c.counts);
        std::vector<std::string> recycled;
        for (const auto& file : system.recycled) recycled.push_back(pathToUtf8(file.filename()));
        std::sort(recycled.begin(), recycled.end());
        EXPECT_EQ(recycled, test::split(c.recycled));
        // Our own leftover goes once the update is through; a failed one leaves it alone.
        EXPECT_EQ(fs::exists(leftover), c.onVanish != Answer::Ok);
        // Every stick file shows its "Copying" text, the unchanged ones too.
        const std::string copying =
            "Copying SUPSET01.LPG - " + std::string(c.stick.size() == 1 ? "100%" : "50%");
        EXPECT_NE(std::find(ui.progressTexts.begin(), ui.progressTexts.end(), copying),
                  ui.progressTexts.end());
        if (c.onVanish != Answer::Ok) {
            EXPECT_EQ(toDisplayLines(ui.shown.back().text),
                      "The update did not finish: 1 files could not be copied (first "
                      "\"SUPSET02.LPG\", error 53).\n\nNo file was removed from the computer's "
                      "copy in \"" +
                          pathToUtf8(mirror) + "\"; the files not copied are as they were.");
        }
        ui.shown.clear();
        ui.progressTexts.clear();
    }
}

// While a stick carries the note of an unfinished restore, an update would take from the
// computer what is not yet back on the stick: it offers to finish the restore instead.
TEST_F(TransferTest, UpdateAfterAnUnfinishedRestoreFinishesTheRestoreFirst) {
    const auto mirror = mirrorFolder(ctx);
    const Files library = {{"Piano_#01.LPG", su("Piano")}, {"Organ_#02.LPG", su("Organ")}};
    const Files half = {{"SUPSET01.LPG", su("Piano")}};
    for (const Answer answer : {Answer::No, Answer::Yes}) {
        SCOPED_TRACE(answerName(answer));
        put(mirror, library);
        fs::remove_all(stick);
        put(stick, half);
        test::writeFile(ctx.state.drive.root / ".tvk-restore", "ORGAN - 1A2B\r\n");
        ui.expect("UPDATE COMPUTER", answer);
        const auto report = btnUSB_Docs_Click(ctx, 0);
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(toDisplayLines(ui.shown.at(0).text),
                  "The last restore of this thumbdrive did not finish.\n\nUpdating now would "
                  "remove from the computer the files still missing on the thumbdrive.\n\nFinish "
                  "the restore now?");
        EXPECT_EQ(ui.shown.at(0).defaultButton, 2);
        EXPECT_EQ(contents(mirror), library);
        const Files whole = {{"SUPSET01.LPG", su("Piano")}, {"SUPSET02.LPG", su("Organ")}};
        EXPECT_EQ(contents(stick), answer == Answer::No ? half : whole);
        EXPECT_EQ(fs::exists(ctx.state.drive.root / ".tvk-restore"), answer == Answer::No);
        EXPECT_EQ(report.completed, answer == Answer::Yes);
        ui.shown.clear();
    }
}

// Restore reads every file and keeps every stick file the computer lacks before it
// removes anything from the stick.
TEST_F(TransferTest, RestoreChecksAndKeepsBeforeItRemoves) {
    traced();
    const auto mirror = mirrorFolder(ctx);
    const auto bin = session.paths.recycleBin();
    const Files library = {{"Piano_#01.LPG", su("Piano")}, {"Song.mp3", "mp3"}};
    // A recording made on the organ since the last update, an old copy of a mirror file
    // and a file the computer holds byte for byte.
    const Files onStick = {{"SUSONG01.LMR", organ(Series::SU, FileKind::Recording, "New")},
                           {"SUPSET01.LPG", su("Piano") + "old"},
                           {"SUPSET09.LPG", su("Piano")}};
    struct Case {
        const char* what;
        bool unreadable;
        Files stickAfter, binAfter;
    };
    const Case cases[] = {
        {"a mirror file that cannot be read", true, onStick, {{"old.txt", "in the bin"}}},
        {"all readable",
         false,
         {{"SUPSET01.LPG", su("Piano")}, {"Song.mp3", "mp3"}},
         {{"old.txt", "in the bin"},
          {"SUSONG01.LMR", onStick.at("SUSONG01.LMR")},
          {"SUPSET01.LPG", "an earlier one"},
          {"SUPSET01 (1).LPG", onStick.at("SUPSET01.LPG")}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove_all(mirror);
        fs::remove_all(stick);
        fs::remove_all(bin);
        put(mirror, library);
        put(stick, onStick);
        put(bin, {{"old.txt", "in the bin"}});
        if (!c.unreadable) put(bin, {{"SUPSET01.LPG", "an earlier one"}});
        ui.expect("RESTORE THUMBDRIVE", Answer::Yes);
        if (c.unreadable) {
            ui.onBox = [&](const Message& box) {
                if (box.title == "RESTORE THUMBDRIVE") fs::remove(mirror / "Song.mp3");
            };
            ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
        }
        const auto report = btnUSB_Docs_Click(ctx, 1);
        ui.onBox = nullptr;
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(report.completed, !c.unreadable);
        if (c.unreadable) {
            EXPECT_NE(ui.shown.back().text.find("Song.mp3"), std::string::npos);
        }
        EXPECT_EQ(contents(stick), c.stickAfter);
        EXPECT_EQ(contents(bin), c.binAfter);
        EXPECT_FALSE(fs::exists(ctx.state.drive.root / ".tvk-restore"));
        ui.shown.clear();
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
    // Piano_#07 meets Bright_#07 on SUPSET07.LPG. Stick name > library name:
    const std::string common =
        "ASONG002.LMR>Ballad_#002.LMR|APSET003.LPG>Jazz_#003.LPG|SUPSET01.LPG>Organ_#01.LPG|"
        "ESONG001.EMR>Polka.EMR|SUSONG01.LMR>Rock_#01.SMR|Short.LPG>Short.LPG|Song.mp3>Song.mp3|"
        "EPSET001.EPG>Waltz_#001.EPG|";
    const std::pair<Answer, std::string> cases[] = {
        {Answer::Yes, common + "SUPSET07.LPG>Bright_#07.SPG|SUPSET02.LPG>Piano_#07.LPG|"
                               "SUPSET03.LPG>Strings.SPG"},
        {Answer::No, common + "SUPSET07.LPG>Piano_#07.LPG|SUPSET02.LPG>Strings.SPG"},
        {Answer::Cancel, common + "SUPSET07.LPG>Bright_#07.SPG|SUPSET02.LPG>Strings.SPG"},
    };
    put(mirror, library);
    for (const auto& [answer, onStick] : cases) {
        SCOPED_TRACE(answerName(answer));
        put(stick, {{"OLD.TXT", "old"}});
        ui.expect("RESTORE THUMBDRIVE", Answer::Yes).expect("FILE ALREADY EXISTS", answer);
        const auto report = btnUSB_Docs_Click(ctx, 1);
        EXPECT_TRUE(ui.done());
        EXPECT_TRUE(report.completed);
        Files expected;
        for (const auto& [name, inLibrary] : test::pairs(onStick))
            expected[name] = library.at(inLibrary);
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

// One plug-in of a stick image: its own session on the given library, traced so that
// Abort ends a command rather than the program.
struct Plugged {
    test::ScriptedInteraction ui;
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

// The window test clicks every transfer button on a FAT stick; here add all keeps every
// byte through FAT, and a second stick of the same label gets its own mirror folder.
TEST_F(StickTest, EachStickOfALabelHasItsOwnMirrorFolder) {
    TVK_REQUIRE_FUSE();
    for (const std::string serial : {"1234ABCD", "5678DCBA"}) {
        SCOPED_TRACE(serial);
        auto stick = plug(stickImage(serial + ".img", serial));
        stick->scan();
        Context ctx = stick->ctx();
        EXPECT_FALSE(ctx.state.isEnabled("btnUSB_Docs_0"));
        put(stick->tavrin(), organFiles());
        stick->ui.expect("DUPLICATE FILES");
        EXPECT_TRUE(btnUSB_Docs_Click(ctx, 2).completed);
        const Files added = contents(library / ("ORGAN - " + serial));
        EXPECT_EQ(added.at("Piano.LPG"), organFiles().at("SUPSET01.LPG"));
        EXPECT_EQ(added.at("Piano (1).LPG"), organFiles().at("SUPSET02.LPG"));
        EXPECT_EQ(added.at("A\u00D8B\u00A8C\u00BF.LPG"), organFiles().at("APSET003.LPG"));
        EXPECT_EQ(added.at("ESONG004.EMR"), organFiles().at("ESONG004.EMR"));
        EXPECT_EQ(added.size(), organFiles().size());
        EXPECT_TRUE(ctx.state.isEnabled("btnUSB_Docs_0") && ctx.state.isEnabled("btnUSB_Docs_1"));
    }
}

// Files by name and a digest of their bytes: failures stay readable.
std::map<std::string, std::size_t> digests(const Files& files) {
    std::map<std::string, std::size_t> out;
    for (const auto& [name, bytes] : files) out[name] = std::hash<std::string>{}(bytes);
    return out;
}

// Update and restore on FAT images, with the faults a user meets: a pulled stick, an
// empty or fresh stick, a write-protected one. Both sides are compared afterwards.
TEST_F(StickTest, UpdateAndRestoreOnImagesLoseNothing) {
    TVK_REQUIRE_FUSE();
    const auto mirror = library / "ORGAN - 1234ABCD";
    const Files inMirror = {{"Piano_#01.LPG", organFiles().at("SUPSET01.LPG")},
                            {"Rock_#01.SMR", organFiles().at("SUSONG01.LMR")},
                            {"SONG.MP3", organFiles().at("SONG.MP3")},
                            {"Old_#05.LPG", organ(Series::SU, FileKind::Preset, "Old")}};
    const Files restored = {{"SUPSET01.LPG", inMirror.at("Piano_#01.LPG")},
                            {"SUSONG01.LMR", inMirror.at("Rock_#01.SMR")},
                            {"SONG.MP3", inMirror.at("SONG.MP3")},
                            {"SUPSET05.LPG", inMirror.at("Old_#05.LPG")}};
    enum class Fault { None, Pull, WriteProtect };
    struct Case {
        const char* what;
        const char* kind;
        int button;
        Fault fault;
        std::vector<std::pair<std::string, Answer>> boxes;
    };
    const std::pair<std::string, Answer> yes[] = {{"UPDATE COMPUTER", Answer::Yes},
                                                  {"RESTORE THUMBDRIVE", Answer::Yes}};
    // clang-format off
    const Case cases[] = {
        {"restore onto an empty stick", "fat16", 1, Fault::None, {yes[1]}},
        {"restore onto a fresh FAT32 stick", "fat32", 1, Fault::None, {yes[1]}},
        {"update, stick pulled", "fat16", 0, Fault::Pull,
         {yes[0], {"TVK: RUNTIME ERROR", Answer::Abort}, {"THUMBDRIVE REMOVED", Answer::Ok}}},
        {"restore, stick pulled", "fat16", 1, Fault::Pull,
         {yes[1], {"TVK: RUNTIME ERROR", Answer::Ignore}, {"THUMBDRIVE REMOVED", Answer::Ok}}},
        {"restore, write-protected", "fat16", 1, Fault::WriteProtect,
         {{"THUMBDRIVE WRITE-PROTECTED", Answer::Ok}}},
    };
    // clang-format on
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        fs::remove_all(library);
        put(mirror, inMirror);
        const auto image = test::makeImage(tree, "stick" + std::to_string(++n) + ".img",
                                           {c.kind, 40, "ORGAN", "1234ABCD"});
        test::fillTavrin(tree, image, {});
        if (c.fault != Fault::None) {
            auto filler = plug(image);
            filler->scan();
            put(filler->tavrin(), organFiles());
        }
        if (c.fault == Fault::WriteProtect)
            fs::permissions(
                image, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                fs::perm_options::remove);
        const std::string imageBefore = test::readFile(image);
        Files stickAfter;
        {
            auto stick = plug(image);
            stick->scan();
            Context ctx = stick->ctx();
            for (const auto& [title, answer] : c.boxes) stick->ui.expect(title, answer);
            int events = 0;
            if (c.fault == Fault::Pull)
                stick->ui.onEvents = [&] {
                    if (++events == 3) test::pullImage(stick->session->state.drive.root);
                };
            EXPECT_EQ(btnUSB_Docs_Click(ctx, c.button).completed, c.fault == Fault::None);
            stick->ui.onEvents = nullptr;
            EXPECT_TRUE(stick->ui.done());
            // One handler box, for the pulled stick ("Disk not ready"), then the last box.
            for (const auto& m : stick->ui.shown) {
                if (m.title == "TVK: RUNTIME ERROR") {
                    EXPECT_EQ(m.text.rfind("Encountered Err#71\r", 0), 0u);
                }
            }
            if (c.fault != Fault::Pull) stickAfter = contents(stick->tavrin());
            // Status panel 2 names the stick as the user knows it.
            if (c.fault == Fault::None) {
                EXPECT_EQ(
                    stick->ui.status[StatusPanel::Second],
                    "Restore: 4 files copied to " + pathToUtf8(image.filename()) + ":/TAVRIN");
            }
        }
        const Files mirrorAfter = contents(mirror);
        if (c.fault == Fault::WriteProtect) {
            EXPECT_EQ(test::readFile(image), imageBefore);
        }
        if (c.fault == Fault::None) {
            EXPECT_EQ(digests(stickAfter), digests(restored));
        }
        if (c.button == 1) {
            EXPECT_EQ(digests(mirrorAfter), digests(inMirror));
        }
        // A pulled update removes nothing; each file is as it was or as the stick has it.
        for (const auto& [name, bytes] : inMirror) EXPECT_TRUE(mirrorAfter.count(name)) << name;
        for (const auto& [name, bytes] : mirrorAfter) {
            const auto same = [&](const auto& file) { return file.second == bytes; };
            EXPECT_TRUE(std::any_of(organFiles().begin(), organFiles().end(), same) ||
                        (inMirror.count(name) && inMirror.at(name) == bytes))
                << name;
        }
        for (const auto& name : test::listNames(mirror))
            EXPECT_FALSE(isTemporaryName(name)) << name;
        if (c.button != 1 || c.fault != Fault::Pull) continue;
        // Plugged in again, the scan offers to finish the restore, and it does.
        auto again = plug(image);
        again->ui.expect("RESTORE THUMBDRIVE", Answer::Yes);
        again->scan();
        EXPECT_TRUE(again->ui.done());
        EXPECT_EQ(digests(contents(again->tavrin())), digests(restored));
        EXPECT_FALSE(fs::exists(again->session->state.drive.root / ".tvk-restore"));
    }
}

TEST_F(StickTest, RefusalsAndFullDisksChangeNothing) {
    TVK_REQUIRE_FUSE();
    // A restore with nothing to restore, declined, or too big for the small stick.
    const auto small = stickImage("small.img", "1234ABCD", 1);
    const auto mirror = library / "ORGAN - 1234ABCD";
    const Files onStick = {{"SUPSET01.LPG", organFiles().at("SUPSET01.LPG")}};
    struct Case {
        Files library;
        std::vector<std::pair<std::string, Answer>> boxes;
    };
    const Case cases[] = {
        {{}, {{"NO FILES FOUND", Answer::Ok}}},
        {{{"A.MP3", "a"}}, {{"RESTORE THUMBDRIVE", Answer::No}}},
        {{{"A.MP3", std::string(600000, 'a')}, {"B.MP3", std::string(600000, 'b')}},
         {{"RESTORE THUMBDRIVE", Answer::Yes}, {"NOT ENOUGH ROOM", Answer::Ok}}},
    };
    auto stick = plug(small);
    stick->scan();
    put(stick->tavrin(), onStick);
    Context ctx = stick->ctx();
    for (const auto& c : cases) {
        fs::remove_all(mirror);
        fs::create_directories(mirror);
        put(mirror, c.library);
        for (const auto& [title, answer] : c.boxes) stick->ui.expect(title, answer);
        EXPECT_FALSE(btnUSB_Docs_Click(ctx, 1).completed);
        EXPECT_TRUE(stick->ui.done());
        EXPECT_EQ(contents(stick->tavrin()), onStick);
    }
    stick.reset();
    // The computer's disk nearly full: an update that needs more than is free stops
    // without a leftover and with its space back; one that needs only its changed file
    // goes through, though the copy as a whole would never fit twice.
    const auto disk = test::makeImage(tree, "disk.img", {"fat12", 2, "LIBDISK", ""});
    const auto diskRoot = tree.mkdir("disk");
    ASSERT_EQ(test::runCommand("fusefat -o rw+ '" + pathToUtf8(disk) + "' '" +
                               pathToUtf8(diskRoot) + "'"),
              0);
    struct Unmount {
        fs::path root;
        ~Unmount() { test::runCommand("fusermount -u '" + pathToUtf8(root) + "'"); }
    } unmount{diskRoot};
    const auto freeBytes = [&] {
        FileReader in(disk);
        const auto fat = countFatFreeSpace(
            [&](std::uint64_t at, std::size_t size) { return in.readAt(at, size); });
        return fat->freeClusters * fat->clusterBytes;
    };
    library = diskRoot / "Tavrin File Manager";
    const auto diskMirror = library / "ORGAN - 1234ABCD";
    const std::string big(1200000, 'a');
    struct Full {
        const char* what;
        Files onStick;
        std::vector<std::pair<std::string, Answer>> boxes;
        Files after;
    };
    const Full full[] = {
        {"the new file does not fit",
         {{"A.MP3", big}, {"B.MP3", std::string(900000, 'b')}},
         {{"UPDATE COMPUTER", Answer::Yes},
          {"TVK: RUNTIME ERROR", Answer::Abort},
          {"UPDATE COMPUTER", Answer::Ok}},
         {{"A.MP3", big}, {"Old_#01.LPG", "old"}}},
        {"only a small file changed",
         {{"A.MP3", big}, {"B.TXT", "new"}},
         {{"UPDATE COMPUTER", Answer::Yes}},
         {{"A.MP3", big}, {"B.TXT", "new"}}},
    };
    for (const auto& c : full) {
        SCOPED_TRACE(c.what);
        fs::remove_all(library);
        put(diskMirror, {{"A.MP3", big}, {"Old_#01.LPG", "old"}});
        const auto freeBefore = freeBytes();
        auto source = plug(stickImage(std::string(c.what) + ".img", "1234ABCD"));
        source->scan();
        put(source->tavrin(), c.onStick);
        Context sourceCtx = source->ctx();
        for (const auto& [title, answer] : c.boxes) source->ui.expect(title, answer);
        btnUSB_Docs_Click(sourceCtx, 0);
        EXPECT_TRUE(source->ui.done());
        EXPECT_EQ(digests(contents(diskMirror)), digests(c.after));
        EXPECT_EQ(test::listNames(diskMirror).size(), c.after.size()) << "a leftover";
        if (c.boxes.size() > 1) {
            EXPECT_EQ(freeBytes(), freeBefore) << "the partial copy's space is back";
        }
    }
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
        EXPECT_EQ(names(contents(mirror)), c.mirrorNames);
        if (!c.status.empty()) {
            EXPECT_EQ(stick->ui.status[StatusPanel::Second], c.status);
        }
    }
}

}  // namespace
}  // namespace tvk

namespace tvk {
namespace {

// Every command that reads or writes the stick, with the stick pulled after its first
// file: the step that meets it gets one "Disk not ready" box, then one box says what is
// where, and no box shows the folder the image is mounted on.
TEST_F(StickTest, APulledStickEndsEachCommandWithOneBox) {
    TVK_REQUIRE_FUSE();
    const std::string mountFolder = pathToUtf8(imageMountFolder());
    const fs::path computer = tree.mkdir("Documents/Tavrin File Manager/Mine");
    put(computer, {{"a.mp3", std::string(300000, 'a')}, {"b.mp3", std::string(300000, 'b')}});
    using Command = std::function<void(Context&, Plugged&)>;
    const auto copy = [&](fs::path from, fs::path to, CopyMode mode) {
        return [=](Context& ctx, Plugged& stick) {
            const auto at = [&](const fs::path& p) { return p.empty() ? stick.tavrin() : p; };
            std::vector<std::string> files = test::listNames(at(from));
            EXPECT_TRUE(Copyfiles(ctx, copyRequest(ctx, files, at(from), at(to), mode), "Paste")
                            .stickRemoved);
        };
    };
    struct Case {
        const char* what;
        Command command;
        std::vector<std::pair<std::string, Answer>> before;  // boxes before the pull
        Answer onError;
    };
    // clang-format off
    const Case cases[] = {
        {"add all", [](Context& ctx, Plugged&) { btnUSB_Docs_Click(ctx, 2); }, {}, Answer::Ignore},
        {"presets to the pool", [](Context& ctx, Plugged&) { btnUSB_Docs_Click(ctx, 3); },
         {{"COPY PRESETS TO POOL", Answer::Ok}}, Answer::Abort},
        {"paste from the stick", copy({}, computer, CopyMode::Left), {}, Answer::Ignore},
        {"paste onto the stick", copy(computer, {}, CopyMode::Right), {}, Answer::Abort},
        {"duplicate on the stick",
         [&](Context& ctx, Plugged& stick) {
             ctx.state.activeList = ListControl::flbUSB;
             copy({}, {}, CopyMode::FlbUSB)(ctx, stick);
         },
         {{"DUPLICATE FILE", Answer::Yes}}, Answer::Ignore},
        {"delete on the stick",
         [](Context& ctx, Plugged& stick) {
             const auto names = test::listNames(stick.tavrin());
             EXPECT_TRUE(mnuEditDelete_Click(ctx, {ListControl::flbUSB, stick.tavrin(), names})
                             .stickRemoved);
         },
         {{"DELETE FILE", Answer::Yes}}, Answer::Ignore},
    };
    // clang-format on
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto image = stickImage("pulled" + std::to_string(++n) + ".img", "1234ABCD");
        auto stick = plug(image);
        stick->scan();
        put(stick->tavrin(), organFiles());
        Context ctx = stick->ctx();
        for (const auto& [title, answer] : c.before) stick->ui.expect(title, answer);
        stick->ui.expect("TVK: RUNTIME ERROR", c.onError);
        stick->ui.expect("THUMBDRIVE REMOVED");
        int events = 0;
        stick->ui.onEvents = [&] {
            if (++events == 2) test::pullImage(stick->session->state.drive.root);
        };
        c.command(ctx, *stick);
        stick->ui.onEvents = nullptr;
        EXPECT_TRUE(stick->ui.done());
        const auto& error = stick->ui.shown.at(c.before.size());
        EXPECT_EQ(error.text.rfind("Encountered Err#71\r", 0), 0u) << error.text;
        EXPECT_NE(error.text.find(image.filename().string() + ":/TAVRIN/"), std::string::npos)
            << error.text;
        const auto& last = stick->ui.shown.back();
        EXPECT_NE(last.text.find(" files were done.\r\r"), std::string::npos) << last.text;
        for (const auto& m : stick->ui.shown)
            EXPECT_EQ(m.text.find(mountFolder), std::string::npos) << m.text;
        EXPECT_EQ(stick->ui.status[StatusPanel::Second], "");
    }
}

// A write-protected stick: each command that would change it says so and changes nothing.
TEST_F(StickTest, AWriteProtectedStickRefusesEveryWritingCommand) {
    TVK_REQUIRE_FUSE();
    const fs::path computer = tree.mkdir("Documents/Tavrin File Manager/Mine");
    put(computer, {{"a.mp3", "a"}});
    const auto image = stickImage("protected.img", "1234ABCD");
    {
        auto filler = plug(image);
        filler->scan();
        put(filler->tavrin(), organFiles());
    }
    fs::permissions(image,
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const std::string before = test::readFile(image);
    using Command = std::function<void(Context&, const fs::path&)>;
    const std::pair<const char*, Command> commands[] = {
        {"paste onto it",
         [&](Context& ctx, const fs::path& stick) {
             Copyfiles(ctx, copyRequest(ctx, {"a.mp3"}, computer, stick, CopyMode::Right), "Paste");
         }},
        {"drop onto it",
         [&](Context& ctx, const fs::path& stick) {
             listDragDrop(ctx,
                          {ListControl::flbDocs, ListControl::flbUSB, computer, stick, {"a.mp3"}});
         }},
        {"delete on it",
         [](Context& ctx, const fs::path& stick) {
             mnuEditDelete_Click(ctx, {ListControl::flbUSB, stick, {"SUPSET01.LPG"}});
         }},
        {"sort", [](Context& ctx, const fs::path&) { btnSort_Click(ctx, {}); }},
        {"rename on it",
         [](Context& ctx, const fs::path& stick) {
             mnuFileRename_Click(ctx, {ListControl::flbUSB, stick, "SUPSET01.LPG"});
         }},
        {"edit a preset's names",
         [](Context& ctx, const fs::path& stick) {
             const auto loaded = loadPresetNames(ctx, stick / "SUPSET01.LPG");
             ASSERT_TRUE(loaded);
             auto edit = PresetNamesEdit::from(*loaded);
             edit.fileName = "CHANGED";
             EXPECT_FALSE(commitPresetNames(ctx, *loaded, edit));
         }},
        {"rename the volume", [](Context& ctx, const fs::path&) { btnRenameVol_Click(ctx); }},
        {"format", [](Context& ctx, const fs::path&) { mnuFileFormat_Click(ctx); }},
    };
    for (const auto& [what, command] : commands) {
        SCOPED_TRACE(what);
        auto stick = plug(image);
        stick->scan();
        Context ctx = stick->ctx();
        stick->ui.expect("THUMBDRIVE WRITE-PROTECTED");
        command(ctx, stick->tavrin());
        EXPECT_TRUE(stick->ui.done());
        EXPECT_EQ(stick->ui.titles(), std::vector<std::string>{"THUMBDRIVE WRITE-PROTECTED"});
        EXPECT_EQ(digests(contents(stick->tavrin())), digests(organFiles()));
    }
    EXPECT_EQ(test::readFile(image), before);
}

}  // namespace
}  // namespace tvk
