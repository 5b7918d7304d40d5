#pragma once
// The File and Edit menu commands that work on a library folder as a whole: New Folder,
// Convert (the old "_#" file names) and Print Preset Pool (the list of presets).

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/Context.h"
#include "library/ListFiles.h"

namespace tvk {

// Asks for a name and makes that folder in `parent`; the new folder, or nullopt when
// the answer was empty or the folder could not be made.
std::optional<std::filesystem::path> mnuEditNewFldr_Click(Context& ctx,
                                                          const std::filesystem::path& parent);

struct ConvertReport {
    std::vector<std::pair<std::string, std::string>> renamed;  // old name, new name
    int copies = 0;  // names that were taken and got " (n)"
};
// "Preset Name_#123.EPG" becomes "Preset Name.EPG" for every entry of `list` (its folder
// and its entries in list order), after asking.
ConvertReport mnuFileConvert_Click(Context& ctx, const ListSelection& list);

// Writes the quoted names of the entries (TXT files left out), sorted, to
// "ListOfPresets.txt" in the Preset Pool; the file written, or nullopt.
std::optional<std::filesystem::path> mnuFilePrint_Click(Context& ctx,
                                                        const std::vector<std::string>& entries);

}  // namespace tvk
