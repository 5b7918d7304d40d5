#pragma once
// The record the alphabetical sort keeps in the library while it renames files on the
// stick. It lists every file to be renamed (old name, new name and, for one file of each
// cycle of files that trade names, a temporary name) and the renames in the order they
// are done; a progress line is added after each rename. So an interrupted sort can be
// finished or put back, step by step, whether the stick was pulled, the program killed
// or a rename refused. Before the first rename every such file is copied into the
// library, and the journal names that folder: a file whose directory entry vanished is
// taken from there.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/Paths.h"
#include "drive/ThumbDriveState.h"

namespace tvk {

struct SortMove {
    std::string oldName;
    std::string temporaryName;  // empty when the file goes straight to its new name
    std::string newName;
};

enum class SortPlace { Old, Temporary, New };

// One rename: the file of moves[move] goes from where it stands to `to`.
struct SortStep {
    std::size_t move = 0;
    SortPlace to = SortPlace::New;
};

struct SortJournal {
    std::string volumeName;
    std::string serialHex;
    std::string copiesFolder;  // in the scratch folder: the copies of the files renamed
    std::vector<SortMove> moves;
    std::vector<SortStep> steps;
    std::size_t done = 0;  // steps in effect, from the progress lines
};

// The journal without its progress lines, as written before the first rename.
std::string journalText(const SortJournal& journal);
// The line added after each rename (forward or back) with the steps then in effect.
std::string journalProgressLine(std::size_t done);
// nullopt for a text journalText did not write (a damaged or foreign file). A progress
// line cut short is ignored.
std::optional<SortJournal> parseSortJournal(std::string_view text);

// The order of the renames that take every file of `moves` to its new name: a file whose
// new name is free goes there in one rename; a cycle of files that trade names sends its
// first file to a temporary name (set in `moves`) until the rest have moved. `taken` are
// the folder's names, in upper case, every old name included. Throws RuntimeError (58)
// when a new name is held by a file that stays.
std::vector<SortStep> planSortSteps(std::vector<SortMove>& moves,
                                    const std::vector<std::string>& taken,
                                    const std::filesystem::path& folder);

// The scratch folder "FileSorting" in the library, which holds the journals and copies.
std::filesystem::path sortingFolder(const Paths& paths);
// One journal a stick, named like the stick's mirror folder.
std::filesystem::path sortJournalFile(const Paths& paths, const ThumbDriveState& drive);

const std::string& nameAt(const SortMove& move, SortPlace place);
// Where each step's file stands before that step.
std::vector<SortPlace> placesBeforeSteps(const SortJournal& journal);

// Where the files of a journal stand.
struct SortPosition {
    std::size_t done = 0;
    std::vector<SortPlace> places;
    std::vector<bool> missing;  // under neither of the names the position gives it
};

// The position that the stick's folder entries show: the journal's progress, one rename
// more or less when the program stopped between a rename and its progress line. nullopt
// when another file holds a name one of the journal's files still needs: the folder is
// not in a state the journal describes.
std::optional<SortPosition> locateSortedFiles(const SortJournal& journal,
                                              const std::vector<std::string>& entries);

// The names (UTF-8) of every entry of a folder, hidden ones and folders included.
// Throws RuntimeError when the folder cannot be read.
std::vector<std::string> folderEntries(const std::filesystem::path& folder);

}  // namespace tvk
