#pragma once
// Edit > Copy and Edit > Paste, and the copy mode for two folders named on the command
// line. Both paths end in Copyfiles.

#include <filesystem>
#include <optional>
#include <string>

#include "library/Copyfiles.h"

namespace tvk {

struct Context;
struct CopySource;
enum class ListControl;

// mnuEditCopy_Click: records the focused file list, its folder and its selected entries
// (the selected-file table) for a later paste. Any other focus records nothing.
void mnuEditCopy_Click(Context& ctx, ListControl focused);

// The direction word of a paste into `destinationList`'s folder: from another list
// "LEFT" when the source folder's path holds "TAVRIN" and "RIGHT" otherwise; within one
// list the list's name for its own folder, "DIFF" for another one.
CopyMode pasteModeFor(const CopySource& source, ListControl destinationList,
                      const std::filesystem::path& destination);

// mnuEditPaste_Click: copies what Edit > Copy recorded into the focused list's folder
// ("dirDocs" and "flbDocs" mean the computer side). nullopt when nothing was pasted.
std::optional<CopyReport> mnuEditPaste_Click(Context& ctx, ListControl focused);

// True for the stick's TAVRIN folder and the folders inside it.
bool isOnStick(const std::filesystem::path& folder, const std::filesystem::path& stickFolder);

// The mode for copying between two folders when none is named: the same folder makes
// duplicates ("flbUSB" on the stick, else "flbDocs"), exactly one side on the stick
// copies "LEFT" or "RIGHT", anything else "DIFF". `stickFolder` is empty without a stick.
CopyMode folderCopyMode(const std::filesystem::path& source,
                        const std::filesystem::path& destination,
                        const std::filesystem::path& stickFolder);

}  // namespace tvk
