#pragma once
// What tvk's five transfer commands share: the stick from --drive-image or the machine,
// the button's command, and a report of what it did.

#include <string>
#include <vector>

namespace tvk::cli {

class ConsoleInteraction;

inline constexpr const char* kTransferUsage = "[--drive-image FILE]";
// Update and restore can show what they would do: one line per file, nothing changed.
inline constexpr const char* kMirrorUsage = "[--drive-image FILE] [--dry-run]";

// Runs btnUSB_Docs `index` on the first removable stick; 0 when it ran to its end.
int runTransfer(std::vector<std::string>& args, ConsoleInteraction& ui, int index);

}  // namespace tvk::cli
