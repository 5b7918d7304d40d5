#pragma once
// Temporary folder trees for tests: made fresh under the system's temp folder and
// removed again when the test ends.

#include <filesystem>
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
