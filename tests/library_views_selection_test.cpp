// The list logic behind the main window: selection, enabling, double-click and drops.

#include <gtest/gtest.h>

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

TEST_F(SelectionFixture, DropModesAndTheBatch) {
    const auto lib = tree.mkdir("lib"), other = tree.mkdir("lib/Other");
    const auto stick = tree.mkdir("stick/TAVRIN");
    struct Case {
        const char* from;
        const char* to;
        std::filesystem::path source, destination;
        const char* mode;
    };
    const Case cases[] = {
        {"flbUSB", "flbDocs", stick, lib, "LEFT"},
        {"flbDocs", "flbUSB", lib, stick, "RIGHT"},
        {"flbDocs", "flbDocs", lib, lib / ".", "flbDocs"},
        {"flbUSB", "flbUSB", stick, stick, "flbUSB"},
        {"flbDocs", "flbDocs", lib, other, "DIFF"},
    };
    for (const auto& c : cases) {
        ui.expect("COPY FILES");
        listDragDrop(ctx, {c.from, c.to, c.source, c.destination, {"a.SPG", "b.mp3"}});
        const auto& batch = ctx.state.batch;
        EXPECT_EQ(batch.mode, c.mode) << c.from << " -> " << c.to;
        EXPECT_EQ(batch.files, (std::vector<std::string>{"a.SPG", "b.mp3"}));
        EXPECT_EQ(batch.source, c.source);
        EXPECT_EQ(batch.destination, c.destination);
        EXPECT_EQ(ctx.state.activeList, c.to);
    }
    // Until the copy engine is in, nothing is copied and the box says so.
    EXPECT_TRUE(ui.done());
    EXPECT_NE(ui.shown.back().text.find("Nothing was copied"), std::string::npos);
    EXPECT_FALSE(tree.exists("lib/Other/a.SPG"));
}

}  // namespace
}  // namespace tvk
