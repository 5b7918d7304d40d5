#pragma once
// File > Rename: renumbers an organ file known by its number, gives an organ file known
// by the name inside it a new inside name and file name, and renames any other file
// within the organ's length limits.

#include <filesystem>
#include <string>

#include "app/Context.h"

namespace tvk {

struct RenameRequest {
    ListControl list = ListControl::None;  // flbDocs or flbUSB; anything else does nothing
    std::filesystem::path folder;
    std::string fileName;
};

struct RenameReport {
    bool renamed = false;
    std::string newName;  // the file's name now
};

RenameReport mnuFileRename_Click(Context& ctx, const RenameRequest& request);
// The one file selected in the active list; nothing happens without one.
RenameReport mnuFileRename_Click(Context& ctx);

}  // namespace tvk
