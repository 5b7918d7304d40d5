#pragma once
// Where the program keeps things: its program folder and the library in Documents.

#include <filesystem>
#include <string>

#include "app/Text.h"

namespace tvk {

// The fixed library folders; each name begins with one no-break space (U+00A0).
inline const std::string kFolderDownloaded = std::string(kNbsp) + "Downloaded";
inline const std::string kFolderMusicRecordings = std::string(kNbsp) + "Music Recordings";
inline const std::string kFolderPresetPool = std::string(kNbsp) + "Preset Pool";
inline const std::string kFolderRecycleBin = std::string(kNbsp) + "Recycle Bin";

inline constexpr const char* kUninstallKey =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tavrin File Manager";

struct Paths {
    std::filesystem::path programFolder;  // InstallLocation, else the current folder
    std::filesystem::path libraryRoot;    // Documents/Tavrin File Manager
    std::filesystem::path commonProgramFiles;
    std::filesystem::path localAppData;

    std::filesystem::path settingsFile() const { return libraryRoot / "TVK.ini"; }
    std::filesystem::path traceFile() const { return programFolder / "TVK_ErrorLog.txt"; }
    std::filesystem::path manual() const { return programFolder / "User's Manual.pdf"; }
    std::filesystem::path downloader() const { return programFolder / "TVK_Downloader.exe"; }
    std::filesystem::path downloaded() const {
        return libraryRoot / pathFromUtf8(kFolderDownloaded);
    }
    std::filesystem::path musicRecordings() const {
        return libraryRoot / pathFromUtf8(kFolderMusicRecordings);
    }
    std::filesystem::path presetPool() const {
        return libraryRoot / pathFromUtf8(kFolderPresetPool);
    }
    std::filesystem::path recycleBin() const {
        return libraryRoot / pathFromUtf8(kFolderRecycleBin);
    }
};

}  // namespace tvk
