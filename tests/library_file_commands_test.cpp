// Edit > Delete, File > Empty Bin, Edit > New Folder, File > Convert and File > Print
// Preset Pool: what ends up where, the boxes on the way, and a stick pulled mid-delete.
// The desktop trash itself: common_routines_test.

#include <gtest/gtest.h>

#include "app/Routine.h"
#include "app/Text.h"
#include "library/DeleteFiles.h"
#include "library/ListCommands.h"
#include "support/DriveImages.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

struct FileCommandsTest : test::SessionTest {
    FileCommandsTest() { session.paths.libraryRoot = tree.mkdir("lib"); }
    test::FakeSystem& fake() { return static_cast<test::FakeSystem&>(*session.system); }
    std::vector<std::string> recycledNames() {
        std::vector<std::string> out;
        for (const auto& p : fake().recycled) out.push_back(fileNameUtf8(p));
        return out;
    }
};

TEST_F(FileCommandsTest, DeletingAFolderAsksByWhetherItIsEmpty) {
    struct Case {
        bool withFile;
        Answer answer;
        const char* text;
    };
    for (const Case c :
         {Case{true, Answer::No, "The folder \"@\" is NOT empty.\rDelete this folder anyway?"},
          Case{false, Answer::No, "Please confirm you want to delete the folder\r\"@\""},
          Case{true, Answer::Yes, "The folder \"@\" is NOT empty.\rDelete this folder anyway?"}}) {
        const fs::path folder = tree.mkdir("lib/Old Songs");
        if (c.withFile) tree.write("lib/Old Songs/a.MP3", "a");
        ui.shown.clear();
        ui.expect("DELETE FOLDER", c.answer);
        const auto report = mnuEditDelete_Click(ctx, {ListControl::dirDocs, folder, {}});
        std::string text = c.text;
        text.replace(text.find('@'), 1, pathToUtf8(folder));
        EXPECT_EQ(ui.shown.at(0).text, text);
        EXPECT_EQ(ui.shown.at(0).icon, Icon::Critical);
        EXPECT_EQ(ui.shown.at(0).defaultAnswer(), Answer::No);
        EXPECT_EQ(fs::exists(folder), c.answer == Answer::No);
        EXPECT_EQ(report.deleted.size(), c.answer == Answer::Yes ? 1u : 0u);
        fs::remove_all(folder);
    }
    EXPECT_EQ(recycledNames(), std::vector<std::string>{"Old Songs"});
    // The library folder itself is never offered.
    ui.expect("DELETE FOLDER");
    mnuEditDelete_Click(ctx, {ListControl::dirDocs, session.paths.libraryRoot, {}});
    EXPECT_TRUE(fs::is_directory(session.paths.libraryRoot));
}

TEST_F(FileCommandsTest, DeletingLibraryFilesConfirmsOnceAndShowsProgress) {
    const fs::path folder = session.paths.libraryRoot;
    for (const char* n : {"a.SPG", "b.SPG", "c.SPG", "d.SPG"})
        tree.write(std::string("lib/") + n, n);
    ui.expect("DELETE FILE", Answer::No).expect("DELETE FILE", Answer::Yes);
    mnuEditDelete_Click(ctx, {ListControl::flbDocs, folder, {"a.SPG"}});
    mnuEditDelete_Click(ctx, {ListControl::flbDocs, folder, {"a.SPG"}});
    EXPECT_EQ(ui.shown.at(0).text, "Please confirm you want to delete the file...");
    EXPECT_EQ(ui.shown.at(0).icon, Icon::Exclamation);

    ui.shown.clear();
    ui.expect("DELETE FILE", Answer::Yes);
    session.state.selected = {"b.SPG", "c.SPG", "d.SPG"};
    session.state.activeList = ListControl::flbDocs;
    session.state.docsFolder = folder;
    const auto report = mnuEditDelete_Click(ctx);
    EXPECT_EQ(ui.shown.at(0).text, "Please confirm you want to delete 3 files?");
    EXPECT_EQ(report.deleted, (std::vector<std::string>{"b.SPG", "c.SPG", "d.SPG"}));
    EXPECT_EQ(ui.status[StatusPanel::Progress], "Recycling file \"d.SPG\"");
    EXPECT_EQ(ui.progressValue, 3);
    EXPECT_FALSE(ui.progressVisible);
    EXPECT_TRUE(session.state.selected.empty());
    EXPECT_EQ(recycledNames(), (std::vector<std::string>{"a.SPG", "b.SPG", "c.SPG", "d.SPG"}));

    // A file gone meanwhile is reported, and Ignore goes on with the next.
    tree.write("lib/e.SPG", "e");
    ui.expect("DELETE FILE", Answer::Yes).expect("TVK: RUNTIME ERROR", Answer::Ignore);
    EXPECT_EQ(
        mnuEditDelete_Click(ctx, {ListControl::flbDocs, folder, {"gone.SPG", "e.SPG"}}).deleted,
        std::vector<std::string>{"e.SPG"});
    EXPECT_TRUE(ui.done());
    // Nothing selected, or not a list: nothing happens.
    mnuEditDelete_Click(ctx, {ListControl::flbDocs, folder, {}});
    mnuEditDelete_Click(ctx, {ListControl::None, folder, {"x"}});
}

