// Category views and the series menu, checked against real folders on disk.

#include <gtest/gtest.h>

#include <set>

#include "app/PlainFiles.h"
#include "library/CategoryViews.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

using Names = std::set<std::string>;

// One file of every kind the views tell apart, in the library folder and on the stick.
const std::vector<std::string> kFiles = {
    "APSET001.LPG", "ASONG001.LMR", "asong.LPG", "SUPSET001.LPG", "SUSONG001.LMR", "EPSET001.EPG",
    "ESONG001.EMR", "Waltz.SPG",    "Waltz.APG", "Waltz.EPG",     "Song.SMR",      "Song.AMR",
    "Song.EMR",     "tune.mp3",     "tune.MID",  "photo.jpg",     "notes.txt"};

struct ViewsFixture : test::SessionTest {
    int refreshes = 0;

    ViewsFixture() {
        for (const auto& f : kFiles) {
            tree.write("lib/" + f, "x");
            tree.write("stick/TAVRIN/" + f, "x");
        }
        tree.write("lib/.hidden.spg", "x");  // hidden files never show
        tree.mkdir("lib/Folder.spg");        // nor do folders
        ctx.state.docsFolder = tree.path("lib");
        ctx.state.drive.root = tree.path("stick");
        ctx.state.refreshLists = [this] { ++refreshes; };
    }
    Names docs() const {
        auto v = listPlainFiles(ctx.state.docsFolder, ctx.state.pattern);
        return {v.begin(), v.end()};
    }
    Names usb() const {
        auto v = listPlainFiles(ctx.state.drive.tavrinFolder(), ctx.state.usbPattern);
        return {v.begin(), v.end()};
    }
};

struct ViewCase {
    int category;
    int series;
    Names shown;
};

const Names kAll(kFiles.begin(), kFiles.end());
const std::vector<ViewCase> kViewCases = {
    {0, 0, kAll},
    {0, 1, {"Waltz.SPG", "SUPSET001.LPG", "SUSONG001.LMR", "tune.MID", "tune.mp3"}},
    // The A list names "ASONG.lpg" literally, so numbered A songs stay out of it.
    {0, 2, {"Waltz.APG", "APSET001.LPG", "asong.LPG", "Song.AMR", "tune.MID", "tune.mp3"}},
    {0, 3, {"Waltz.EPG", "EPSET001.EPG", "Song.EMR", "ESONG001.EMR", "tune.MID", "tune.mp3"}},
    {1,
     0,
     {"APSET001.LPG", "asong.LPG", "SUPSET001.LPG", "EPSET001.EPG", "Waltz.SPG", "Waltz.APG",
      "Waltz.EPG", "photo.jpg"}},
    {1, 1, {"SUPSET001.LPG", "Waltz.SPG"}},
    {1, 2, {"APSET001.LPG", "asong.LPG", "Waltz.APG"}},
    {1, 3, {"EPSET001.EPG", "Waltz.EPG"}},
    {2, 0, {"ASONG001.LMR", "SUSONG001.LMR", "ESONG001.EMR", "Song.SMR", "Song.AMR", "Song.EMR"}},
    {2, 1, {"SUSONG001.LMR", "Song.SMR"}},
    {2, 2, {"ASONG001.LMR", "Song.AMR"}},
    {2, 3, {"ESONG001.EMR", "Song.EMR"}},
    {3, 0, {"tune.mp3"}},
    {3, 1, {"tune.mp3"}},
    {3, 2, {"tune.mp3"}},
    {3, 3, {"tune.mp3"}},
    {4, 0, {"tune.MID"}},
    {4, 1, {"tune.MID"}},
    {4, 2, {"tune.MID"}},
    {4, 3, {"tune.MID"}},
};

TEST_F(ViewsFixture, EveryCategoryAndSeriesFiltersBothLists) {
    ctx.state.drive.present = true;
    for (const auto& c : kViewCases) {
        SCOPED_TRACE("category " + std::to_string(c.category) + " series " +
                     std::to_string(c.series));
        ctx.state.series = seriesFromNumber(c.series);
        btnButtonBar_Click(ctx, c.category);
        EXPECT_EQ(ctx.state.selectedCategory, c.category);
        EXPECT_EQ(docs(), c.shown);
        EXPECT_EQ(usb(), c.shown);
        EXPECT_EQ(ui.status[StatusPanel::Progress], std::to_string(c.shown.size()) + " items");
    }
    EXPECT_EQ(refreshes, static_cast<int>(kViewCases.size()));
}

TEST_F(ViewsFixture, StickListStaysEmptyUntilADriveIsAccepted) {
    for (int category = 0; category < kCategoryCount; ++category) {
        btnButtonBar_Click(ctx, category);
        EXPECT_EQ(ctx.state.usbPattern, "*.nothing");
        EXPECT_TRUE(usb().empty());
    }
    ctx.state.drive.present = true;
    btnButtonBar_Click(ctx, 3);
    EXPECT_EQ(usb(), Names{"tune.mp3"});
    // The count is the computer list's, never the stick's.
    tree.write("stick/TAVRIN/more.mp3", "x");
    btnButtonBar_Click(ctx, 3);
    EXPECT_EQ(ui.status[StatusPanel::Progress], "1 items");
}

TEST_F(ViewsFixture, SeriesCycleKeepsTheSelectedCategory) {
    btnButtonBar_Click(ctx, 1);
    const std::vector<std::pair<Series, std::string>> cycle = {
        {Series::SU, "mnuSU"}, {Series::A, "mnuA"}, {Series::E, "mnuE"}, {Series::All, "mnuALL"}};
    EXPECT_EQ(visibleSeriesMenu(ctx.state.series), "mnuALL");
    for (const auto& [series, visible] : cycle) {
        clickVisibleSeriesMenu(ctx);
        EXPECT_EQ(ctx.state.series, series);
        EXPECT_EQ(visibleSeriesMenu(ctx.state.series), visible);
        EXPECT_EQ(ctx.state.selectedCategory, 1);
        EXPECT_EQ(ctx.state.pattern, *categoryPattern(1, series));
    }
}

TEST_F(ViewsFixture, SeriesChangeWithoutCategoryKeepsTheOldPattern) {
    ctx.state.pattern = "*.txt";
    mnuALL_Click(ctx);
    EXPECT_EQ(ctx.state.series, Series::SU);
    EXPECT_EQ(ctx.state.pattern, "*.txt");
    EXPECT_EQ(ctx.state.selectedCategory, -1);
    EXPECT_EQ(ui.status[StatusPanel::Progress], "1 items");
    EXPECT_EQ(refreshes, 1);
}

TEST_F(ViewsFixture, SwitchToSeriesLandsOnTheChosenSeries) {
    for (int wanted : {1, 2, 3, 0, 7}) {
        switchToSeries(ctx, seriesFromNumber(wanted));
        EXPECT_EQ(ctx.state.series, seriesFromNumber(wanted));
    }
}

TEST_F(ViewsFixture, VanishedFolderCountsAsEmpty) {
    ctx.state.docsFolder = tree.path("gone");
    btnButtonBar_Click(ctx, 0);
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_EQ(ui.status[StatusPanel::Progress], "0 items");
}

}  // namespace
}  // namespace tvk
