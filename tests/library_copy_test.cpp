// The copy engine on real folders and on a real FAT stick: the names copies get in each
// mode, the numbers and counters, the questions and the closing box, and what is left on
// disk when a copy fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "library/CompareFiles.h"
#include "library/Copyfiles.h"
#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"
#include "support/DriveImages.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

using test::TempTree;

// The scripted boxes, plus every status text and a hook into the events a copy lets run
// (where a test pulls the stick mid-file) and into each box (where it mends a fault).
struct WatchedInteraction : test::ScriptedInteraction {
    std::vector<std::string> statuses;
    std::function<void()> onEvents;
    std::function<void(const Message&)> onBox;
    void setStatus(StatusPanel panel, const std::string& text) override {
        ScriptedInteraction::setStatus(panel, text);
        if (panel == StatusPanel::Progress) statuses.push_back(text);
    }
    void processEvents() override {
        ScriptedInteraction::processEvents();
        if (onEvents) onEvents();
    }
    Answer message(const Message& box) override {
        if (onBox) onBox(box);
        return ScriptedInteraction::message(box);
    }
};

struct File {
    std::string name, bytes;
};

// A preset or song as the organ writes it, with its inside name.
std::string organ(Series family, FileKind kind, const std::string& name) {
    RandomSource random(7);
    return buildTestFile(family, kind, name, random);
}
// An SU header with a raw (Windows-1252) name field.
std::string rawNamed(const std::string& field) {
    std::string name = field;
    name.resize(16, ' ');
    return organHeader(Series::SU) + name + "Preset    \r\n";
}

std::vector<std::string> numbered(const std::string& prefix, int last, int digits,
                                  const std::string& ext) {
    std::vector<std::string> names;
    for (int n = 1; n <= last; ++n) names.push_back(prefix + zeroPad(n, digits) + ext);
    return names;
}

std::vector<std::string> entries(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder))
        names.push_back(fileNameUtf8(e.path()));
    std::sort(names.begin(), names.end());
    return names;
}

void emptyFolder(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& e : std::filesystem::directory_iterator(folder))
        std::filesystem::remove_all(e.path());
}

struct CopyTest : ::testing::Test {
    TempTree tree;
    WatchedInteraction ui;
    Session session{std::make_unique<test::FakeSystem>(), ui};
    Context ctx = session.context();
    std::filesystem::path lib = tree.mkdir("lib"), lib2 = tree.mkdir("lib2"),
                          stick = tree.mkdir("stick/TAVRIN");

    // With the trace on, Abort ends the routine instead of the program.
    void traced() {
        session.trace.open(tree.path("TVK_ErrorLog.txt"));
        session.trace.debug = true;
    }

    CopyReport copy(CopyMode mode, const std::vector<std::string>& files,
                    const std::filesystem::path& from, const std::filesystem::path& to,
                    std::uint8_t numberSeq = 0) {
        CopyRequest request{files, from, to, mode, stick, numberSeq};
        return Copyfiles(ctx, request);
    }
};

struct CopyCase {
    const char* what;
    CopyMode mode;
    std::uint8_t numberSeq;
    std::vector<File> sources;          // copied in this order
    std::vector<std::string> existing;  // already in the destination
    std::vector<CopiedFile> copied;
    std::vector<std::string> skipped;
    int duplicates;
    bool folderOnly = false;  // too many files to make on a FUSE mount quickly
};

