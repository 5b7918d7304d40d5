// The alphabetical sort on real FAT sticks mounted through FUSE: the numbering, the
// boxes, files it must leave alone, and sorts stopped part way (the program killed, the
// stick pulled) finished or put back at the next scan with every file's bytes intact.

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "library/SortFiles.h"
#include "library/SortJournal.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::Files;
using test::ImageDriveContext;

constexpr const char* kSortTitle = "SORT PRESET AND RECORDING NAMES";

// A preset or recording as the organ writes it; the tail makes every file's bytes unique.
std::string preset(Series family, const std::string& name) {
    return test::organHead(family, name, "Preset    " + name + "\r\n");
}
std::string song(Series family, const std::string& name) {
    return test::organHead(family, name, "Song      " + name + "\r\n");
}

// A FAT stick holding a TAVRIN folder, attached as the window attaches it, whose library
// outlives each attachment so a journal left by one is found by the next.
class SortStick {
  public:
    explicit SortStick(const Files& files) {
        image_ = test::makeImage(tree_, "stick.img", {"fat16", 32, "SORT STICK", "5027AB01"});
        attach();
        fs::create_directory(drives_->root() / "TAVRIN");
        for (const auto& [name, bytes] : files) test::writeFile(folder() / name, bytes);
    }

    // Attaches the image (again) and scans it; a previous attachment is unmounted first.
    void attach() {
        detach();
        drives_ = std::make_unique<ImageDriveContext>(std::vector<fs::path>{image_});
        drives_->session->paths.libraryRoot = library();
        ctx_.emplace(drives_->ctx());
    }
    void detach() {
        ctx_.reset();
        drives_.reset();
    }
    void scan() { ScanForUSBs(*ctx_); }

    // Scans, then sorts until the program is killed after `renames` renames.
    void killSortAfter(int renames) {
        scan();
        SortRequest request;
        request.afterEachRename = [renames](int done) {
            if (done == renames) throw ProgramEnd{9};
        };
        ui().expect("SORT PRESET AND RECORDING NAMES", Answer::Yes);
        EXPECT_THROW(btnSort_Click(ctx(), request), ProgramEnd);
    }

    Context& ctx() { return *ctx_; }
    test::ScriptedInteraction& ui() { return drives_->ui; }
    fs::path folder() { return drives_->root() / "TAVRIN"; }
    fs::path library() const { return tree_.root() / "Documents" / "Tavrin File Manager"; }
    fs::path root() { return drives_->root(); }
    const fs::path& image() const { return image_; }
    const test::TempTree& tree() const { return tree_; }

    Files contents() { return test::snapshot(folder()); }

  private:
    test::TempTree tree_;
    fs::path image_;
    std::unique_ptr<ImageDriveContext> drives_;
    std::optional<Context> ctx_;
};

// What `before` must look like after the sort: each old name replaced by its new one
// ("old>new|..."; files not listed keep their names).
Files renamed(const Files& before, std::string_view newNames) {
    Files after = before;
    for (const auto& [from, to] : test::pairs(newNames)) after.erase(from);
    for (const auto& [from, to] : test::pairs(newNames)) after[to] = before.at(from);
    return after;
}

