// File > Rename over both lists: the number, inside-name and file-name flows with their
// exact prompts and boxes, the bytes written into presets, and refused names.

#include <gtest/gtest.h>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "library/RenameFile.h"
#include "organfiles/OrganFile.h"
#include "support/DriveImages.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using Prompts = std::vector<std::optional<std::string>>;

// A preset as the organ writes it: header, 16-character name whose last byte is '#',
// then registration bytes.
std::string organBytes(Series family) {
    return organHeader(family) + "OLD NAME       #" + std::string(64, '\x7F');
}

struct RenameTest : test::SessionTest {
    // The OK boxes are checked by their texts afterwards.
    RenameTest() { ui.lenient = true; }
    fs::path folder = tree.mkdir("lib");

    RenameReport rename(const std::string& list, const std::string& file, const Prompts& answers,
                        const std::vector<std::pair<std::string, Answer>>& boxes = {}) {
        for (const auto& a : answers) ui.expectPrompt("RENAME FILE", a);
        for (const auto& [title, answer] : boxes) ui.expect(title, answer);
        auto report = mnuFileRename_Click(ctx, {listControlFromName(list), folder, file});
        EXPECT_TRUE(ui.done()) << file;
        return report;
    }
};

TEST_F(RenameTest, EveryRowOfBothListsBuildsItsName) {
    struct Row {
        const char *list, *file, *answer, *renamed, *prompt;
    };
    const Row rows[] = {
        {"flbDocs", "Waltz.SPG", "Tango", "Tango.SPG", "Enter a new NAME for Waltz.SPG"},
        {"flbDocs", "Waltz.APG", "Tango", "Tango.APG", "Enter a new NAME for Waltz.APG"},
        {"flbDocs", "EPSET012.EPG", "7", "EPSET007.EPG", "Enter a new NUMBER (01 to 250) for "},
        {"flbDocs", "Waltz.EPG", "Tango", "Tango.EPG", "Enter a new NAME for "},
        {"flbDocs", "SUPSET07.LPG", "8", "SUPSET08.LPG", "Enter a new NUMBER (01 to 40) for "},
        {"flbDocs", "Sunny.LPG", "40", "SUPSET40.LPG", "Enter a new NUMBER (01 to 40) for "},
        {"flbDocs", "My Set.LPG", "9", "APSET009.LPG", "Enter a new NUMBER (01 to 250) for "},
        {"flbDocs", "SUSONG03.LMR", "4", "SUSONG04.LMR", "Enter a new NUMBER (01 to 40) for "},
        {"flbDocs", "ASONG003.LMR", "250", "ASONG250.LMR", "Enter a new NUMBER (01 to 250) for "},
        {"flbDocs", "Song.SMR", "Blues", "Blues.SMR", "Enter a new NAME for "},
        {"flbDocs", "Song.AMR", "Blues", "Blues.AMR", "Enter a new NAME for "},
        {"flbDocs", "ESONG004.EMR", "5", "ESONG005.EMR", "Enter a new NUMBER (01 to 250) for "},
        {"flbDocs", "Ballad.EMR", "Blues", "Blues.EMR", "Enter a new NAME for "},
        {"flbDocs", "notes.txt", "memo", "memo.txt",
         "Enter a new FILE NAME (18 Characters MAX) for notes.txt"},
        {"flbDocs", "My.Song.SPG", "memo", "memo.Song.SPG", "Enter a new FILE NAME (18 "},
        {"flbUSB", "SUPSET07.SPG", "8", "SUPSET08.LPG", "Enter a new NUMBER (01 to 40) for "},
        {"flbUSB", "APSET007.LPG", "12", "APSET012.LPG", "Enter a new NUMBER (01 to 250) for "},
        {"flbUSB", "ESONG007.EMR", "8", "ESONG008.EMR", "Enter a new NUMBER (01 to 250) for "},
        {"flbUSB", "x.MP3", "track", "track.MP3", "Enter a new name for x.MP3"},
        {"flbUSB", "song.old.mp3", "tune", "tune.old.mp3", "Enter a new name for "},
        {"flbUSB", "readme.txt", "read me first", "read me first.txt", "Enter a new name for "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.file);
        tree.write(std::string("lib/") + row.file, organBytes(Series::SU));
        ui.shown.clear();
        ui.prompted.clear();
        const auto report = rename(row.list, row.file, {row.answer});
        EXPECT_TRUE(report.renamed);
        EXPECT_EQ(report.newName, row.renamed);
        EXPECT_EQ(tree.list("lib"), std::vector<std::string>{row.renamed});
        EXPECT_TRUE(startsWith(ui.prompted.at(0), row.prompt)) << ui.prompted.at(0);
        EXPECT_TRUE(ui.shown.empty());
        // Only the name flow of 15 writes into the file.
        const bool inside = std::string(row.prompt).starts_with("Enter a new NAME");
        const std::string expected =
            inside ? organHeader(Series::SU) + row.answer +
                         std::string(15 - std::string(row.answer).size(), ' ') + "#" +
                         std::string(64, '\x7F')
                   : organBytes(Series::SU);
        EXPECT_EQ(tree.read(std::string("lib/") + row.renamed), expected);
        fs::remove(folder / row.renamed);
    }
}

