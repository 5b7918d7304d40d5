#pragma once
// Carrying out a sort journal's renames, for a sort under way and for one that was
// interrupted: finishing it, or putting every file back under its old name.

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "library/SortJournal.h"

namespace tvk {

enum class SortDirection { Finish, Undo };

// One run over a journal. The journal file is rewritten when the second half starts and
// removed, with the scratch folder when it is left empty, when every file is done.
struct JournalRun {
    std::filesystem::path folder;  // the stick's TAVRIN folder
    std::filesystem::path journalFile;
    SortJournal journal;
    std::vector<SortPlace> places;  // where each file stands, kept up to date
    // Renames in `folder`, knowing its entries from the listing the places come from.
    std::optional<FolderRenamer> renamer;
    // Called after each rename with the number done so far in this run.
    std::function<void(int renamesDone)> afterEachRename;
    int renamesDone = 0;
};

// Does the remaining renames. When one is not done (Ignore or Abort in the error box)
// the user is told where things stand, and with `offerNow`, while the stick is still
// there, asked at once whether to finish or put back; Abort then ends the routine as
// usual. False when the renames did not all get done. The journal describes the stick
// at every moment.
bool completeJournal(Routine& r, JournalRun& run, SortDirection direction, bool offerNow);

// What a sort or recovery that stopped part way tells the user.
void reportStoppedSort(Routine& r, JournalRun& run, bool offerNow);

// Looks for an interrupted sort of the accepted stick and, when its files stand where
// the journal says, offers to finish it or to put every file back. Returns true when no
// interrupted sort of this stick is left. The scan calls it for every accepted stick.
bool offerSortRecovery(Context& ctx);

}  // namespace tvk