TEST(Sort, NumbersEachGroupAlphabeticallyAndLeavesOtherFilesAlone) {
    TVK_REQUIRE_FUSE();
    struct Case {
        const char* what;
        Files files;
        const char* newNames;
        const char* leftAlone;
    };
    const Case cases[] = {
        {"capitals before small letters",
         {{"SUPSET01.LPG", preset(Series::SU, "Zebra")},
          {"SUPSET02.LPG", preset(Series::SU, "apple")},
          {"SUPSET03.LPG", preset(Series::SU, "Apple")}},
         "SUPSET01.LPG>SUPSET02.LPG|SUPSET02.LPG>SUPSET03.LPG|SUPSET03.LPG>SUPSET01.LPG",
         ""},
        {"six groups, each from 1; SU recordings get three digits",
         {{"EPSET005.EPG", preset(Series::E, "Bass")},
          {"MY SU.SPG", preset(Series::SU, "Organ")},
          {"SUPSET09.LPG", preset(Series::SU, "Choir")},
          {"APSET002.LPG", preset(Series::A, "Flute")},
          {"x.APG", preset(Series::A, "Brass")},
          {"MYSET.LPG", preset(Series::A, "Alpha")},  // family from the version inside
          {"MYSONG.LMR", song(Series::E, "Hymn")},
          {"SONG.SMR", song(Series::SU, "Waltz")},
          {"SUSONG07.LMR", song(Series::SU, "Polka")},
          {"ASONG003.LMR", song(Series::A, "Tango")},
          {"E.EMR", song(Series::E, "Jig")},
          {"PHOTO.JPG", "\xFF\xD8 not an organ file"},
          {"BROKEN.LPG", "no header at all"},
          {"EMPTY.LMR", ""},
          {"tune.mp3", "ID3"},
          {"song.mid", "MThd"}},
         "EPSET005.EPG>EPSET001.EPG|MY SU.SPG>SUPSET02.LPG|SUPSET09.LPG>SUPSET01.LPG|"
         "APSET002.LPG>APSET003.LPG|x.APG>APSET002.LPG|MYSET.LPG>APSET001.LPG|"
         "MYSONG.LMR>ESONG001.EMR|SONG.SMR>SUSONG002.LMR|SUSONG07.LMR>SUSONG001.LMR|"
         "ASONG003.LMR>ASONG001.LMR|E.EMR>ESONG002.EMR",
         "BROKEN.LPG|PHOTO.JPG|EMPTY.LMR"},
        // "A¨B" sorts before "AØB"; equal names change places.
        {"names that are each other's targets; equal, empty and illegal inside names",
         {{"SUPSET01.LPG", preset(Series::SU, "Zulu")},
          {"SUPSET02.LPG", preset(Series::SU, "Alpha")},
          {"EPSET001.EPG", preset(Series::E, "A:B")},
          {"EPSET002.EPG", preset(Series::E, "A/B")},
          {"EPSET003.EPG", preset(Series::E, "   ")},
          {"EPSET004.EPG", preset(Series::E, "A/B")}},
         "SUPSET01.LPG>SUPSET02.LPG|SUPSET02.LPG>SUPSET01.LPG|EPSET001.EPG>EPSET002.EPG|"
         "EPSET002.EPG>EPSET004.EPG|EPSET003.EPG>EPSET001.EPG|EPSET004.EPG>EPSET003.EPG",
         ""},
        {"no presets or recordings", {{"tune.mp3", "ID3"}}, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        SortStick stick(c.files);
        stick.scan();
        stick.ui().expect(kSortTitle, Answer::Yes).expect(kSortTitle);
        const SortReport report = btnSort_Click(stick.ctx());
        ASSERT_TRUE(stick.ui().done());
        EXPECT_TRUE(report.completed);
        EXPECT_EQ(stick.contents(), renamed(c.files, c.newNames));
        const auto leftAlone = test::split(c.leftAlone);
        EXPECT_EQ(std::set<std::string>(report.leftAlone.begin(), report.leftAlone.end()),
                  std::set<std::string>(leftAlone.begin(), leftAlone.end()));
        EXPECT_FALSE(fs::exists(stick.library() / "FileSorting"));
        const Message& last = stick.ui().shown.back();
        EXPECT_EQ(last.icon, Icon::Information);
        EXPECT_TRUE(std::regex_match(
            last.text, std::regex("Sorting complete\r\rElapsed time: [0-9]+ seconds")))
            << last.text;
    }
}

// The question, every status text in the order a user sees them, and the report.
TEST(Sort, AsksFirstThenShowsEachPhase) {
    TVK_REQUIRE_FUSE();
    SortStick stick({{"SUPSET01.LPG", preset(Series::SU, "B")},
                     {"SUPSET02.LPG", preset(Series::SU, "A")},
                     {"X.SMR", song(Series::SU, "C")}});
    stick.scan();
    auto& ui = stick.ui();
    ui.progressTexts.clear();
    ui.expect(kSortTitle, Answer::No).expect(kSortTitle, Answer::Yes).expect(kSortTitle);
    EXPECT_FALSE(btnSort_Click(stick.ctx()).completed);
    EXPECT_TRUE(ui.progressTexts.empty());
    EXPECT_TRUE(btnSort_Click(stick.ctx()).completed);
    ASSERT_TRUE(ui.done());
    auto& texts = ui.progressTexts;  // each text once, however often it is set
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    EXPECT_EQ(ui.shown[0].text,
              "This process will scan all Preset and Music Resording files and sort them "
              "alphabetically.\r\rThis process should only take a couple minutes.\r\rDo you "
              "want to continue?");
    EXPECT_EQ(ui.shown[0].style(), 4 + 32);
    EXPECT_EQ(ui.shown[2].text, "Sorting complete\r\rElapsed time: 0 seconds");
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "READING PRESETS: SUPSET01.LPG", "READING PRESETS: SUPSET02.LPG",
                         "READING RECORDINGS: X.SMR", "SORTING FILES: 0%", "SORTING FILES: 33%",
                         "UNPACKING FILES: SUPSET02.LPG", "UNPACKING FILES: SUPSET01.LPG",
                         "UNPACKING FILES: X.SMR", "PACKING FILES: SUPSET01.LPG",
                         "PACKING FILES: SUPSET02.LPG", "PACKING FILES: SUSONG001.LMR", ""}));
    EXPECT_FALSE(ui.progressVisible);
}

