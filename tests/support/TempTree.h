#pragma once
// Temporary folder trees for tests: made fresh under the system's temp folder and
// removed again when the test ends.

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/Platform.h"

namespace tvk::test {

class TempTree {
  public:
    TempTree();
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const std::filesystem::path& root() const { return root_; }
    // `relative` is UTF-8 with '/' separators.
    std::filesystem::path path(std::string_view relative) const;
    std::filesystem::path write(std::string_view relative, std::string_view bytes) const;
    std::filesystem::path mkdir(std::string_view relative) const;
    std::string read(std::string_view relative) const;
    bool exists(std::string_view relative) const;
    // Names (UTF-8) of the entries of a folder, sorted.
    std::vector<std::string> list(std::string_view relative = {}) const;

  private:
    std::filesystem::path root_;
};

std::string readFile(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, std::string_view bytes);
// Names (UTF-8) of the entries of a folder, sorted.
std::vector<std::string> listNames(const std::filesystem::path& folder);

// Files by name (UTF-8, '/' before a subfolder's files) and their bytes.
using Files = std::map<std::string, std::string>;
void put(const std::filesystem::path& folder, const Files& files);
// Every file under a folder but the hidden ones (a leading '.'); none when it is missing.
Files snapshot(const std::filesystem::path& folder);
std::vector<std::string> names(const Files& files);

// Shorthand for tables: "a|b|c" gives its parts ("" gives none), "a>b|c>d" its pairs.
std::vector<std::string> split(std::string_view list);
std::vector<std::pair<std::string, std::string>> pairs(std::string_view list);

// Sets an environment variable for the life of the object, then restores it.
class ScopedEnv {
  public:
    ScopedEnv(std::string name, const std::string& value);
    ~ScopedEnv();

  private:
    std::string name_;
    bool had_ = false;
    std::string old_;
};

// Runs a POSIX shell command; returns its exit code and fills `output` with
// stdout+stderr. Windows has no such shell: there it returns -1.
int runCommand(const std::string& command, std::string* output = nullptr);
// True when `tool` is on the PATH (never on Windows).
bool haveTool(const std::string& tool);

}  // namespace tvk::test