const std::vector<CopyCase>& copyCases() {
    using M = CopyMode;
    const auto su = [](const std::string& name) {
        return organ(Series::SU, FileKind::Preset, name);
    };
    const auto aSong = organ(Series::A, FileKind::Recording, "Ballad");
    static const std::vector<CopyCase> cases = {
        {"every family and kind takes its first free organ number; others keep their names",
         M::Right,
         0,
         {{"Piano.SPG", "p"},
          {"Caf\u00E9.APG", "a"},
          {"Tune.amr", "b"},
          {"Waltz.EPG", "c"},
          {"Blues.EMR", "d"},
          {"Rock.SMR", "e"},
          {"My Song.mp3", "f"},
          {"MYSET.LPG", "g"},
          {"XPSET01.LPG", "h"}},
         {"SUPSET01.LPG", "SUPSET02.LPG", "My Song.mp3"},
         {{"Piano.SPG", "SUPSET03.LPG"},
          {"Caf\u00E9.APG", "APSET001.LPG"},
          {"Tune.amr", "ASONG001.LMR"},
          {"Waltz.EPG", "EPSET001.EPG"},
          {"Blues.EMR", "ESONG001.EMR"},
          {"Rock.SMR", "SUSONG01.LMR"},
          {"My Song.mp3", "My Song (1).MP3"}},
         {"MYSET.LPG", "XPSET01.LPG"},
         1},
        {"Number Seq 1 goes on from the file's own number, then from the last one used",
         M::Right,
         1,
         {{"SUPSET05.LPG", "a"}, {"Piano.SPG", "b"}},
         {"SUPSET06.LPG"},
         {{"SUPSET05.LPG", "SUPSET07.LPG"}, {"Piano.SPG", "SUPSET08.LPG"}},
         {},
         0},
        {"Number Seq 0 fills from number 1",
         M::Right,
         0,
         {{"SUPSET05.LPG", "a"}, {"Piano.SPG", "b"}},
         {"SUPSET01.LPG"},
         {{"SUPSET05.LPG", "SUPSET02.LPG"}, {"Piano.SPG", "SUPSET03.LPG"}},
         {},
         0},
        {"numbers grow past the width mask",
         M::Right,
         0,
         {{"Piano.SPG", "a"}, {"Jazz.APG", "b"}},
         [] {
             auto names = numbered("SUPSET", 99, 2, ".LPG");
             const auto a = numbered("APSET", 999, 3, ".LPG");
             names.insert(names.end(), a.begin(), a.end());
             return names;
         }(),
         {{"Piano.SPG", "SUPSET100.LPG"}, {"Jazz.APG", "APSET1000.LPG"}},
         {},
         0,
         true},
        {"numbered files get their inside names, made legal, and family extensions",
         M::Left,
         0,
         {{"SUPSET07.LPG", su("Bright Strings")},
          {"APSET003.LPG", organ(Series::A, FileKind::Preset, "A/B:C?*<>|\"")},
          {"EPSET001.EPG", organ(Series::E, FileKind::Preset, "Waltz")},
          {"SUSONG01.LMR", organ(Series::SU, FileKind::Recording, "Rock")},
          {"ASONG002.LMR", aSong},
          {"ESONG004.EMR", organ(Series::E, FileKind::Recording, "Polka")},
          {"SUPSET02.LPG", su("")},
          {"SUPSET03.LPG", "hello organ world, no header\r\n"},
          {"APSET004.LPG", rawNamed("Caf\xE9 \xC4ra")},
          {"song.mp3", "m"},
          {"EPSET001.LPG", "x"},
          {"MYSET.LPG", "y"}},
         {"Ballad.AMR", "song.mp3"},
         {{"SUPSET07.LPG", "Bright Strings.SPG"},
          {"APSET003.LPG", "A\u00D8B\u00A8C\u00BF\u00A4\u00AB\u00BB\u00A6\u00BA.APG"},
          {"EPSET001.EPG", "Waltz.EPG"},
          {"SUSONG01.LMR", "Rock.SMR"},
          {"ASONG002.LMR", "Ballad (1).AMR"},
          {"ESONG004.EMR", "Polka.EMR"},
          {"SUPSET02.LPG", "SUPSET02.SPG"},
          {"SUPSET03.LPG", "hello organ worl.SPG"},
          {"APSET004.LPG", "Caf\u00E9 \u00C4ra.APG"},
          {"song.mp3", "song (1).MP3"}},
         {"EPSET001.LPG", "MYSET.LPG"},
         2},
        {"with Number Seq 1 the counter starts after the file's number",
         M::Left,
         1,
         {{"ASONG002.LMR", aSong}},
         {"Ballad.AMR"},
         {{"ASONG002.LMR", "Ballad (3).AMR"}},
         {},
         1},
        {"between library folders numbered files get readable names, others keep theirs",
         M::Diff,
         0,
         {{"SUPSET07.LPG", su("Bright Strings")},
          {"ASONG002.LMR", aSong},
          {"Piano.SPG", "p"},
          {"SUPSET01.MP3", "m"}},
         {"Piano.SPG"},
         {{"SUPSET07.LPG", "Bright Strings.SPG"},
          {"ASONG002.LMR", "Ballad.AMR"},
          {"Piano.SPG", "Piano (1).SPG"},
          {"SUPSET01.MP3", "SUPSET01.MP3"}},
         {},
         1},
        {"duplicates in the library count from 0 whatever Number Seq says",
         M::FlbDocs,
         1,
         {{"Song.mp3", "s"}, {"SUPSET05.LPG", "a"}, {"ASONG007.LMR", "b"}},
         {},
         {{"Song.mp3", "Song (0).MP3"},
          {"SUPSET05.LPG", "SUPSET00.LPG"},
          {"ASONG007.LMR", "ASONG000.LMR"}},
         {},
         1},
        {"duplicates on the stick take free numbers from 0",
         M::FlbUSB,
         0,
         {{"SUPSET05.LPG", "a"}, {"SUPSET00.LPG", "b"}},
         {},
         {{"SUPSET05.LPG", "SUPSET01.LPG"}, {"SUPSET00.LPG", "SUPSET02.LPG"}},
         {},
         0},
    };
    return cases;
}

