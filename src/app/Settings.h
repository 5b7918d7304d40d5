#pragma once
// The user's settings as kept in "TVK.ini" (IniFile.h reads and writes them).

#include <array>
#include <cstdint>

namespace tvk {

struct WindowRect {
    std::int32_t left = 0, top = 0, width = 0, height = 0;
    bool operator==(const WindowRect&) const = default;
};

struct Settings {
    int organSeries = 0;  // 1 SU, 2 A, 3 E; anything else means all series
    bool allTextSelect = false;
    bool autoBackup = false;
    std::uint8_t numberSeq = 0;  // 1 continue the number sequence, else restart at 1
    bool remWinPosit = false;
    bool formatChange = false;  // the one-time notice was shown; survives a reset

    // Windows colour values: blue in the high byte, red in the low byte.
    std::uint32_t compFolderFC = 0x000000, compFolderBC = 0xFFFFE0;
    std::uint32_t compFilesFC = 0x000000, compFilesBC = 0xFFFFFF;
    std::uint32_t usbFilesFC = 0x000000, usbFilesBC = 0xE0FFFF;

    // Rows 0..3: left, top, width, height; row 0 is the main window.
    std::array<WindowRect, 4> windows{};

    // Resets everything but "Format Change" and the window table.
    void resetToDefaults() {
        const bool keep = formatChange;
        const auto keepWindows = windows;
        *this = Settings{};
        formatChange = keep;
        windows = keepWindows;
    }
    bool operator==(const Settings&) const = default;
};

}  // namespace tvk