TEST_F(RenameTest, NumbersOutsideTheRowAreAskedAgain) {
    struct Case {
        const char *list, *file;
        const char* tooLarge;  // nullptr: asked again without a message
        const char* renamed;
    };
    for (const Case c :
         {Case{"flbDocs", "SUPSET07.LPG", "Number too Large. 1 to 40", "SUPSET40.LPG"},
          Case{"flbUSB", "SUPSET07.LPG", "Number too Large. 1 to 40", "SUPSET40.LPG"},
          Case{"flbDocs", "APSET007.LPG", "Number too Large. 1 to 250", "APSET040.LPG"},
          Case{"flbUSB", "APSET007.LPG", nullptr, "APSET040.LPG"},
          Case{"flbUSB", "ESONG007.EMR", nullptr, "ESONG040.EMR"}}) {
        SCOPED_TRACE(std::string(c.list) + " " + c.file);
        tree.write(std::string("lib/") + c.file, "x");
        ui.shown.clear();
        const Prompts bad = {"0", "-3", "7.5", "seven", "   ", "251", "99999999999999999999"};
        Prompts answers = bad;
        answers.insert(answers.end(), {"007", "40"});
        rename(c.list, c.file, answers);
        std::vector<std::string> expected;
        if (c.tooLarge) expected.assign(bad.size(), c.tooLarge);
        expected.push_back("Number not changed");
        EXPECT_EQ(ui.texts(), expected);
        EXPECT_EQ(tree.list("lib"), std::vector<std::string>{c.renamed});
        fs::remove(folder / c.renamed);
    }
    // 41 is above an SU row's limit, 40 is not.
    tree.write("lib/SUSONG01.LMR", "x");
    ui.shown.clear();
    rename("flbDocs", "SUSONG01.LMR", {"41", "40"});
    EXPECT_EQ(ui.texts(), std::vector<std::string>{"Number too Large. 1 to 40"});
    EXPECT_TRUE(tree.exists("lib/SUSONG40.LMR"));
}

