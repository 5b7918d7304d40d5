#pragma once
// What the File and Edit menu commands share: the list they act on, its folder and
// selected entries, the moves they make inside a folder and the redraw afterwards.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "app/Context.h"

namespace tvk {

// The entries a command works on: the list's control name, its folder and the names.
struct ListSelection {
    ListControl list = ListControl::None;
    std::filesystem::path folder;
    std::vector<std::string> names;
};

// The folder a list shows: flbDocs and dirDocs the library folder chosen in the tree,
// flbUSB the stick's TAVRIN folder (empty while no stick is accepted).
std::filesystem::path listFolder(const MainState& state, ListControl list);
// The active list with its folder and selected-file table.
ListSelection activeSelection(const MainState& state);

// Redraws both lists when a window is attached; the selection is gone afterwards.
void refreshLists(MainState& state);

// True when `to` differs from `from` in case only and the folder holds no file of exactly
// that name (on a FAT stick or a Windows disk the two names are one file).
bool isCaseOnlyRename(const std::filesystem::path& from, const std::filesystem::path& to);
// Renames `from` to `to` in the same folder without ever replacing another file (58);
// a change of case only goes through a temporary name, since the file system takes the
// new name for the old one.
void moveFile(const std::filesystem::path& from, const std::filesystem::path& to);

// Raises "Bad file name or number" (52) for a name that would leave the folder: one
// holding a path separator, or "." and "..". Everything else the file system judges.
void requireNameInFolder(std::string_view name);

}  // namespace tvk