// Runs every case with the stick side in `stickFolder`; the library sides are folders.
void runCopyCases(CopyTest& t, const std::filesystem::path& stickFolder, bool onImage) {
    for (const auto& c : copyCases()) {
        if (onImage && c.folderOnly) continue;
        SCOPED_TRACE(c.what);
        auto from = t.lib, to = t.lib2;
        if (c.mode == CopyMode::Right) to = stickFolder;
        if (c.mode == CopyMode::Left) from = stickFolder;
        if (c.mode == CopyMode::FlbDocs) to = from;
        if (c.mode == CopyMode::FlbUSB) from = to = stickFolder;
        for (const auto& folder : {from, to}) emptyFolder(folder);
        std::vector<std::string> names, expected;
        for (const auto& f : c.sources) {
            test::writeFile(from / pathFromUtf8(f.name), f.bytes);
            names.push_back(f.name);
            if (from == to) expected.push_back(f.name);
        }
        for (const auto& e : c.existing) test::writeFile(to / pathFromUtf8(e), "old");
        for (const auto& e : c.existing) expected.push_back(e);
        for (const auto& f : c.copied) expected.push_back(f.to);
        std::sort(expected.begin(), expected.end());

        t.ctx.state.activeList =
            c.mode == CopyMode::FlbUSB ? ListControl::flbUSB : ListControl::flbDocs;
        const bool duplicateMode = c.mode == CopyMode::FlbDocs || c.mode == CopyMode::FlbUSB;
        if (duplicateMode)
            for (std::size_t i = 0; i < c.sources.size(); ++i)
                t.ui.expect("DUPLICATE FILE", Answer::Yes);
        if (c.duplicates > 0) t.ui.expect("DUPLICATE FILES");
        t.ui.shown.clear();

        CopyRequest request{names, from, to, c.mode, stickFolder, c.numberSeq};
        const CopyReport report = Copyfiles(t.ctx, request);
        EXPECT_TRUE(report.completed);
        EXPECT_EQ(report.copied, c.copied);
        EXPECT_EQ(report.skipped, c.skipped);
        EXPECT_TRUE(report.failures.empty());
        EXPECT_EQ(report.duplicates, c.duplicates);
        EXPECT_TRUE(t.ui.done());
        if (c.duplicates > 0) {
            EXPECT_EQ(t.ui.shown.back().text, "There are " + std::to_string(c.duplicates) +
                                                  " duplicate files marked with (#)");
        }
        EXPECT_EQ(entries(to), expected);
        for (const auto& f : c.copied) {
            const auto source = std::find_if(c.sources.begin(), c.sources.end(),
                                             [&](const File& s) { return s.name == f.from; });
            EXPECT_EQ(test::readFile(to / pathFromUtf8(f.to)), source->bytes) << f.to;
        }
        EXPECT_FALSE(t.ui.progressVisible);
    }
}

TEST_F(CopyTest, NamesInEveryModeOnFolders) {
    runCopyCases(*this, stick, false);
}

TEST_F(CopyTest, NamesInEveryModeOnAFatStick) {
    TVK_REQUIRE_FUSE();
    const auto image = test::makeImage(tree, "stick.img", {"fat16", 32, "STICK", ""});
    test::fillTavrin(tree, image, {});
    test::ImageDriveContext drive({image});
    runCopyCases(*this, drive.root() / "TAVRIN", true);
}

