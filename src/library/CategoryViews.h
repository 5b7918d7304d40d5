#pragma once
// The category views: which files the two main lists show, from the chosen category
// button and the organ series. Works on MainState only; the window redraws through
// MainState::refreshLists afterwards.

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "app/Context.h"

namespace tvk {

inline constexpr int kCategoryCount = 5;

// Captions of the category button bar, index 0 to 4.
inline constexpr std::array<const char*, kCategoryCount> kCategoryCaptions = {
    "A&ll Files", "&Presets", "&Music", "MP&3", "Mi&di"};

// The pattern for a category (0..4) and series; nullopt for a category out of range.
std::optional<std::string> categoryPattern(int category, Series series);

// The series menu: exactly one of the four items is visible, the one naming the series.
inline constexpr std::array<const char*, 4> kSeriesMenuItems = {"mnuALL", "mnuSU", "mnuA", "mnuE"};
// Captions carry their double quotes: "\"ALL\"", "\"SU\"", ...
std::string seriesMenuCaption(Series series);
// The visible series item's control name.
std::string visibleSeriesMenu(Series series);

// Chooses a category (0..4) and re-applies the view; 5 or more only re-applies the
// current pattern. Status panel 1 ends up showing the computer list's count.
void btnButtonBar_Click(Context& ctx, int index);

// The series menu commands, each stepping to the next series in the cycle
// ALL, SU, A, E and re-applying the selected category.
void mnuALL_Click(Context& ctx);
void mnuSU_Click(Context& ctx);
void mnuA_Click(Context& ctx);
void mnuE_Click(Context& ctx);
// Runs the command of whichever series item is visible now.
void clickVisibleSeriesMenu(Context& ctx);
// Runs the one series command that steps onto `series` (what Preferences' OK does).
void switchToSeries(Context& ctx, Series series);

}  // namespace tvk