TEST_F(FileCommandsTest, EmptyBinAsksThenRecyclesTheBinsFiles) {
    tree.write("lib/\xC2\xA0Recycle Bin/SUPSET01.LPG", "1");
    tree.write("lib/\xC2\xA0Recycle Bin/SUPSET01 (1).LPG", "2");
    ui.expect("EMPTY RECYCLE BIN", Answer::No).expect("EMPTY RECYCLE BIN", Answer::Yes);
    EXPECT_TRUE(mnuFileEmpty_Click(ctx).deleted.empty());
    EXPECT_EQ(ui.shown.at(0).text,
              "This will NOT empty the Recycle Bin on your Computer.\rThis will empty the Tavrin "
              "File Manager's Recycle Bin.\rDo you want to clear out this Recycle Bin?");
    EXPECT_EQ(mnuFileEmpty_Click(ctx).deleted.size(), 2u);
    EXPECT_EQ(tree.list("lib/\xC2\xA0Recycle Bin"), std::vector<std::string>{});
    EXPECT_EQ(fake().recycled.size(), 2u);
}

TEST_F(FileCommandsTest, NewFolderTakesTheAnswerAsItsName) {
    const fs::path parent = tree.mkdir("lib/Songs");
    tree.mkdir("lib/Songs/Taken");
    struct Case {
        std::optional<std::string> answer;
        int error;  // 0: no error box
        bool made;
    };
    for (const Case& c : {Case{"Waltzes \xC3\xA9t\xC3\xA9", 0, true}, Case{"", 0, false},
                          Case{std::nullopt, 0, false}, Case{"   ", 0, false},
                          Case{"a/b", 52, false}, Case{"Taken", 75, false}}) {
        SCOPED_TRACE(c.answer.value_or("(cancel)"));
        ui.shown.clear();
        ui.prompted.clear();
        ui.expectPrompt("CREATE NEW FOLDER", c.answer);
        if (c.error) ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
        const auto made = mnuEditNewFldr_Click(ctx, parent);
        EXPECT_TRUE(ui.done());
        EXPECT_EQ(made.has_value(), c.made);
        EXPECT_EQ(ui.prompted.at(0),
                  "Please enter the NAME for the new folder that will be appended to... \r" +
                      pathToUtf8(parent));
        if (c.error) {
            EXPECT_NE(ui.shown.at(0).text.find("Err#" + std::to_string(c.error)),
                      std::string::npos);
        }
    }
    EXPECT_EQ(tree.list("lib/Songs"),
              (std::vector<std::string>{"Taken", "Waltzes \xC3\xA9t\xC3\xA9"}));
}