TEST_F(CopyTest, TheDuplicateQuestionAndTheClosingCount) {
    tree.write("lib/Song.mp3", "s");
    tree.write("lib/Song (0).MP3", "s0");
    tree.write("lib/a.txt", "a");
    ctx.state.activeList = ListControl::flbDocs;
    ui.expect("DUPLICATE FILE", Answer::Yes).expect("DUPLICATE FILE", Answer::No);
    ui.expect("DUPLICATE FILES");
    auto report = copy(CopyMode::FlbDocs, {"Song.mp3", "a.txt"}, lib, lib);
    EXPECT_EQ(ui.shown[0].text,
              "Do you want to make a duplicate file in the \"" + pathToUtf8(lib) + "\" folder?");
    EXPECT_EQ(ui.shown[0].buttons, Buttons::YesNo);
    EXPECT_EQ(ui.shown[0].icon, Icon::Question);
    EXPECT_EQ(report.copied, (std::vector<CopiedFile>{{"Song.mp3", "Song (1).MP3"}}));
    EXPECT_EQ(report.skipped, (std::vector<std::string>{"a.txt"}));
    EXPECT_EQ(ui.shown.back().text, "There are 2 duplicate files marked with (#)");
    EXPECT_EQ(ui.shown.back().icon, Icon::Information);

    // No at once copies nothing, still hides the bar and counts the stick.
    ui.expect("DUPLICATE FILE", Answer::No);
    report = copy(CopyMode::FlbDocs, {"Song.mp3", "a.txt"}, lib, lib);
    EXPECT_TRUE(report.copied.empty());
    EXPECT_EQ(report.skipped.size(), 2u);
    EXPECT_FALSE(ui.progressVisible);
    EXPECT_EQ(ctx.state.driveInfoText.find("FILESYS: "), 0u);

    // A list's name copies only in that list: no question, nothing copied.
    report = copy(CopyMode::FlbUSB, {"Song.mp3"}, lib, lib);
    EXPECT_EQ(report.skipped, (std::vector<std::string>{"Song.mp3"}));
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(tree.list("lib").size(), 4u);
}

TEST_F(CopyTest, StatusProgressAndTheStickButtonsAfterwards) {
    tree.write("lib/Piano.SPG", "p");
    tree.write("lib/b.mp3", "b");
    auto report = copy(CopyMode::Right, {"Piano.SPG", "b.mp3"}, lib, stick);
    EXPECT_EQ(ui.statuses, (std::vector<std::string>{"Copying file \"Piano.SPG\"",
                                                     "Copying file \"b.mp3\"", ""}));
    EXPECT_EQ(ui.progressValue, 2);
    EXPECT_EQ(ctx.state.counts.presets, 1);
    EXPECT_EQ(ctx.state.counts.mp3, 1);
    EXPECT_TRUE(ctx.state.isEnabled("btnSort"));

    // A stick left without presets and recordings: nothing to add to the pool.
    ctx.state.enabled["btnUSB_Docs_3"] = true;
    std::filesystem::remove(stick / "SUPSET01.LPG");
    tree.write("lib2/c.mp3", "c");
    report = copy(CopyMode::Right, {"c.mp3"}, lib2, stick);
    EXPECT_FALSE(ctx.state.isEnabled("btnUSB_Docs_3"));
}

TEST_F(CopyTest, ABatchHoldsFifteenHundredFiles) {
    std::vector<std::string> names;
    for (int i = 0; i <= 1500; ++i) {
        names.push_back("f" + std::to_string(i) + ".txt");
        tree.write("lib/" + names.back(), "x");
    }
    traced();
    ui.expect("TVK: RUNTIME ERROR", Answer::Abort);
    auto report = copy(CopyMode::Diff, names, lib, lib2);
    EXPECT_FALSE(report.completed);
    EXPECT_TRUE(tree.list("lib2").empty());
    EXPECT_NE(ui.shown.back().text.find("Err#9"), std::string::npos)
        << toDisplayLines(ui.shown.back().text);

    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    report = copy(CopyMode::Diff, names, lib, lib2);
    EXPECT_TRUE(report.completed);
    EXPECT_EQ(report.copied.size(), 1500u);
    EXPECT_FALSE(tree.exists("lib2/f1500.txt"));
}

