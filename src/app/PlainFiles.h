#pragma once
// What the program counts as a file: a regular file that is neither hidden nor a system
// file. On Linux a name beginning with "." is hidden; on Windows the attributes decide.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tvk {

bool isHiddenOrSystem(const std::filesystem::path& path);
bool isPlainFile(const std::filesystem::path& path);

// Names (UTF-8) of the plain files of `folder` that match the ';'-separated wildcard
// list, sorted by name without regard to case. Throws std::filesystem_error when the
// folder cannot be read. `ignore` names files to leave out (a FUSE label entry).
std::vector<std::string> listPlainFiles(const std::filesystem::path& folder,
                                        std::string_view patterns = "*.*",
                                        const std::vector<std::string>& ignore = {});

// Case-insensitive name order, as the file lists sort.
bool lessNoCase(const std::string& a, const std::string& b);

}  // namespace tvk
