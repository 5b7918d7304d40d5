// The alphabetical sort on real FAT sticks mounted through FUSE: the numbering, the
// boxes, files it must leave alone, how few renames it takes, and sorts that cannot
// start or stop part way (a full stick, the program killed, the stick pulled, a file's
// entry gone) refused, put back or finished with every file's bytes intact and the FAT
// clean.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <regex>
#include <set>
#include <sstream>

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
    explicit SortStick(const Files& files,
                       const test::ImageRecipe& recipe = {"fat16", 32, "SORT STICK", "5027AB01"}) {
        image_ = test::makeImage(tree_, "stick.img", recipe);
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
    fs::path journal() const { return library() / "FileSorting" / "SORT STICK - 5027AB01.txt"; }
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
                         // the copies, then a file to a free name, then a cycle of two
                         "UNPACKING FILES: SUPSET02.LPG", "UNPACKING FILES: SUPSET01.LPG",
                         "UNPACKING FILES: X.SMR", "PACKING FILES: SUSONG001.LMR",
                         "UNPACKING FILES: SUPSET02.LPG", "PACKING FILES: SUPSET02.LPG",
                         "PACKING FILES: SUPSET01.LPG", ""}));
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

// fsck.fat's findings on a detached image, empty when it is clean (its banner and
// count of files left out).
std::string fsckFindings(const fs::path& image) {
    std::string out;
    if (test::runCommand("fsck.fat -n '" + pathToUtf8(image) + "' 2>&1", &out) == 0) return {};
    std::string findings;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        if (!startsWith(line, "fsck.fat ") && line.find(" files, ") == std::string::npos)
            findings += line + "\n";
    return findings;
}

// The file the sort renames next, from its journal.
std::string nextRenamed(const fs::path& journalFile) {
    const auto journal = parseSortJournal(test::readFile(journalFile));
    if (!journal || journal->done >= journal->steps.size()) return {};
    const SortStep& step = journal->steps[journal->done];
    return nameAt(journal->moves[step.move], placesBeforeSteps(*journal)[journal->done]);
}

enum class Fault {
    Full,        // the stick has no free cluster
    Pull,        // fusefat killed after some renames
    Kill,        // the program killed after some renames
    Vanish,      // the next file's entry gone, so its rename fails
    VanishPull,  // the next file's entry gone, then fusefat killed
};

struct SortFault {
    const char* what;
    Fault fault;
    int afterRenames;  // of 12: four cycles of two files, each with one temporary name
    Answer recovery;   // at the next scan; Cancel when there is none
};

std::string faultName(const SortFault& c) {
    static const char* const kinds[] = {"Full", "Pulled", "Killed", "Vanished", "VanishedPulled"};
    return kinds[static_cast<int>(c.fault)] + std::to_string(c.afterRenames);
}

class SortFaults : public ::testing::TestWithParam<SortFault> {};

