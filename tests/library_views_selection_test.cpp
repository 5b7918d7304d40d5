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
        c.list = ListControl::flbDocs;
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
    EXPECT_EQ(ctx.state.activeList, ListControl::flbDocs);
    EXPECT_EQ(ctx.state.lastAction, ListAction::Click);
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
        ListControl list;
        const char* name;
        DoubleClickAction action;
    };
    using A = DoubleClickAction;
    const Case cases[] = {
        {ListControl::flbDocs, "a.mp3", A::Play},
        {ListControl::flbUSB, "a.MID", A::Play},
        {ListControl::flbDocs, "a.pdf", A::OpenWithDesktop},
        {ListControl::flbDocs, "Waltz.APG", A::View},
        {ListControl::flbDocs, "Song.smr", A::View},
        {ListControl::flbDocs, "Song.AMR", A::None},
        {ListControl::flbUSB, "EPSET001.EPG", A::View},
        {ListControl::flbUSB, "Waltz.APG", A::None},
        {ListControl::flbUSB, "SUSONG001.LMR", A::View},
        {ListControl::flbDocs, "notes.txt", A::None},
    };
    for (const auto& c : cases)
        EXPECT_EQ(doubleClickAction(c.list, c.name), c.action)
            << listControlName(c.list) << " " << c.name;
}

TEST_F(SelectionFixture, DropPasteAndCommandLineModes) {
    const auto lib = tree.mkdir("lib"), other = tree.mkdir("lib/Other");
    const auto stick = tree.mkdir("stick/TAVRIN");
    struct Case {
        ListControl from, to;
        std::filesystem::path source, destination;
        CopyMode drop, paste, folders;
    };
    using M = CopyMode;
    const Case cases[] = {
        {ListControl::flbUSB, ListControl::flbDocs, stick, lib, M::Left, M::Left, M::Left},
        {ListControl::flbDocs, ListControl::flbUSB, lib, stick, M::Right, M::Right, M::Right},
        {ListControl::flbDocs, ListControl::flbDocs, lib, lib / ".", M::FlbDocs, M::FlbDocs,
         M::FlbDocs},
        {ListControl::flbUSB, ListControl::flbUSB, stick, stick, M::FlbUSB, M::FlbUSB, M::FlbUSB},
        {ListControl::flbDocs, ListControl::flbDocs, lib, other, M::Diff, M::Diff, M::Diff},
        // Paste goes by the source folder's path: a library folder named in capitals
        // reads as the stick's.
        {ListControl::flbDocs, ListControl::flbUSB, tree.mkdir("lib/TAVRIN old"), stick, M::Right,
         M::Left, M::Right},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(listControlName(c.from)) + " -> " + listControlName(c.to) + " " +
                     pathToUtf8(c.source));
        EXPECT_EQ(copyModeFor({c.from, c.to, c.source, c.destination, {}}), c.drop);
        EXPECT_EQ(pasteModeFor({c.from, c.source, {}}, c.to, c.destination), c.paste);
        EXPECT_EQ(folderCopyMode(c.source, c.destination, stick), c.folders);
    }
}

}  // namespace
}  // namespace tvk
