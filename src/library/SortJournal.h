#pragma once
// The record the alphabetical sort keeps in the library while it renames files on the
// stick. Every file goes from its old name to a temporary name in the same folder, and
// only when all have done so, from there to its new name; the journal lists the three
// names of each file and which of the two halves is under way. So at any moment each
// file stands under one of the two names its half allows, and an interrupted sort can
// be finished or put back, whether the stick was pulled, the program killed or a rename
// refused.

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
    std::string temporaryName;
    std::string newName;
};

// Unpacking: each file is under its old or its temporary name. Packing: under its
// temporary or its new name. Putting a sort back runs the halves the other way.
enum class SortStage { Unpacking, Packing };

struct SortJournal {
    std::string volumeName;
    std::string serialHex;
    SortStage stage = SortStage::Unpacking;
    std::vector<SortMove> moves;
};

std::string journalText(const SortJournal& journal);
// nullopt for a text journalText did not write (a damaged or foreign file).
std::optional<SortJournal> parseSortJournal(std::string_view text);

// The scratch folder "FileSorting" in the library, which holds the journals.
std::filesystem::path sortingFolder(const Paths& paths);
// One journal a stick, named like the stick's mirror folder.
std::filesystem::path sortJournalFile(const Paths& paths, const ThumbDriveState& drive);

enum class SortPlace { Old, Temporary, New };
const std::string& nameAt(const SortMove& move, SortPlace place);

// Where each file of the journal stands, given the names of every entry of the stick's
// folder. nullopt when a file stands under none or under both of the names its stage
// allows: the folder is not in a state the journal describes.
std::optional<std::vector<SortPlace>> locateSortedFiles(const SortJournal& journal,
                                                        const std::vector<std::string>& entries);

// The names (UTF-8) of every entry of a folder, hidden ones and folders included.
// Throws RuntimeError when the folder cannot be read.
std::vector<std::string> folderEntries(const std::filesystem::path& folder);

}  // namespace tvk