TEST_P(SortFaults, NeverLoseAFile) {
    TVK_REQUIRE_FUSE();
    const SortFault& c = GetParam();
    Files before{{"tune.mp3", "ID3"}, {"SUSONG01.LMR", song(Series::SU, "Waltz")}};
    for (int n = 1; n <= 8; ++n)  // SUPSET01 "H" ... SUPSET08 "A": the order reversed
        before["SUPSET0" + std::to_string(n) + ".LPG"] =
            preset(Series::SU, std::string(1, static_cast<char>('I' - n)));
    SortStick stick(before);
    stick.scan();
    if (c.fault == Fault::Full)
        test::runCommand("dd if=/dev/zero of='" + pathToUtf8(stick.root() / "FILLER") +
                         "' bs=64k 2>/dev/null");
    SortRequest request;
    request.afterEachRename = [&](int done) {
        if (done != c.afterRenames) return;
        if (c.fault == Fault::Kill) throw ProgramEnd{9};
        if (c.fault == Fault::Vanish || c.fault == Fault::VanishPull)
            fs::remove(stick.folder() / nextRenamed(stick.journal()));
        if (c.fault == Fault::Pull || c.fault == Fault::VanishPull) test::pullImage(stick.root());
    };
    auto& ui = stick.ui();
    ui.expect(kSortTitle, Answer::Yes);
    if (c.fault != Fault::Full && c.fault != Fault::Kill)
        ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    if (c.fault != Fault::Kill) ui.expect(kSortTitle);
    if (c.fault == Fault::Kill) {
        EXPECT_THROW(btnSort_Click(stick.ctx(), request), ProgramEnd);
    } else {
        EXPECT_FALSE(btnSort_Click(stick.ctx(), request).completed);
        EXPECT_EQ(ui.shown.back().icon, Icon::Exclamation);
    }
    ASSERT_TRUE(ui.done());
    const std::string said = ui.shown.back().text;
    if (c.fault == Fault::Full) {
        EXPECT_NE(said.find("Nothing was changed."), std::string::npos) << said;
    } else if (c.fault == Fault::Vanish) {
        EXPECT_EQ(said, "The sort stopped. Every file is under its old name again.");
    } else if (c.fault != Fault::Kill) {
        EXPECT_NE(said.find("next scan"), std::string::npos) << said;
    }
    // A pulled stick is "Disk not ready" (a vanished file alone is not).
    if (c.fault == Fault::Pull) {
        EXPECT_EQ(ui.shown.at(1).text.rfind("Encountered Err#71\r", 0), 0u) << ui.shown.at(1).text;
    }
    std::string leftByTheFault;  // a file removed as the stick is pulled leaves lost clusters
    if (c.recovery != Answer::Cancel) {
        stick.detach();
        leftByTheFault = fsckFindings(stick.image());
        stick.attach();
        stick.ui().expect("INTERRUPTED SORT", c.recovery).expect("INTERRUPTED SORT");
        stick.scan();
        ASSERT_TRUE(stick.ui().done());
        EXPECT_TRUE(stick.ctx().state.drive.present);
    }
    const Files sorted = renamed(before,
                                 "SUPSET01.LPG>SUPSET08.LPG|SUPSET02.LPG>SUPSET07.LPG|"
                                 "SUPSET03.LPG>SUPSET06.LPG|SUPSET04.LPG>SUPSET05.LPG|"
                                 "SUPSET05.LPG>SUPSET04.LPG|SUPSET06.LPG>SUPSET03.LPG|"
                                 "SUPSET07.LPG>SUPSET02.LPG|SUPSET08.LPG>SUPSET01.LPG|"
                                 "SUSONG01.LMR>SUSONG001.LMR");
    EXPECT_EQ(stick.contents(), c.recovery == Answer::Yes ? sorted : before);
    for (const auto& name : folderEntries(stick.folder()))
        EXPECT_FALSE(isTemporaryName(name)) << name;
    EXPECT_FALSE(fs::exists(stick.library() / "FileSorting"));
    stick.detach();
    EXPECT_EQ(fsckFindings(stick.image()), leftByTheFault);
    EXPECT_EQ(leftByTheFault.empty(), c.fault != Fault::VanishPull) << leftByTheFault;
}

INSTANTIATE_TEST_SUITE_P(
    Stops, SortFaults,
    ::testing::Values(SortFault{"full", Fault::Full, 0, Answer::Cancel},
                      SortFault{"vanish", Fault::Vanish, 5, Answer::Cancel},
                      SortFault{"pulled first half", Fault::Pull, 2, Answer::No},
                      SortFault{"pulled second half", Fault::Pull, 7, Answer::No},
                      SortFault{"pulled second half", Fault::VanishPull, 9, Answer::No},
                      SortFault{"pulled second half", Fault::VanishPull, 11, Answer::No},
                      SortFault{"killed first half", Fault::Kill, 3, Answer::Yes},
                      SortFault{"killed second half", Fault::Kill, 10, Answer::No}),
    [](const auto& info) { return faultName(info.param); });

// One rename for each file whose new name is free or comes free, a temporary name for
// each cycle of files that trade names, none for a file already in place.
TEST(Sort, RenamesEachFileOncePlusOneForEachCycle) {
    TVK_REQUIRE_FUSE();
    struct Case {
        const char* what;
        std::vector<int> order;  // the place in the alphabet of SUPSET01, 02, ...
        int renamed;
        int renames;
    };
    std::vector<int> shuffled(40);
    std::iota(shuffled.begin(), shuffled.end(), 1);
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(21));
    const Case cases[] = {
        {"already in order", {1, 2, 3, 4, 5, 6}, 0, 0},
        {"one cycle of three, one of two, two in place", {3, 1, 2, 5, 4, 6}, 5, 7},
        {"random order", shuffled, -1, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Files files;
        std::string newNames;
        for (std::size_t i = 0; i < c.order.size(); ++i) {
            const auto name = [](int n) { return "SUPSET" + zeroPad(n, 2) + ".LPG"; };
            files[name(static_cast<int>(i) + 1)] = preset(Series::SU, "P" + zeroPad(c.order[i], 3));
            newNames += name(static_cast<int>(i) + 1) + ">" + name(c.order[i]) + "|";
        }
        SortStick stick(files);
        stick.scan();
        stick.ui().expect(kSortTitle, Answer::Yes).expect(kSortTitle);
        const SortReport report = btnSort_Click(stick.ctx());
        EXPECT_TRUE(report.completed);
        newNames.pop_back();
        EXPECT_EQ(stick.contents(), renamed(files, newNames));
        int cycles = 0, moved = 0;  // counted from the permutation itself
        std::vector<bool> seen(c.order.size() + 1);
        for (int start = 1; start <= static_cast<int>(c.order.size()); ++start) {
            if (seen[start] || c.order[start - 1] == start) continue;
            ++cycles;
            for (int n = start; !seen[n]; n = c.order[n - 1]) seen[n] = true, ++moved;
        }
        EXPECT_EQ(report.renamed, moved);
        EXPECT_EQ(report.renames, moved + cycles);
        if (c.renamed >= 0) {
            EXPECT_EQ(report.renamed, c.renamed);
        }
        if (c.renames >= 0) {
            EXPECT_EQ(report.renames, c.renames);
        } else {
            EXPECT_LE(report.renames, 1.25 * report.renamed);
        }
    }
}

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
    EXPECT_EQ(folderEntries(stick.library() / "FileSorting").size(), 2u);  // journal, copies
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

