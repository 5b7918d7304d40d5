// The list logic behind the main window: selection, enabling, double-click and drops.

#include <gtest/gtest.h>

#include "app/Text.h"
#include "library/CopyPaste.h"
#include "library/Selection.h"
#include "organfiles/MakeFiles.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

// Any file the panel reads as a preset or song must be one, or its reader complains.
std::string presetBytes() {
    RandomSource random(1);
    return buildTestFile(Series::A, FileKind::Preset, "Waltz", random);
}

struct SelectionFixture : test::SessionTest {
    ListClick click(std::vector<std::string> selected, std::size_t total = 10) {
        ListClick c;
        c.list = "flbDocs";
        c.folder = tree.path("lib");
        c.clicked = selected.empty() ? "" : selected.front();
        c.selected = std::move(selected);
        c.entryCount = total;
        return c;
    }
};

TEST_F(SelectionFixture, EnablingFollowsTheSelectedCount) {
    struct Case {
        std::vector<std::string> names;
        CommandEnabling on;
    };
    const std::vector<Case> cases = {
        {{}, {false, false, false, false, false}},
        {{"a.mid"}, {true, true, true, true, false}},
        {{"a.mid", "b.mid"}, {false, false, true, true, true}},
        {{"a.mid", "b.mid", "c.mid"}, {false, false, true, true, false}},
    };
    for (const auto& c : cases) {
        for (const auto& n : c.names) tree.write("lib/" + n, "x");
        fileListClick(ctx, click(c.names, 17));
        const auto& s = ctx.state;
        EXPECT_EQ(s.isEnabled("mnuOpen"), c.on.open);
        EXPECT_EQ(s.isEnabled("mnuFileRename"), c.on.rename);
        EXPECT_EQ(s.isEnabled("mnuEditCopy"), c.on.copy);
        EXPECT_EQ(s.isEnabled("mnuEditPaste"), c.on.paste);
        EXPECT_EQ(s.isEnabled("btnCompare"), c.on.compare);
        EXPECT_EQ(s.selected, c.names);
        EXPECT_EQ(ui.status[StatusPanel::Progress],
                  std::to_string(c.names.size()) + " of 17 selected");
    }
    EXPECT_EQ(ctx.state.activeList, "flbDocs");
    EXPECT_EQ(ctx.state.lastAction, "CLICK");
}

TEST_F(SelectionFixture, RenamePresetsOnlyForPresets) {
    const std::vector<std::pair<std::string, bool>> cases = {
        {"x.spg", true},  {"x.APG", true},  {"x.EPG", true},  {"SUPSET001.LPG", true},
        {"x.SMR", false}, {"x.mp3", false}, {"x.jpg", false}, {"x.pg", false}};
    for (const auto& [name, on] : cases) {
        tree.write("lib/" + name, presetBytes());
        fileListClick(ctx, click({name}));
        EXPECT_EQ(ctx.state.isEnabled("mnuEditRename"), on) << name;
    }
}

TEST_F(SelectionFixture, MoreThan1500SelectedIsAnIndexError) {
    std::vector<std::string> names;
    for (int i = 0; i < 1501; ++i) names.push_back("f" + std::to_string(i) + ".mid");
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    fileListClick(ctx, click(names, 2000));
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].text.find("Encountered Err#9"), std::string::npos);
    EXPECT_EQ(ctx.state.selected.size(), 1500u);
    // Ignore goes on: the count text still appears.
    EXPECT_EQ(ui.status[StatusPanel::Progress], "1501 of 2000 selected");

    ui.shown.clear();
    names.pop_back();
    fileListClick(ctx, click(names, 2000));
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(SelectionFixture, VanishedFileSaysSoInsteadOfFailing) {
    fileListClick(ctx, click({"gone.SPG"}));
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_NE(ctx.state.fileInfoText.find("no longer in"), std::string::npos);
}

