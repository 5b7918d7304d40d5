#pragma once
// The main window's shared state: a plain struct the window owns and hands to every
// command, and redraws from afterwards.

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/Interaction.h"
#include "drive/ThumbDriveState.h"
#include "organfiles/ContentCounts.h"
#include "organfiles/Series.h"

namespace tvk {

// The window's three lists, named as their controls are (the trace carries the name).
enum class ListControl { None, dirDocs, flbDocs, flbUSB };
inline constexpr std::array<const char*, 4> kListControlNames = {"", "dirDocs", "flbDocs",
                                                                 "flbUSB"};
// "dirDocs", "flbDocs", "flbUSB"; "" for None.
inline const char* listControlName(ListControl list) {
    return kListControlNames[static_cast<std::size_t>(list)];
}
inline ListControl listControlFromName(std::string_view name) {
    for (std::size_t i = 1; i < kListControlNames.size(); ++i)
        if (name == kListControlNames[i]) return static_cast<ListControl>(i);
    return ListControl::None;
}
constexpr bool isFileList(ListControl list) {
    return list == ListControl::flbDocs || list == ListControl::flbUSB;
}

// The last thing done in the active file list.
enum class ListAction { None, Click, Drop };

// What Edit > Copy recorded for a later paste: the program's own, not the system
// clipboard's.
struct CopySource {
    ListControl list = ListControl::None;  // None until something was copied
    std::filesystem::path folder;
    std::vector<std::string> files;
};

inline constexpr int kMaxSelected = 1500;

struct MainState {
    ListControl activeList = ListControl::None;
    std::vector<std::string> selected;  // the selected-file table
    CopySource copySource;

    Series series = Series::All;
    std::string pattern = "*.*";  // the category pattern of both lists
    std::string usbPattern = "*.nothing";
    int selectedCategory = -1;  // -1 until a category button is chosen

    std::filesystem::path docsFolder;  // the folder flbDocs shows
    ThumbDriveState drive;
    ContentCounts counts;
    std::string driveInfoText;  // the drive information panel
    std::string fileInfoText;   // the file information panel

    // Enabled state of commands by control name ("btnSort", "btnUSB_Docs_2", ...).
    std::map<std::string, bool> enabled;
    bool isEnabled(const std::string& control) const {
        const auto it = enabled.find(control);
        return it != enabled.end() && it->second;
    }

    Answer lastAnswer = Answer::Ok;
    bool busy = false;  // a long command runs; other commands wait

    ListAction lastAction = ListAction::None;
    // Set by the window: redraws both lists from docsFolder/pattern/usbPattern. Commands
    // that change the view or the files call it; unset (tests, tvk) it does nothing.
    std::function<void()> refreshLists;
};

// "btnUSB_Docs_2": the object name of a member of a control array.
inline std::string controlName(const std::string& array, int index) {
    return array + "_" + std::to_string(index);
}

}  // namespace tvk