TEST(Sort, RefusesBeforeRenamingWhenAStayingFileHoldsANeededName) {
    TVK_REQUIRE_FUSE();
    // No organ prefix in the case the organ writes and no header: it stays, and on FAT
    // it holds SUPSET01.LPG.
    const Files files{{"supset01.lpg", "damaged"}, {"SUPSET07.LPG", preset(Series::SU, "A")}};
    SortStick stick(files);
    stick.scan();
    stick.ui().expect(kSortTitle, Answer::Yes).expect(kSortTitle);
    EXPECT_FALSE(btnSort_Click(stick.ctx()).completed);
    ASSERT_TRUE(stick.ui().done());
    EXPECT_EQ(stick.ui().shown.back().text,
              "The sort needs the name SUPSET01.LPG, but supset01.lpg in the TAVRIN folder "
              "already has it.\r\rRename or move that file, then sort again. Nothing was "
              "changed.");
    EXPECT_EQ(stick.contents(), files);
    EXPECT_FALSE(fs::exists(stick.library() / "FileSorting"));
}

// The renames trust the folder's listing instead of asking a FUSE stick about every new
// name: a name known to be there, in any case, is refused, and nothing is ever replaced,
// on a stick (no no-replace flag) and on a local disk (with one) alike.
TEST(Sort, RenamesInAListedFolderNeverReplaceAFile) {
    TVK_REQUIRE_FUSE();
    const Files files{{"A.LPG", "a"}, {"B.LPG", "b"}};
    SortStick stick(files);
    test::TempTree local;
    for (const auto& [name, bytes] : files) local.write(name, bytes);
    const struct {
        const char* from;
        const char* to;
        int error;
    } steps[] = {
        {"A.LPG", "b.lpg", kErrFileAlreadyExists},
        {"A.LPG", "C.LPG", 0},
        {"B.LPG", "a.LPG", 0},  // free again once A moved away
        {"C.LPG", "A.LPG", kErrFileAlreadyExists},
        {"C.LPG", "B.LPG", 0},
    };
    for (const fs::path& folder : {stick.folder(), local.root()}) {
        FolderRenamer renamer(folder, folderEntries(folder));
        for (const auto& step : steps) {
            int error = 0;
            try {
                renamer.rename(step.from, step.to);
            } catch (const RuntimeError& e) {
                error = e.number();
            }
            EXPECT_EQ(error, step.error) << folder << ": " << step.from << " > " << step.to;
        }
        EXPECT_EQ(test::snapshot(folder), (Files{{"a.LPG", "b"}, {"B.LPG", "a"}})) << folder;
    }
}

struct Interruption {
    const char* what;
    bool pull;         // the stick pulled; otherwise the program killed
    int afterRenames;  // of 2 x 4 renames: up to 4 in the first half
    Answer recovery;   // Yes finishes, No puts back
};

class SortInterrupted : public ::testing::TestWithParam<Interruption> {};

TEST_P(SortInterrupted, IsFinishedOrPutBackAtTheNextScan) {
    TVK_REQUIRE_FUSE();
    const Interruption& c = GetParam();
    const Files before{{"SUPSET01.LPG", preset(Series::SU, "Delta")},
                       {"SUPSET02.LPG", preset(Series::SU, "Charlie")},
                       {"SUPSET03.LPG", preset(Series::SU, "Bravo")},
                       {"SUPSET04.LPG", preset(Series::SU, "Alpha")},
                       {"tune.mp3", "ID3"}};
    SortStick stick(before);
    stick.scan();
    SortRequest request;
    request.afterEachRename = [&](int done) {
        if (done != c.afterRenames) return;
        if (!c.pull) throw ProgramEnd{9};
        test::pullImage(stick.root());
    };
    stick.ui().expect(kSortTitle, Answer::Yes);
    if (c.pull) stick.ui().expect("TVK: RUNTIME ERROR", Answer::Ignore).expect(kSortTitle);
    if (c.pull) {
        EXPECT_FALSE(btnSort_Click(stick.ctx(), request).completed);
    } else {
        EXPECT_THROW(btnSort_Click(stick.ctx(), request), ProgramEnd);
    }
    ASSERT_TRUE(stick.ui().done());
    if (c.pull) {
        EXPECT_NE(stick.ui().shown.back().text.find("next scan"), std::string::npos);
    }

    stick.attach();
    stick.ui().expect("INTERRUPTED SORT", c.recovery).expect("INTERRUPTED SORT");
    stick.scan();
    ASSERT_TRUE(stick.ui().done());
    EXPECT_TRUE(stick.ctx().state.drive.present);
    const Files sorted = renamed(before,
                                 "SUPSET01.LPG>SUPSET04.LPG|SUPSET02.LPG>SUPSET03.LPG|"
                                 "SUPSET03.LPG>SUPSET02.LPG|SUPSET04.LPG>SUPSET01.LPG");
    EXPECT_EQ(stick.contents(), c.recovery == Answer::Yes ? sorted : before);
    EXPECT_FALSE(fs::exists(stick.library() / "FileSorting"));
}

