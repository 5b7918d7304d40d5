#pragma once
// The freedesktop.org trash (Linux desktops' recycle bin).

#include <filesystem>

namespace tvk {

// $XDG_DATA_HOME/Trash, or ~/.local/share/Trash.
std::filesystem::path homeTrashFolder();
// Moves a file or folder into the home trash with its .trashinfo record, so the
// desktop's trash can restore it. False when it could not be moved (nothing is lost).
bool moveToTrash(const std::filesystem::path& path);

}  // namespace tvk
