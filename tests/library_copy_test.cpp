// The copy engine on real folders and on a real FAT stick: the names copies get in each
// mode, the numbers and counters, the questions and the closing box, and what is left on
// disk when a copy fails.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "library/CompareFiles.h"
#include "library/Copyfiles.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

using test::generatedOrganFile;

// "PREFIX01.EXT|PREFIX02.EXT|..." up to `last`.
std::string numbered(const std::string& prefix, int last, int digits, const std::string& ext) {
    std::string names;
    for (int n = 1; n <= last; ++n) names += (n > 1 ? "|" : "") + prefix + zeroPad(n, digits) + ext;
    return names;
}

void emptyFolder(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& e : std::filesystem::directory_iterator(folder))
        std::filesystem::remove_all(e.path());
}

struct CopyTest : test::SessionTest {
    std::filesystem::path lib = tree.mkdir("lib"), lib2 = tree.mkdir("lib2"),
                          stick = tree.mkdir("stick/TAVRIN");

    CopyReport copy(CopyMode mode, const std::vector<std::string>& files,
                    const std::filesystem::path& from, const std::filesystem::path& to) {
        return Copyfiles(ctx, {files, from, to, mode, stick, 0});
    }
};

// Each list is "a|b|..."; a source's bytes are its name unless it is one of organSources.
struct CopyCase {
    const char* what;
    CopyMode mode;
    std::uint8_t numberSeq;
    std::string sources;   // copied in this order
    std::string existing;  // already in the destination
    std::string copied;    // "source>copy|..."
    std::string skipped;
    int duplicates;
    bool folderOnly = false;  // too many files to make on a FUSE mount quickly
};

const test::Files& organSources() {
    const auto organ = [](Series family, FileKind kind, const std::string& name) {
        return generatedOrganFile(family, kind, name);
    };
    static const test::Files files = {
        {"SUPSET07.LPG", organ(Series::SU, FileKind::Preset, "Bright Strings")},
        {"APSET003.LPG", organ(Series::A, FileKind::Preset, "A/B:C?*<>|\"")},
        {"EPSET001.EPG", organ(Series::E, FileKind::Preset, "Waltz")},
        {"SUSONG01.LMR", organ(Series::SU, FileKind::Recording, "Rock")},
        {"ASONG002.LMR", organ(Series::A, FileKind::Recording, "Ballad")},
        {"ESONG004.EMR", organ(Series::E, FileKind::Recording, "Polka")},
        {"SUPSET02.LPG", organ(Series::SU, FileKind::Preset, "")},
        {"SUPSET03.LPG", "hello organ world, no header\r\n"},
        {"APSET004.LPG", test::organHead(Series::SU, "Caf\xE9 \xC4ra", "Preset    \r\n")},
    };
    return files;
}

std::string sourceBytes(const std::string& name) {
    const auto it = organSources().find(name);
    return it == organSources().end() ? name : it->second;
}