// A source that vanished: Retry copies it once it is back, Ignore goes on with the next.
TEST_F(CopyTest, AVanishedSourceRetriedOrIgnored) {
    tree.write("lib/b.mp3", "b");
    ui.onBox = [&](const Message& box) {
        if (box.title == "TVK: RUNTIME ERROR" && !tree.exists("lib/a.SPG"))
            tree.write("lib/a.SPG", "back");
    };
    ui.expect("TVK: RUNTIME ERROR", Answer::Retry);
    auto report = copy(CopyMode::Right, {"a.SPG", "b.mp3"}, lib, stick);
    EXPECT_EQ(report.copied,
              (std::vector<CopiedFile>{{"a.SPG", "SUPSET01.LPG"}, {"b.mp3", "b.mp3"}}));
    EXPECT_EQ(tree.read("stick/TAVRIN/SUPSET01.LPG"), "back");
    EXPECT_NE(ui.shown[0].text.find("Err#53"), std::string::npos);

    ui.onBox = nullptr;
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore).expect("DUPLICATE FILES");
    report = copy(CopyMode::Right, {"gone.SPG", "b.mp3"}, lib, stick);
    EXPECT_EQ(report.failures, (std::vector<CopyFailure>{{"gone.SPG", kErrFileNotFound}}));
    EXPECT_EQ(report.copied, (std::vector<CopiedFile>{{"b.mp3", "b (1).MP3"}}));
    EXPECT_EQ(tree.list("stick/TAVRIN"),
              (std::vector<std::string>{"SUPSET01.LPG", "b (1).MP3", "b.mp3"}));
}

// A full stick and a pulled one: the failing file leaves nothing behind under any name,
// Ignore goes on with the next file and Abort ends the batch.
TEST_F(CopyTest, AFullOrPulledStickLeavesNoPartialFile) {
    TVK_REQUIRE_FUSE();
    tree.write("lib/big.mp3", std::string(3 << 20, 'm'));
    tree.write("lib/Piano.SPG", organ(Series::SU, FileKind::Preset, "Piano"));
    const struct {
        const char* kind;
        int sizeMiB;
        bool pull;
        int error;
        Answer answer;
        std::vector<std::string> left;
    } cases[] = {
        {"fat12", 1, false, kErrDiskFull, Answer::Ignore, {"SUPSET01.LPG"}},
        {"fat16", 32, true, kErrDiskNotReady, Answer::Abort, {}},
    };
    traced();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        const auto image =
            test::makeImage(tree, std::string(c.kind) + ".img", {c.kind, c.sizeMiB, "STICK", ""});
        test::fillTavrin(tree, image, {});
        {
            test::ImageDriveContext drive({image});
            const auto tavrin = drive.root() / "TAVRIN";
            int events = 0;
            ui.onEvents = [&] {
                // The second event comes from inside the first file's copy.
                if (c.pull && ++events == 2) test::pullImage(drive.root());
            };
            ui.expect("TVK: RUNTIME ERROR", c.answer);
            CopyRequest request{{"big.mp3", "Piano.SPG"}, lib, tavrin, CopyMode::Right, tavrin, 0};
            const auto report = Copyfiles(ctx, request);
            ui.onEvents = nullptr;
            EXPECT_EQ(report.failures, (std::vector<CopyFailure>{{"big.mp3", c.error}}));
            EXPECT_EQ(report.completed, !c.pull);
            EXPECT_FALSE(ui.progressVisible);
        }
        // Read the image itself. A killed driver may leave its temporary name behind,
        // never an organ or media name.
        std::string listing;
        test::runCommand("MTOOLS_SKIP_CHECK=1 mdir -b -i '" + pathToUtf8(image) + "' ::TAVRIN",
                         &listing);
        std::vector<std::string> left;
        std::istringstream lines(listing);
        for (std::string line; std::getline(lines, line);) {
            const std::string name = line.substr(line.rfind('/') + 1);
            if (startsWith(line, "::/TAVRIN/") && !(c.pull && isTemporaryName(name)))
                left.push_back(name);
        }
        EXPECT_EQ(left, c.left) << listing;
    }
}

TEST_F(CopyTest, CompareFiles) {
    tree.write("a", "organ");
    tree.write("same", "organ");
    tree.write("other", "orgax");
    tree.write("longer", "organ and more");
    tree.write("shorter", "org");
    tree.write("shortdiff", "ox");
    const struct {
        const char* second;
        bool same;
        bool errorBox;
    } cases[] = {
        {"same", true, false},     {"other", false, false},     {"longer", true, false},
        {"missing", false, false}, {"shortdiff", false, false}, {"shorter", false, true},
    };
    for (const auto& c : cases) {
        if (c.errorBox) ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
        EXPECT_EQ(CompareFiles(ctx, tree.path("a"), tree.path(c.second)), c.same) << c.second;
        EXPECT_TRUE(ui.done()) << c.second;
    }
    EXPECT_FALSE(CompareFiles(ctx, tree.path("missing"), tree.path("a")));
    EXPECT_NE(ui.shown.back().text.find("Err#9"), std::string::npos);
}

}  // namespace
}  // namespace tvk
