#pragma once
// Edit > Delete and File > Empty Bin. Nothing is deleted for good: a library file or
// folder goes to the system's recycle bin (undo there), a stick file, where no recycle
// bin exists, into the program's own " Recycle Bin" folder in the library.

#include <filesystem>
#include <string>
#include <vector>

#include "app/Context.h"
#include "library/ListFiles.h"

namespace tvk {

struct DeleteReport {
    std::vector<std::string> deleted;  // the names now in a recycle bin
    // For stick files: the name each got in the program's bin (" (1)" on a clash).
    std::vector<std::string> binNames;
    bool stickRemoved = false;  // the stick was pulled part way
};

// dirDocs: the folder `selection.folder` itself; flbDocs / flbUSB: the selected names.
DeleteReport mnuEditDelete_Click(Context& ctx, const ListSelection& selection);
// The active list and its selected-file table (or the tree's folder).
DeleteReport mnuEditDelete_Click(Context& ctx);

// A copy of a stick file in the program's bin, flat, " (1)" before the extension when
// the name is taken there; returns the name it got. The stick file itself stays.
std::string copyToProgramBin(Context& ctx, const std::filesystem::path& file);

// Sends the files of the program's bin to the system's recycle bin, after asking.
DeleteReport mnuFileEmpty_Click(Context& ctx);

}  // namespace tvk
