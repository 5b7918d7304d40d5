#pragma once
// What the tests need from the operating system they run on, one file per platform
// (Platform_linux.cpp, Platform_win32.cpp): temporary folders, environment variables and
// running the program's own tools.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvk::test {

#ifdef _WIN32
inline constexpr bool kOnWindows = true;
#else
inline constexpr bool kOnWindows = false;
#endif

// A new empty folder under the system's temporary folder, its name starting `prefix`.
std::filesystem::path makeTempFolder(std::string_view prefix);

void setEnv(const std::string& name, const std::string& value);
void unsetEnv(const std::string& name);

struct ProgramOptions {
    std::string input;  // standard input; the program sees its end after it
    // Run as if this folder were the user's home (HOME on Linux, in an otherwise empty
    // environment; SystemDrive and HOMEPATH on Windows), so Documents is under it.
    std::optional<std::filesystem::path> home;
};

struct ProgramRun {
    int exitCode = -1;
    std::string output;  // standard output and standard error, as bytes
};

// Runs a program with these arguments (UTF-8), without a shell in between.
ProgramRun runProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
                      const ProgramOptions& options = {});
// tvk itself.
ProgramRun runTvk(const std::vector<std::string>& args, const ProgramOptions& options = {});

// Removes the installation record tvk register writes where a test home cannot hold it
// (the Windows registry); on Linux it lives in the home and goes with it.
void forgetInstallationRecord();

// Keeps a file open without sharing it, as another program may on Windows. Elsewhere
// files are not locked that way and nothing is held.
class ExclusiveHold {
  public:
    explicit ExclusiveHold(const std::filesystem::path& file);
    ~ExclusiveHold();
    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;
    bool held() const { return handle_ != nullptr; }

  private:
    void* handle_ = nullptr;
};

}  // namespace tvk::test

// Skips a test that needs what only Linux has (a POSIX shell, fork, FUSE, Linux tools).
#ifdef _WIN32
#define TVK_LINUX_ONLY(why) GTEST_SKIP() << "Linux only: " << why
#else
#define TVK_LINUX_ONLY(why) static_cast<void>(0)
#endif