TEST_F(FileCommandsTest, ConvertDropsTheNumberAndCountsClashes) {
    const fs::path folder = session.paths.libraryRoot;
    const std::vector<std::string> names = {"Plain.EPG",      "Tango_#.EPG",    "Waltz.EPG",
                                            "Waltz_#012.EPG", "Waltz_#013.EPG", "x_#1"};
    for (const auto& n : names) tree.write("lib/" + n, n);
    ui.expect("CONVERT FILENAMES", Answer::No);
    mnuFileConvert_Click(ctx, {ListControl::flbDocs, folder, names});
    EXPECT_EQ(ui.shown.at(0).text,
              "This process will convert ALL Presetname files from the old format of...\r"
              "\"Preset Name_#123.EPG\"\r TO\r\"Preset Name.EPG\"\rin the \"" +
                  pathToUtf8(folder) + "\" folder.\rDo you want to continue?");
    ui.expect("CONVERT FILENAMES", Answer::Yes).expect("TVK");
    const auto report = mnuFileConvert_Click(ctx, {ListControl::flbDocs, folder, names});
    EXPECT_EQ(report.copies, 2);
    EXPECT_EQ(ui.shown.back().text, "There are 2 copies of files.");
    EXPECT_EQ(tree.list("lib"), (std::vector<std::string>{"Plain.EPG", "Tango.EPG", "Waltz (1).EPG",
                                                          "Waltz (2).EPG", "Waltz.EPG", "x_#1"}));
    EXPECT_EQ(tree.read("lib/Waltz (1).EPG"), "Waltz_#012.EPG");
}

TEST_F(FileCommandsTest, PresetListIsWrittenQuotedAndSorted) {
    tree.write("lib/\xC2\xA0Preset Pool/ListOfPresets.txt", "old list");
    ui.expect("PRINT PRESETS");
    const auto file = mnuFilePrint_Click(ctx, {"b.SPG", "ListOfPresets.txt", "A.LPG", "notes.TXT",
                                               "Waltz (1).EPG", "Caf\xC3\xA9.SPG"});
    ASSERT_TRUE(file);
    EXPECT_EQ(tree.read("lib/\xC2\xA0Preset Pool/ListOfPresets.txt"),
              "\"A.LPG\"\r\n\"Caf\xC3\xA9.SPG\"\r\n\"Waltz (1).EPG\"\r\n\"b.SPG\"\r\n");
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown.at(0).title, "PRINT PRESETS");
    EXPECT_EQ(ui.shown.at(0).text,
              "List of Presets Complete\rThe file \"ListOfPresets.txt\" is in the Preset Pool "
              "folder.");
}

TEST(DeleteFromStick, FilesGoToTheProgramsBinAndAPulledStickLosesNothing) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"fat16", 32, "ORGAN", "0000D00D"},
                            {{"SUPSET01.LPG", "SUPSET02.LPG", "SUPSET03.LPG", "SUPSET04.LPG"}});
    Context ctx = drives.ctx();
    const fs::path bin = drives.session->paths.recycleBin();
    fs::create_directories(bin);
    test::writeFile(bin / "SUPSET01.LPG", "older");
    const fs::path tavrin = drives.root() / "TAVRIN";

    drives.ui.expect("DELETE FILE", Answer::Yes);
    const auto one = mnuEditDelete_Click(ctx, {ListControl::flbUSB, tavrin, {"SUPSET01.LPG"}});
    EXPECT_EQ(one.binNames, std::vector<std::string>{"SUPSET01 (1).LPG"});
    EXPECT_FALSE(fs::exists(tavrin / "SUPSET01.LPG"));
    EXPECT_EQ(test::readFile(bin / "SUPSET01.LPG"), "older");

    // Pulled after the first of three: the rest fail (71) and stay on the stick.
    drives.ui.lenient = true;
    drives.ui.onProgress = [root = drives.root()](int value) {
        if (value == 2) test::pullImage(root);
    };
    drives.ui.shown.clear();
    drives.ui.expect("DELETE FILE", Answer::Yes);
    const auto report = mnuEditDelete_Click(
        ctx, {ListControl::flbUSB, tavrin, {"SUPSET02.LPG", "SUPSET03.LPG", "SUPSET04.LPG"}});
    EXPECT_EQ(report.deleted, std::vector<std::string>{"SUPSET02.LPG"});
    ASSERT_GE(drives.ui.shown.size(), 2u);
    EXPECT_NE(drives.ui.shown.at(1).text.find("Err#71"), std::string::npos);

    drives.session->volumes.reset();  // lets go of the dead mount
    EXPECT_EQ(test::imageNames(drives.image, "TAVRIN"),
              (std::vector<std::string>{"SUPSET03.LPG", "SUPSET04.LPG"}));
}

}  // namespace
}  // namespace tvk