TEST(DoubleClick, ActionByListAndExtension) {
    struct Case {
        const char* list;
        const char* name;
        DoubleClickAction action;
    };
    using A = DoubleClickAction;
    const Case cases[] = {
        {"flbDocs", "a.mp3", A::Play},
        {"flbUSB", "a.MID", A::Play},
        {"flbDocs", "a.pdf", A::OpenWithDesktop},
        {"flbDocs", "Waltz.APG", A::View},
        {"flbDocs", "Song.smr", A::View},
        {"flbDocs", "Song.AMR", A::None},
        {"flbUSB", "EPSET001.EPG", A::View},
        {"flbUSB", "Waltz.APG", A::None},
        {"flbUSB", "SUSONG001.LMR", A::View},
        {"flbDocs", "notes.txt", A::None},
    };
    for (const auto& c : cases)
        EXPECT_EQ(doubleClickAction(c.list, c.name), c.action) << c.list << " " << c.name;
}

TEST_F(SelectionFixture, DropPasteAndCommandLineModes) {
    const auto lib = tree.mkdir("lib"), other = tree.mkdir("lib/Other");
    const auto stick = tree.mkdir("stick/TAVRIN");
    struct Case {
        const char* from;
        const char* to;
        std::filesystem::path source, destination;
        CopyMode drop, paste, folders;
    };
    using M = CopyMode;
    const Case cases[] = {
        {"flbUSB", "flbDocs", stick, lib, M::Left, M::Left, M::Left},
        {"flbDocs", "flbUSB", lib, stick, M::Right, M::Right, M::Right},
        {"flbDocs", "flbDocs", lib, lib / ".", M::FlbDocs, M::FlbDocs, M::FlbDocs},
        {"flbUSB", "flbUSB", stick, stick, M::FlbUSB, M::FlbUSB, M::FlbUSB},
        {"flbDocs", "flbDocs", lib, other, M::Diff, M::Diff, M::Diff},
        // Paste goes by the source folder's path: a library folder named in capitals
        // reads as the stick's.
        {"flbDocs", "flbUSB", tree.mkdir("lib/TAVRIN old"), stick, M::Right, M::Left, M::Right},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to + " " + pathToUtf8(c.source));
        EXPECT_EQ(copyModeFor({c.from, c.to, c.source, c.destination, {}}), c.drop);
        EXPECT_EQ(pasteModeFor({c.from, c.source, {}}, c.to, c.destination), c.paste);
        EXPECT_EQ(folderCopyMode(c.source, c.destination, stick), c.folders);
    }
}

// A drop from the stick and a paste back: both copy, with the names their mode gives.
TEST_F(SelectionFixture, ADropAndAPasteCopy) {
    const auto lib = tree.mkdir("lib");
    const auto stick = tree.mkdir("stick/TAVRIN");
    RandomSource random(3);
    tree.write("stick/TAVRIN/SUPSET07.LPG",
               buildTestFile(Series::SU, FileKind::Preset, "Bells", random));
    ctx.state.drive.present = true;
    ctx.state.drive.root = tree.path("stick");
    ctx.state.docsFolder = lib;

    const auto report = listDragDrop(ctx, {"flbUSB", "flbDocs", stick, lib, {"SUPSET07.LPG"}});
    ASSERT_TRUE(report);
    EXPECT_EQ(report->copied, (std::vector<CopiedFile>{{"SUPSET07.LPG", "Bells.SPG"}}));
    EXPECT_EQ(ctx.state.activeList, "flbDocs");

    ctx.state.selected = {"Bells.SPG"};
    mnuEditCopy_Click(ctx, "flbDocs");
    std::filesystem::remove(stick / "SUPSET07.LPG");
    const auto pasted = mnuEditPaste_Click(ctx, "flbUSB");
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->copied, (std::vector<CopiedFile>{{"Bells.SPG", "SUPSET01.LPG"}}));
    // Only the file lists paste; the focus on a button does nothing.
    EXPECT_FALSE(mnuEditPaste_Click(ctx, "btnSort"));
    EXPECT_TRUE(ui.done());
}

}  // namespace
}  // namespace tvk