const std::vector<CopyCase>& copyCases() {
    using M = CopyMode;
    static const std::vector<CopyCase> cases = {
        {"every family and kind takes its first free organ number; others keep their names",
         M::Right, 0,
         "Piano.SPG|Caf\u00E9.APG|Tune.amr|Waltz.EPG|Blues.EMR|Rock.SMR|My Song.mp3|MYSET.LPG|"
         "XPSET01.LPG",
         "SUPSET01.LPG|SUPSET02.LPG|My Song.mp3",
         "Piano.SPG>SUPSET03.LPG|Caf\u00E9.APG>APSET001.LPG|Tune.amr>ASONG001.LMR|"
         "Waltz.EPG>EPSET001.EPG|Blues.EMR>ESONG001.EMR|Rock.SMR>SUSONG01.LMR|"
         "My Song.mp3>My Song (1).MP3",
         "MYSET.LPG|XPSET01.LPG", 1},
        {"Number Seq 1 goes on from the file's own number, then from the last one used", M::Right,
         1, "SUPSET05.LPG|Piano.SPG", "SUPSET06.LPG",
         "SUPSET05.LPG>SUPSET07.LPG|Piano.SPG>SUPSET08.LPG", "", 0},
        {"Number Seq 0 fills from number 1", M::Right, 0, "SUPSET05.LPG|Piano.SPG", "SUPSET01.LPG",
         "SUPSET05.LPG>SUPSET02.LPG|Piano.SPG>SUPSET03.LPG", "", 0},
        {"numbers grow past the width mask", M::Right, 0, "Piano.SPG|Jazz.APG",
         numbered("SUPSET", 99, 2, ".LPG") + "|" + numbered("APSET", 999, 3, ".LPG"),
         "Piano.SPG>SUPSET100.LPG|Jazz.APG>APSET1000.LPG", "", 0, true},
        {"numbered files get their inside names, made legal, and family extensions", M::Left, 0,
         "SUPSET07.LPG|APSET003.LPG|EPSET001.EPG|SUSONG01.LMR|ASONG002.LMR|ESONG004.EMR|"
         "SUPSET02.LPG|SUPSET03.LPG|APSET004.LPG|song.mp3|EPSET001.LPG|MYSET.LPG",
         "Ballad.AMR|song.mp3",
         "SUPSET07.LPG>Bright Strings.SPG|"
         "APSET003.LPG>A\u00D8B\u00A8C\u00BF\u00A4\u00AB\u00BB\u00A6\u00BA.APG|"
         "EPSET001.EPG>Waltz.EPG|SUSONG01.LMR>Rock.SMR|ASONG002.LMR>Ballad (1).AMR|"
         "ESONG004.EMR>Polka.EMR|SUPSET02.LPG>SUPSET02.SPG|SUPSET03.LPG>hello organ worl.SPG|"
         "APSET004.LPG>Caf\u00E9 \u00C4ra.APG|song.mp3>song (1).MP3",
         "EPSET001.LPG|MYSET.LPG", 2},
        {"with Number Seq 1 the counter starts after the file's number", M::Left, 1, "ASONG002.LMR",
         "Ballad.AMR", "ASONG002.LMR>Ballad (3).AMR", "", 1},
        {"between library folders numbered files get readable names, others keep theirs", M::Diff,
         0, "SUPSET07.LPG|ASONG002.LMR|Piano.SPG|SUPSET01.MP3", "Piano.SPG",
         "SUPSET07.LPG>Bright Strings.SPG|ASONG002.LMR>Ballad.AMR|Piano.SPG>Piano (1).SPG|"
         "SUPSET01.MP3>SUPSET01.MP3",
         "", 1},
        {"duplicates in the library count from 0 whatever Number Seq says", M::FlbDocs, 1,
         "Song.mp3|SUPSET05.LPG|ASONG007.LMR", "",
         "Song.mp3>Song (0).MP3|SUPSET05.LPG>SUPSET00.LPG|ASONG007.LMR>ASONG000.LMR", "", 1},
        {"duplicates on the stick take free numbers from 0", M::FlbUSB, 0,
         "SUPSET05.LPG|SUPSET00.LPG", "", "SUPSET05.LPG>SUPSET01.LPG|SUPSET00.LPG>SUPSET02.LPG", "",
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
        const auto names = test::split(c.sources);
        std::vector<std::string> expected = test::split(c.existing);
        for (const auto& name : names) {
            test::writeFile(from / pathFromUtf8(name), sourceBytes(name));
            if (from == to) expected.push_back(name);
        }
        for (const auto& e : test::split(c.existing)) test::writeFile(to / pathFromUtf8(e), "old");
        std::vector<CopiedFile> copied;
        for (const auto& [source, copy] : test::pairs(c.copied)) {
            copied.push_back({source, copy});
            expected.push_back(copy);
        }
        std::sort(expected.begin(), expected.end());

        t.ctx.state.activeList =
            c.mode == CopyMode::FlbUSB ? ListControl::flbUSB : ListControl::flbDocs;
        if (c.mode == CopyMode::FlbDocs || c.mode == CopyMode::FlbUSB)
            for (std::size_t i = 0; i < names.size(); ++i)
                t.ui.expect("DUPLICATE FILE", Answer::Yes);
        if (c.duplicates > 0) t.ui.expect("DUPLICATE FILES");
        t.ui.shown.clear();

        const CopyReport report =
            Copyfiles(t.ctx, {names, from, to, c.mode, stickFolder, c.numberSeq});
        EXPECT_TRUE(report.completed);
        EXPECT_EQ(report.copied, copied);
        EXPECT_EQ(report.skipped, test::split(c.skipped));
        EXPECT_TRUE(report.failures.empty());
        EXPECT_EQ(report.duplicates, c.duplicates);
        EXPECT_TRUE(t.ui.done());
        if (c.duplicates > 0) {
            EXPECT_EQ(t.ui.shown.back().text, "There are " + std::to_string(c.duplicates) +
                                                  " duplicate files marked with (#)");
        }
        EXPECT_EQ(test::listNames(to), expected);
        for (const auto& f : copied)
            EXPECT_EQ(test::readFile(to / pathFromUtf8(f.to)), sourceBytes(f.from)) << f.to;
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
    EXPECT_EQ(ui.progressTexts, (std::vector<std::string>{"Copying file \"Piano.SPG\"",
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

// A full stick and a pulled one: the failing file leaves nothing behind under any name;
// on a full stick Ignore goes on with the next file, a pulled one ends the batch.
TEST_F(CopyTest, AFullOrPulledStickLeavesNoPartialFile) {
    TVK_REQUIRE_FUSE();
    tree.write("lib/big.mp3", std::string(3 << 20, 'm'));
    tree.write("lib/Piano.SPG", generatedOrganFile(Series::SU, FileKind::Preset, "Piano"));
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
            if (c.pull) ui.expect("THUMBDRIVE REMOVED");  // and no box for the next file
            CopyRequest request{{"big.mp3", "Piano.SPG"}, lib, tavrin, CopyMode::Right, tavrin, 0};
            const auto report = Copyfiles(ctx, request);
            ui.onEvents = nullptr;
            EXPECT_EQ(report.failures, (std::vector<CopyFailure>{{"big.mp3", c.error}}));
            EXPECT_EQ(report.completed, !c.pull);
            EXPECT_FALSE(ui.progressVisible);
        }
        // The next attach of the image takes away what a pulled FAT16 image kept of the
        // file half written under its own name; a FAT12 one was never pulled.
        test::ImageDriveContext{{image}};
        // Read the image itself. A killed driver may leave its temporary name behind,
        // never an organ or media name.
        std::vector<std::string> left;
        for (const auto& name : test::imageNames(image, "TAVRIN"))
            if (!(c.pull && isTemporaryName(name))) left.push_back(name);
        EXPECT_EQ(left, c.left);
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
