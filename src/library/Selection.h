#pragma once
// The main window's list logic without the widgets: what a click in a file list does to
// the shared state, which commands the selection enables, what a double-click opens and
// which copy mode a drop means.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "app/Context.h"
#include "library/Copyfiles.h"

namespace tvk {

// Commands the selection switches, by control name.
inline constexpr const char* kMnuOpen = "mnuOpen";
inline constexpr const char* kMnuFileRename = "mnuFileRename";
inline constexpr const char* kMnuEditCopy = "mnuEditCopy";
inline constexpr const char* kMnuEditPaste = "mnuEditPaste";
inline constexpr const char* kMnuEditRename = "mnuEditRename";
inline constexpr const char* kBtnCompare = "btnCompare";

struct CommandEnabling {
    bool open = false, rename = false, copy = false, paste = false, compare = false;
    bool operator==(const CommandEnabling&) const = default;
};
CommandEnabling enablingFor(std::size_t selectedCount);

// "2 of 17 selected"
std::string selectionStatus(std::size_t selected, std::size_t total);

bool isPresetName(const std::string& name);  // SPG, APG, EPG, LPG

struct ListClick {
    ListControl list = ListControl::flbDocs;
    std::filesystem::path folder;
    std::string clicked;                // the entry clicked; empty when none
    std::vector<std::string> selected;  // the selected entries in list order
    std::size_t entryCount = 0;
};

// flbDocs_Click / flbUSB_Click: file information, the selected-file table (more than
// 1,500 names is an index error), the enabled commands and the "n of m selected" text.
void fileListClick(Context& ctx, const ListClick& click);

// The list was redrawn and lost its selection: an empty table and nothing enabled that
// needs one.
void forgetSelection(MainState& state);

enum class DoubleClickAction { None, Play, View, OpenWithDesktop };
DoubleClickAction doubleClickAction(ListControl list, const std::string& name);

struct DropRequest {
    ListControl sourceList = ListControl::None;       // the file list the drag started in
    ListControl destinationList = ListControl::None;  // a folder of dirDocs counts as flbDocs
    std::filesystem::path sourceFolder;
    std::filesystem::path destinationFolder;
    std::vector<std::string> files;
};

// "LEFT" onto the computer list from the thumbdrive, "RIGHT" the other way, the list's
// own name for the same folder, "DIFF" for two folders on the same side.
CopyMode copyModeFor(const DropRequest& drop);
bool sameFolder(const std::filesystem::path& a, const std::filesystem::path& b);

// A drop: copies the dragged files with the mode the drop means. nullopt when the user
// aborted before the copy began.
std::optional<CopyReport> listDragDrop(Context& ctx, const DropRequest& drop);

}  // namespace tvk
