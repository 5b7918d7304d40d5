#pragma once
// Carrying out a sort journal's renames, for a sort under way and for one that was
// interrupted: finishing it, or putting every file back under its old name, a file whose
// entry vanished taken from its copy in the library.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "library/SortJournal.h"

namespace tvk {

enum class SortDirection { Finish, Undo };

// One run over a journal. The journal gets a progress line after each rename; it goes,
// with the copies and the scratch folder when that is left empty, when every file is done.
struct JournalRun {
    std::filesystem::path folder;  // the stick's TAVRIN folder
    std::filesystem::path journalFile;
    SortJournal journal;
    std::vector<SortPlace> places;  // where each file stands, kept up to date
    std::vector<SortPlace> before;  // where each step's file stands before it
    std::vector<bool> unplaced;     // neither on the stick nor put back from its copy
    // Renames in `folder`, knowing its entries from the listing the places come from.
    std::optional<FolderRenamer> renamer;
    // Called after each rename with the number done so far in this run.
    std::function<void(int renamesDone)> afterEachRename;
    int renamesDone = 0;

    std::filesystem::path copies() const;
};

// Starts a run at the journal's beginning, every file under its old name.
void startJournalRun(JournalRun& run, const std::vector<std::string>& entries);

// Does the sort's renames. When one is not done (Ignore or Abort in the error box) the
// files are put back at once while the stick can be read, or the user is told that the
// next scan will offer it; Abort then ends the routine as usual. False when the sort
// did not get done.
bool completeSort(Routine& r, JournalRun& run);

// Looks for an interrupted sort of the accepted stick and, when its files stand where
// the journal says, offers to finish it or to put every file back. Returns true when no
// interrupted sort of this stick is left. The scan calls it for every accepted stick.
bool offerSortRecovery(Context& ctx);

}  // namespace tvk