// A cycle of three, A to B, B to C, C to A, passes the same names twice: the progress
// lines tell the start from the end, the folder the one rename a progress line may lack.
TEST(SortJournal, LocatesTheFilesFromProgressAndFolder) {
    SortJournal journal{
        "S",
        "1",
        "S - 1",
        {{"A", "T", "B"}, {"B", "", "C"}, {"C", "", "A"}},
        {{0, SortPlace::Temporary}, {2, SortPlace::New}, {1, SortPlace::New}, {0, SortPlace::New}},
        0};
    const struct {
        std::size_t logged;
        const char* entries;
        const char* expected;  // done and the missing files, or "none"
    } rows[] = {
        {0, "A|B|C|tune.mp3", "0"},
        {4, "A|B|C", "4"},
        {1, "T|B|A", "2"},  // renamed, not yet logged
        {2, "T|B|C", "1"},  // renamed back, not yet logged
        {2, "t|a", "2 missing 1"},
        {1, "T|B|C|a", "none"},  // another file holds a name still needed
    };
    for (const auto& row : rows) {
        journal.done = row.logged;
        const auto at = locateSortedFiles(journal, test::split(row.entries));
        std::string found = at ? std::to_string(at->done) : "none";
        for (std::size_t i = 0; at && i < at->missing.size(); ++i)
            if (at->missing[i]) found += " missing " + std::to_string(i);
        EXPECT_EQ(found, row.expected) << row.logged << " " << row.entries;
    }
}

TEST(SortJournal, ReadsBackOnlyAWholeJournal) {
    const SortJournal journal{
        "MY STICK",
        "2021ABCD",
        "MY STICK - 2021ABCD",
        {{"MY SU.SPG", "", "SUPSET01.LPG"}, {"x.APG", ".tvk-2.part", "APSET001.LPG"}},
        {{1, SortPlace::Temporary}, {0, SortPlace::New}, {1, SortPlace::New}},
        0};
    const std::string text = journalText(journal);
    const auto progress = journalProgressLine(1) + journalProgressLine(2);
    const auto back = parseSortJournal(text + progress + "Done\t3");  // the last cut short
    ASSERT_TRUE(back);
    EXPECT_EQ(back->done, 2u);
    EXPECT_EQ(journalText(*back), text);
    for (std::size_t n = 0; n + 2 < text.size(); ++n)
        EXPECT_FALSE(parseSortJournal(text.substr(0, n))) << n;
    for (const auto& [from, to] : test::pairs("x.APG>a/b|Step\t1\tTemporary>Step\t0\tTemporary|"
                                              "Step\t1\tNew>Step\t2\tNew")) {
        std::string foreign = text;
        foreign.replace(foreign.find(from), from.size(), to);
        EXPECT_FALSE(parseSortJournal(foreign)) << to;
    }
    EXPECT_FALSE(parseSortJournal(text + journalProgressLine(4)));  // more than there are
    // The earlier kind: every file to its temporary name, then all to their new names.
    const auto twoHalves = parseSortJournal(
        "Tavrin File Manager sort journal 1\r\nVolume\tS\t1\r\nStage\tPacking\r\nMoves\t2\r\n"
        "Move\tA\t.t1\tB\r\nMove\tB\t.t2\tA\r\nEnd\r\n");
    ASSERT_TRUE(twoHalves);
    EXPECT_EQ(twoHalves->done, 2u);
    EXPECT_EQ(twoHalves->steps.size(), 4u);
    EXPECT_EQ(twoHalves->steps[2].to, SortPlace::New);
}

}  // namespace
}  // namespace tvk
