#pragma once
// The "&Sort" command: renumbers every preset and recording of the stick's TAVRIN folder
// so that the organ's numbers follow the alphabetical order of the names inside the
// files, each of the six groups (SU, A and E presets and recordings) from 1. The files
// are renamed in place, each straight to its new name where that is free, with a journal
// and a copy of every renamed file in the library, so a sort that is interrupted can be
// finished or put back (SortRecovery.h).

#include <functional>
#include <string>
#include <vector>

#include "app/Context.h"

namespace tvk {

inline constexpr int kMaxSortedFiles = 1500;

struct SortRequest {
    // Called after each rename with the number done so far.
    std::function<void(int renamesDone)> afterEachRename;
};

struct SortReport {
    bool completed = false;  // "Sorting complete" was shown
    int renamed = 0;         // files that took a new name
    int renames = 0;         // renames done on the stick, a cycle's temporary names included
    // Files that match the presets' or recordings' patterns but belong to no group (a
    // photo, a generic file without a readable header); they keep their names.
    std::vector<std::string> leftAlone;
};

SortReport btnSort_Click(Context& ctx, const SortRequest& request = {});

}  // namespace tvk
