#pragma once
// The main window's shared state: a plain struct the window owns and hands to every
// command, and redraws from afterwards.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/Interaction.h"

namespace tvk {

enum class Series : std::uint8_t { All = 0, SU = 1, A = 2, E = 3 };

// The attached thumbdrive as the last scan left it.
struct ThumbDriveState {
    bool present = false;         // accepted by the scan
    std::string letter;           // "E" on Windows; the volume's id on Linux
    std::filesystem::path root;   // "E:\" or the mount point
    std::string serialHex = "0";  // upper-case hexadecimal, no leading zeros
    std::string volumeName;
    std::string fileSystem;  // "FAT", "FAT32", ...
    int driveType = 0;
    std::string deviceId;
    bool tavrinPresent = false;
    bool fileSystemOk = false;
    std::filesystem::path tavrinFolder() const { return root / "TAVRIN"; }
};

struct ContentCounts {
    int presets = 0, music = 0, mp3 = 0, midi = 0, other = 0, all = 0;
};

// What Edit > Copy recorded for a later paste: the program's own, not the system
// clipboard's.
struct CopySource {
    std::string list;  // "flbDocs" or "flbUSB"; empty until something was copied
    std::filesystem::path folder;
    std::vector<std::string> files;
};

inline constexpr int kMaxSelected = 1500;

struct MainState {
    std::string activeList;             // "dirDocs", "flbDocs" or "flbUSB"
    std::vector<std::string> selected;  // the selected-file table
    CopySource copySource;

    std::uint8_t series = 0;      // 0 ALL, 1 SU, 2 A, 3 E
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

    std::string lastAction;  // the last action word of the active list ("CLICK", ...)
    // Set by the window: redraws both lists from docsFolder/pattern/usbPattern. Commands
    // that change the view or the files call it; unset (tests, tvk) it does nothing.
    std::function<void()> refreshLists;

    // The shared list of organ file names that ReadPresetNames / ReadRecordingsNames
    // fill: entries 1 to 750; entry 0 is the sorts' swap place.
    std::vector<std::string> nameList = std::vector<std::string>(751);
};

// "btnUSB_Docs_2": the object name of a member of a control array.
inline std::string controlName(const std::string& array, int index) {
    return array + "_" + std::to_string(index);
}

}  // namespace tvk
