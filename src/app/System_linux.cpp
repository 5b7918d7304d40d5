// Linux: the installation record lives in registry files, the user's own over the
// machine-wide ones under $XDG_CONFIG_DIRS; the recycle bin is the freedesktop trash,
// and a desktop user needs no elevation.

#include <fcntl.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <thread>
#include <vector>

#include "app/FileIO.h"
#include "app/RegistryFile.h"
#include "app/RuntimeError.h"
#include "app/System.h"
#include "app/Text.h"
#include "app/Trash.h"

extern char** environ;

namespace tvk {

namespace {

std::filesystem::path configHome() {
    if (const char* x = std::getenv("XDG_CONFIG_HOME"); x && *x) return pathFromUtf8(x);
    const char* home = std::getenv("HOME");
    return pathFromUtf8(home ? home : "/") / ".config";
}

std::filesystem::path productConfigFolder() {
    return configHome() / "Tavrin File Manager";
}

constexpr const char* kRegistryFileName = "registry.ini";

// The machine-wide record, as the local-machine hive is: the package puts it under
// /etc/xdg, in a folder without spaces because dpkg's list of configuration files
// cannot hold them. Relative entries are ignored, as the base-directory rules say.
std::vector<std::filesystem::path> machineRegistryFiles() {
    const char* dirs = std::getenv("XDG_CONFIG_DIRS");
    const std::string list = dirs && *dirs ? dirs : "/etc/xdg";
    std::vector<std::filesystem::path> files;
    std::istringstream in(list);
    std::string dir;
    while (std::getline(in, dir, ':'))
        if (!dir.empty() && dir.front() == '/')
            files.push_back(pathFromUtf8(dir) / "tavrin-file-manager" / kRegistryFileName);
    return files;
}

std::filesystem::path stateHome() {
    if (const char* x = std::getenv("XDG_STATE_HOME"); x && *x) return pathFromUtf8(x);
    const char* home = std::getenv("HOME");
    return pathFromUtf8(home ? home : "/") / ".local" / "state";
}

pid_t spawnShell(const std::string& commandLine) {
    pid_t pid = 0;
    std::string sh = "/bin/sh", c = "-c", cmd = commandLine;
    char* argv[] = {sh.data(), c.data(), cmd.data(), nullptr};
    const int rc = posix_spawn(&pid, "/bin/sh", nullptr, nullptr, argv, environ);
    if (rc != 0) throw RuntimeError::fromErrno(rc, commandLine);
    return pid;
}

// Starts a program without waiting for it. A short wait tells an immediate failure; a
// program still running after it is waited for by a thread of its own, so it never
// lingers as a zombie after it ends.
bool spawnDetached(const std::vector<std::string>& args, std::chrono::milliseconds wait) {
    std::vector<char*> argv;
    std::vector<std::string> copy = args;
    for (auto& a : copy) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) return false;
    const auto until = std::chrono::steady_clock::now() + wait;
    do {
        int status = 0;
        const pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    } while (std::chrono::steady_clock::now() < until);
    std::thread([pid] {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }).detach();
    return true;
}

class LinuxSystem : public System {
  public:
    explicit LinuxSystem(std::string commandLine) : commandLine_(std::move(commandLine)) {}
    ~LinuxSystem() override {
        if (lockFd_ >= 0) close(lockFd_);
    }

    std::optional<std::string> environment(const std::string& name) override {
        const char* v = std::getenv(name.c_str());
        if (!v) return std::nullopt;
        return std::string(v);
    }

    std::string commandLine() override { return commandLine_; }

    bool isAdministrator() override { return true; }

    // Value by value: a user's newer DisplayVersion does not hide the machine's
    // InstallLocation.
    std::optional<RegistryValue> regQuery(RegistryRoot root, const std::string& key,
                                          const std::string& name) override {
        if (auto v = registry().query(root, key, name)) return v;
        for (const auto& file : machineRegistryFiles())
            if (auto v = RegistryFile(file).query(root, key, name)) return v;
        return std::nullopt;
    }

    void regSet(RegistryRoot root, const std::string& key, const std::string& name,
                const RegistryValue& value) override {
        registry().set(root, key, name, value);
    }

    bool acquireSingleInstance() override {
        if (lockFd_ >= 0) return true;
        std::error_code ec;
        std::filesystem::create_directories(productConfigFolder(), ec);
        const auto file = productConfigFolder() / "instance.lock";
        const int fd = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd < 0) return true;  // no lock possible: do not refuse to run
        // flock is released by the kernel when a crashed instance's process ends.
        if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
            close(fd);
            return false;
        }
        lockFd_ = fd;
        return true;
    }

    bool recycle(const std::filesystem::path& path) override { return moveToTrash(path); }

    void runAndWait(const std::string& commandLine, const std::function<void()>& pump) override {
        const pid_t pid = spawnShell(commandLine);
        for (;;) {
            int status = 0;
            const pid_t done = waitpid(pid, &status, WNOHANG);
            if (done == pid || (done < 0 && errno != EINTR)) return;
            if (pump) pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    bool startDetached(const std::filesystem::path& program) override {
        if (access(program.c_str(), X_OK) != 0) return false;
        return spawnDetached({program.string()}, std::chrono::milliseconds(200));
    }

    bool openWithDefault(const std::filesystem::path& file) override {
        std::error_code ec;
        if (!std::filesystem::exists(file, ec)) return false;
        // xdg-open tries one opener after another before it gives up, which takes a
        // while on a busy computer; a desktop that found a program hands the file over
        // at once, or runs the program in its place and is still running when we stop
        // waiting.
        return spawnDetached({"xdg-open", file.string()}, std::chrono::milliseconds(1500));
    }

    std::filesystem::path documentsFolder() override {
        const char* homeEnv = std::getenv("HOME");
        const std::filesystem::path home = pathFromUtf8(homeEnv ? homeEnv : "/");
        // A localised desktop names its Documents folder in user-dirs.dirs.
        std::istringstream dirs(readTextFileOrEmpty(configHome() / "user-dirs.dirs"));
        std::string line;
        while (std::getline(dirs, line)) {
            if (!startsWith(line, "XDG_DOCUMENTS_DIR=")) continue;
            std::string v = trimWhitespace(line.substr(18));
            if (v.size() >= 2 && v.front() == '"' && v.back() == '"') v = v.substr(1, v.size() - 2);
            if (startsWith(v, "$HOME/")) return home / pathFromUtf8(v.substr(6));
            if (startsWith(v, "/")) return pathFromUtf8(v);
        }
        return home / "Documents";
    }

    std::filesystem::path stateFolder() override { return stateHome() / "tavrin-file-manager"; }

  private:
    // Writes go to the user's record only: the machine's is the package's.
    RegistryFile registry() { return RegistryFile(productConfigFolder() / kRegistryFileName); }

    std::string commandLine_;
    int lockFd_ = -1;
};

}  // namespace

std::unique_ptr<System> makePlatformSystem(std::string commandLine) {
    return std::make_unique<LinuxSystem>(std::move(commandLine));
}

}  // namespace tvk