TEST_F(RenameTest, TakenNamesOfferAnotherTryOrEndTheCommand) {
    tree.write("lib/SUPSET07.LPG", "seven");
    tree.write("lib/SUPSET08.LPG", "eight");
    tree.write("lib/Waltz.SPG", organBytes(Series::SU));
    tree.write("lib/Tango.SPG", organBytes(Series::SU));
    tree.write("lib/x.MP3", "x");
    tree.write("lib/y.MP3", "y");

    rename("flbUSB", "SUPSET07.LPG", {"8", "9"}, {{"NUMBER IN USE", Answer::Retry}});
    EXPECT_EQ(ui.shown.at(0).text,
              "That filenumber is already being used.\rDo you want to try another number?");
    EXPECT_EQ(ui.shown.at(0).buttons, Buttons::RetryCancel);
    EXPECT_EQ(ui.shown.at(0).icon, Icon::Critical);
    EXPECT_EQ(tree.read("lib/SUPSET09.LPG"), "seven");

    // The name flow speaks of a number too.
    rename("flbDocs", "Waltz.SPG", {"Tango"}, {{"NUMBER IN USE", Answer::Cancel}});
    rename("flbUSB", "x.MP3", {"y"}, {{"FILENAME IN USE", Answer::Cancel}});
    rename("flbDocs", "x.MP3", {"y", "z"}, {{"FILENAME IN USE", Answer::Retry}});
    EXPECT_EQ(ui.shown.at(2).text,
              "That filename is already being used.\rDo you want to try another name?");
    EXPECT_EQ(tree.list("lib"),
              (std::vector<std::string>{"SUPSET08.LPG", "SUPSET09.LPG", "Tango.SPG", "Waltz.SPG",
                                        "y.MP3", "z.MP3"}));
    EXPECT_EQ(tree.read("lib/Waltz.SPG"), organBytes(Series::SU));
}

TEST_F(RenameTest, NameAnswersAreCheckedBeforeAnythingChanges) {
    struct Case {
        const char *list, *file;
        Prompts answers;
        std::string boxes;    // their texts, "a|b|..."
        const char* renamed;  // nullptr: left as it was
    };
    const std::string s16(16, 'n'), s19(19, 'n'), s255(255, 'n');
    const std::string noExtension = "There is no need to enter the File Extension.";
    const std::string tooLong18 = "Name too long. 18 characters only|" + noExtension;
    const Case cases[] = {
        Case("flbDocs", "Waltz.SPG", {s16, "Waltz", ""},
             "Name too long. 15 characters only|Name not changed|Rename Aborted", nullptr),
        Case("flbDocs", "Waltz.SPG", {std::nullopt}, "Rename Aborted", nullptr),
        Case("flbDocs", "Waltz.SPG", {"Stra\u00DFe 1.5"}, "", "Stra\u00DFe 1.5.SPG"),
        Case("flbDocs", "notes.txt", {s19, "memo.txt"}, tooLong18, "memo.txt"),
        Case("flbUSB", "x.MP3", {s19, "track.mp3"}, tooLong18, "track.MP3"),
        Case("flbUSB", "x.MP3", {"track.wav"}, "Changing the file extension is not permitted",
             "track.MP3"),
        Case("flbUSB", "x.MP3", {".mp3"}, noExtension + "|Rename Aborted", nullptr),
        Case("flbUSB", "x.dat", {s255, ""}, "Name too long. 254 characters only|Rename Aborted",
             nullptr),
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.answers.front().value_or("(cancel)"));
        tree.write(std::string("lib/") + c.file, organBytes(Series::A));
        ui.shown.clear();
        rename(c.list, c.file, c.answers);
        EXPECT_EQ(ui.texts(), test::split(c.boxes));
        const std::string now = c.renamed ? c.renamed : c.file;
        EXPECT_EQ(tree.list("lib"), std::vector<std::string>{now});
        fs::remove(folder / pathFromUtf8(now));
    }
    // The inside name is Windows-1252, one byte a character.
    tree.write("lib/Waltz.SPG", organBytes(Series::A));
    rename("flbDocs", "Waltz.SPG", {"Caf\xC3\xA9"});
    EXPECT_EQ(readFileHead(folder / pathFromUtf8("Caf\xC3\xA9.SPG"), 48).substr(32),
              "Caf\xE9           #");
}

