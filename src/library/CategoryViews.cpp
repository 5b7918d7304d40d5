#include "library/CategoryViews.h"

#include "app/PlainFiles.h"
#include "app/Routine.h"

namespace tvk {

namespace {

// The stick list shows nothing while no drive is accepted.
constexpr const char* kEmptyStickPattern = "*.nothing";

// Rows: category; columns: ALL, SU, A, E. Kept exactly as users know it, including the
// literal "ASONG.lpg" and the capitalised "SUPSET*.LPG".
constexpr std::array<std::array<const char*, 4>, kCategoryCount> kPatterns = {{
    {"*.*", "*.spg;SUPSET*.LPG;SUSONG*.lmr;*.mid;*.mp3",
     "*.apg;APSET*.lpg;ASONG.lpg;*.amr;*.mid;*.mp3", "*.epg;*.emr;*.mid;*.mp3"},
    {"*.?pg", "SU*.lpg;*.spg", "A*.lpg;*.apg", "*.epg"},
    {"*.?mr", "SU*.lmr;*.smr", "A*.lmr;*.amr", "*.emr"},
    {"*.mp3", "*.mp3", "*.mp3", "*.mp3"},
    {"*.mid", "*.mid", "*.mid", "*.mid"},
}};

// A folder that has vanished counts as empty; the window says so when it redraws.
void showDocsCount(Context& ctx) {
    std::error_code ec;
    const bool there = std::filesystem::is_directory(ctx.state.docsFolder, ec);
    const auto count = there ? listPlainFiles(ctx.state.docsFolder, ctx.state.pattern).size() : 0;
    ctx.ui.setStatus(StatusPanel::Progress, std::to_string(count) + " items");
}

// One series command: hide its own item, show the next, set the series and re-apply
// the first selected category (5 when none is, which keeps the old pattern).
void stepSeries(Context& ctx, const char* routineName, Series next) {
    routine(ctx, routineName, [&](Routine&) {
        ctx.state.series = next;
        const int selected = ctx.state.selectedCategory;
        btnButtonBar_Click(ctx,
                           selected >= 0 && selected < kCategoryCount ? selected : kCategoryCount);
    });
}

}  // namespace

std::optional<std::string> categoryPattern(int category, Series series) {
    if (category < 0 || category >= kCategoryCount) return std::nullopt;
    return std::string(kPatterns[category][seriesNumber(series)]);
}

std::string seriesMenuCaption(Series series) {
    static constexpr std::array<const char*, kSeriesCount> codes = {"ALL", "SU", "A", "E"};
    return "\"" + std::string(codes[seriesNumber(series)]) + "\"";
}

std::string visibleSeriesMenu(Series series) {
    return kSeriesMenuItems[seriesNumber(series)];
}

void btnButtonBar_Click(Context& ctx, int index) {
    routine(ctx, "frmMain.btnButtonBar_Click #" + std::to_string(index), [&](Routine& r) {
        auto& state = ctx.state;
        if (index >= 0 && index < kCategoryCount) {
            if (auto pattern = categoryPattern(index, state.series)) state.pattern = *pattern;
            state.selectedCategory = index;
            r.step([&] { showDocsCount(ctx); });
        }
        state.usbPattern = state.drive.present ? state.pattern : kEmptyStickPattern;
        r.step([&] {
            if (state.refreshLists) state.refreshLists();
            showDocsCount(ctx);
        });
    });
}

void mnuALL_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuALL_Click", Series::SU);
}
void mnuSU_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuSU_Click", Series::A);
}
void mnuA_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuA_Click", Series::E);
}
void mnuE_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuE_Click", Series::All);
}

void clickVisibleSeriesMenu(Context& ctx) {
    switch (ctx.state.series) {
        case Series::SU:
            mnuSU_Click(ctx);
            break;
        case Series::A:
            mnuA_Click(ctx);
            break;
        case Series::E:
            mnuE_Click(ctx);
            break;
        case Series::All:
            mnuALL_Click(ctx);
            break;
    }
}

void switchToSeries(Context& ctx, Series series) {
    switch (series) {
        case Series::SU:
            mnuALL_Click(ctx);
            break;
        case Series::A:
            mnuSU_Click(ctx);
            break;
        case Series::E:
            mnuA_Click(ctx);
            break;
        case Series::All:
            mnuE_Click(ctx);
            break;
    }
}

}  // namespace tvk
