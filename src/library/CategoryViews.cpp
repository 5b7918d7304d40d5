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
void stepSeries(Context& ctx, const char* routineName, std::uint8_t next) {
    routine(ctx, routineName, [&](Routine&) {
        ctx.state.series = next;
        const int selected = ctx.state.selectedCategory;
        btnButtonBar_Click(ctx,
                           selected >= 0 && selected < kCategoryCount ? selected : kCategoryCount);
    });
}

}  // namespace

std::optional<std::string> categoryPattern(int category, int series) {
    if (category < 0 || category >= kCategoryCount || series < 0 || series > 3) return std::nullopt;
    return std::string(kPatterns[category][series]);
}

std::string seriesMenuCaption(int series) {
    static constexpr std::array<const char*, 4> codes = {"ALL", "SU", "A", "E"};
    return "\"" + std::string(codes[series >= 0 && series < 4 ? series : 0]) + "\"";
}

std::string visibleSeriesMenu(std::uint8_t series) {
    return kSeriesMenuItems[series < 4 ? series : 0];
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
    stepSeries(ctx, "frmMain.mnuALL_Click", 1);
}
void mnuSU_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuSU_Click", 2);
}
void mnuA_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuA_Click", 3);
}
void mnuE_Click(Context& ctx) {
    stepSeries(ctx, "frmMain.mnuE_Click", 0);
}

void clickVisibleSeriesMenu(Context& ctx) {
    switch (ctx.state.series) {
        case 1:
            mnuSU_Click(ctx);
            break;
        case 2:
            mnuA_Click(ctx);
            break;
        case 3:
            mnuE_Click(ctx);
            break;
        default:
            mnuALL_Click(ctx);
            break;
    }
}

void switchToSeries(Context& ctx, int series) {
    switch (series) {
        case 1:
            mnuALL_Click(ctx);
            break;
        case 2:
            mnuSU_Click(ctx);
            break;
        case 3:
            mnuA_Click(ctx);
            break;
        default:
            mnuE_Click(ctx);
            break;
    }
}

}  // namespace tvk