TEST_F(RenameTest, RefusedNamesAndUnwritablePresetsLeaveTheFileAsItWas) {
    tree.mkdir("lib/sub");
    const std::string bytes = organBytes(Series::E);
    struct Case {
        const char *file, *answer;
        int error;       // the error box's number
        Answer verdict;  // its answer
    };
    for (const Case c : {Case{"Waltz.SPG", "sub/Waltz", 52, Answer::Ignore},
                         Case{"Waltz.SPG", "sub/Waltz", 52, Answer::Abort},
                         Case{"notes.txt", "a\\b", 52, Answer::Ignore},
                         Case{"ReadOnly.SPG", "Tango", 70, Answer::Abort}}) {
        SCOPED_TRACE(std::string(c.file) + " " + c.answer);
        const auto file = tree.write(std::string("lib/") + c.file, bytes);
        if (std::string(c.file) == "ReadOnly.SPG")
            fs::permissions(
                file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                fs::perm_options::remove);
        ui.shown.clear();
        ui.expectPrompt("RENAME FILE", c.answer).expect("TVK: RUNTIME ERROR", c.verdict);
        // Untraced, Abort ends the program.
        if (c.verdict == Answer::Abort)
            EXPECT_THROW(mnuFileRename_Click(ctx, {ListControl::flbDocs, folder, c.file}),
                         ProgramEnd);
        else
            EXPECT_FALSE(mnuFileRename_Click(ctx, {ListControl::flbDocs, folder, c.file}).renamed);
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(test::readFile(file), bytes);
        ASSERT_EQ(ui.shown.size(), 1u);
        EXPECT_NE(ui.shown.front().text.find(std::to_string(c.error)), std::string::npos)
            << toDisplayLines(ui.shown.front().text);
        // Windows will not remove a read-only file.
        fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
        fs::remove(file);
    }
    EXPECT_EQ(tree.list("lib"), std::vector<std::string>{"sub"});
    EXPECT_EQ(tree.list("lib/sub"), std::vector<std::string>{});

    // Too short to hold a name field: said before anything is asked.
    tree.write("lib/Short.SPG", bytes.substr(0, 47));
    ui.shown.clear();
    ui.expect("TVK");
    EXPECT_FALSE(mnuFileRename_Click(ctx, {ListControl::flbDocs, folder, "Short.SPG"}).renamed);
    EXPECT_EQ(ui.shown.at(0).text,
              "\"Short.SPG\" is too short to hold a name, so it is not a preset or recording "
              "the organ made.\rIt was left as it was.");
    EXPECT_EQ(tree.read("lib/Short.SPG"), bytes.substr(0, 47));

    // Gone since the list was drawn.
    ui.shown.clear();
    ui.expectPrompt("RENAME FILE", "8").expect("TVK: RUNTIME ERROR", Answer::Ignore);
    EXPECT_FALSE(mnuFileRename_Click(ctx, {ListControl::flbUSB, folder, "SUPSET07.LPG"}).renamed);
    EXPECT_NE(ui.shown.at(0).text.find("53"), std::string::npos);
}

TEST(RenameOnStick, CaseOnlyChangesAndRenumberingWorkOnFat) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"fat16", 32, "ORGAN", "00C0FFEE"},
                            {{"X.MP3", "SUPSET07.LPG", "SUPSET08.LPG"}});
    Context ctx = drives.ctx();
    const auto tavrin = drives.root() / "TAVRIN";

    drives.ui.expectPrompt("RENAME FILE", "x");
    EXPECT_EQ(mnuFileRename_Click(ctx, {ListControl::flbUSB, tavrin, "X.MP3"}).newName, "x.MP3");
    drives.ui.expectPrompt("RENAME FILE", "8").expect("NUMBER IN USE", Answer::Retry);
    drives.ui.expectPrompt("RENAME FILE", "9");
    EXPECT_TRUE(mnuFileRename_Click(ctx, {ListControl::flbUSB, tavrin, "SUPSET07.LPG"}).renamed);
    EXPECT_TRUE(drives.ui.done());
    EXPECT_EQ(test::listNames(tavrin),
              (std::vector<std::string>{"SUPSET08.LPG", "SUPSET09.LPG", "x.MP3"}));
}

}  // namespace
}  // namespace tvk