INSTANTIATE_TEST_SUITE_P(
    Stops, SortInterrupted,
    ::testing::Values(Interruption{"killed unpacking, finished", false, 2, Answer::Yes},
                      Interruption{"killed packing, put back", false, 6, Answer::No},
                      Interruption{"pulled unpacking, put back", true, 3, Answer::No},
                      Interruption{"pulled packing, finished", true, 5, Answer::Yes}),
    [](const auto& info) {
        return std::string(info.param.pull ? "Pulled" : "Killed") +
               std::to_string(info.param.afterRenames);
    });

TEST(Sort, StickNotAsTheJournalSaysIsLeftAloneAndReported) {
    TVK_REQUIRE_FUSE();
    SortStick stick(
        {{"SUPSET01.LPG", preset(Series::SU, "B")}, {"SUPSET02.LPG", preset(Series::SU, "A")}});
    stick.killSortAfter(1);
    // Someone copies a file back under the name the sort moved away from ("A" first).
    test::writeFile(stick.folder() / "SUPSET02.LPG", "copied back");
    const Files now = stick.contents();

    stick.attach();
    stick.ui().expect("INTERRUPTED SORT");
    stick.scan();
    ASSERT_TRUE(stick.ui().done());
    EXPECT_EQ(stick.ui().shown[0].icon, Icon::Exclamation);
    EXPECT_NE(stick.ui().shown[0].text.find("left as they are"), std::string::npos);
    EXPECT_EQ(stick.contents(), now);
    EXPECT_EQ(folderEntries(stick.library() / "FileSorting").size(), 1u);  // kept
}

TEST(Sort, TvkSortsAndItsScanFinishesAnInterruptedSort) {
    TVK_REQUIRE_FUSE();
    const Files before{{"SUPSET01.LPG", preset(Series::SU, "B")},
                       {"SUPSET02.LPG", preset(Series::SU, "A")},
                       {"ESONG009.EMR", song(Series::E, "C")}};
    SortStick stick(before);
    test::ScopedEnv home("HOME", pathToUtf8(stick.tree().root()));
    test::ScopedEnv config("XDG_CONFIG_HOME", pathToUtf8(stick.tree().path(".config")));
    const std::string tvk = std::string(TVK_CLI_PATH) + " --yes ";
    const std::string opt = " --drive-image '" + pathToUtf8(stick.image()) + "'";
    std::string out;
    stick.detach();
    EXPECT_EQ(test::runCommand(tvk + "sort" + opt, &out), 0) << out;
    EXPECT_NE(out.find("Sorting complete"), std::string::npos) << out;
    EXPECT_NE(out.find("Renamed 3 files."), std::string::npos) << out;

    // A new first preset, and a sort killed half way through it.
    stick.attach();
    test::writeFile(stick.folder() / "SUPSET09.LPG", preset(Series::SU, "0 first"));
    const Files unsorted = stick.contents();
    stick.killSortAfter(2);
    stick.detach();
    EXPECT_EQ(test::runCommand(tvk + "scan" + opt, &out), 0) << out;
    EXPECT_NE(out.find("[INTERRUPTED SORT] The interrupted sort is finished"), std::string::npos)
        << out;

    stick.attach();
    EXPECT_EQ(stick.contents(), renamed(unsorted,
                                        "SUPSET09.LPG>SUPSET01.LPG|SUPSET01.LPG>SUPSET02.LPG|"
                                        "SUPSET02.LPG>SUPSET03.LPG"));
}

TEST(SortJournal, ReadsBackOnlyAWholeJournal) {
    const SortJournal journal{
        "MY STICK",
        "2021ABCD",
        SortStage::Packing,
        {{"MY SU.SPG", ".tvk-1.part", "SUPSET01.LPG"}, {"x.APG", ".tvk-2.part", "APSET001.LPG"}}};
    const std::string text = journalText(journal);
    const auto back = parseSortJournal(text);
    ASSERT_TRUE(back);
    EXPECT_EQ(journalText(*back), text);
    for (std::size_t n = 0; n + 2 < text.size(); ++n)
        EXPECT_FALSE(parseSortJournal(text.substr(0, n))) << n;
    std::string foreign = text;
    foreign.replace(foreign.find("x.APG"), 5, "a/b");
    EXPECT_FALSE(parseSortJournal(foreign));
}

}  // namespace
}  // namespace tvk
