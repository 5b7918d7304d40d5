#include "udisks/UdisksServices.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "app/Text.h"
#include "support/Platform.h"
#include "support/TempTree.h"

extern char** environ;

namespace tvk::test {

namespace fs = std::filesystem;

namespace {

const char* const kUdevRun = "/run/udev";
const char* const kSocket = "system_bus_socket";

std::string firstExisting(const std::vector<std::string>& candidates) {
    for (const auto& c : candidates)
        if (access(c.c_str(), X_OK) == 0) return c;
    return {};
}

std::string udevdProgram() {
    return firstExisting({"/lib/systemd/systemd-udevd", "/usr/lib/systemd/systemd-udevd"});
}

std::string udisksdProgram() {
    return firstExisting({"/usr/libexec/udisks2/udisksd", "/usr/lib/udisks2/udisksd"});
}

bool waitUntil(const std::function<bool()>& ready, std::chrono::seconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!ready()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return true;
}

// The process's start time in clock ticks since boot (field 22 of /proc/PID/stat): with
// the pid it names this very process, so a cleanup never stops a newcomer that reused
// the number.
std::string startTime(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const auto close = stat.rfind(')');
    if (close == std::string::npos) return {};
    std::size_t at = close + 2, field = 3;
    for (; field < 22 && at != std::string::npos; ++field) at = stat.find(' ', at) + 1;
    return stat.substr(at, stat.find(' ', at) - at);
}

bool udevdRunningAlready() {
    for (const auto& e : fs::directory_iterator("/proc")) {
        std::ifstream comm(e.path() / "comm");
        std::string name;
        if (std::getline(comm, name) && name == "systemd-udevd") return true;
    }
    return false;
}

bool stopped(pid_t pid) {
    return waitUntil([&] { return waitpid(pid, nullptr, WNOHANG) == pid; },
                     std::chrono::seconds(5));
}

}  // namespace

std::string UdisksServices::unavailableReason() {
    if (geteuid() != 0) return "needs root for loop devices and the system services";
    if (access("/dev/loop-control", F_OK) != 0) return "/dev/loop-control is missing";
    if (!haveTool("dbus-daemon")) return "dbus-daemon is missing";
    if (udevdProgram().empty()) return "systemd-udevd is missing";
    if (udisksdProgram().empty()) return "udisksd is missing";
    for (const char* tool : {"losetup", "gdbus", "fatlabel", "fsck.fat"})
        if (!haveTool(tool)) return std::string(tool) + " is missing";
    return {};
}

UdisksServices::UdisksServices(fs::path stateFile, Start what)
    : stateFile_(std::move(stateFile)),
      folder_(makeTempFolder("tvk-udisks-")),
      busAddress_("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + pathToUtf8(folder_ / kSocket)),
      tempFolder_("TMPDIR", pathToUtf8(folder_)) {
    record("folder " + pathToUtf8(folder_));
    const fs::path socket = folder_ / kSocket;
    if (what == Start::Nothing) return;
    std::ofstream(folder_ / "bus.conf")
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig><type>system</type>\n"
           "<listen>unix:path="
        << pathToUtf8(socket)
        << "</listen><auth>EXTERNAL</auth>\n"
           "<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy>\n"
           "</busconfig>\n";
    if (start({"dbus-daemon", "--nofork", "--nopidfile",
               "--config-file=" + pathToUtf8(folder_ / "bus.conf")},
              "dbus.log") < 0)
        return;
    if (!waitUntil([&] { return fs::exists(socket); }, std::chrono::seconds(10))) {
        ADD_FAILURE() << "dbus-daemon did not open " << socket;
        return;
    }

    if (!udevdRunningAlready()) {
        madeUdevRun_ = !fs::exists(kUdevRun);
        if (madeUdevRun_) record(std::string("folder ") + kUdevRun);
        if (start({udevdProgram()}, "udevd.log") < 0) return;
        if (!waitUntil([] { return fs::exists("/run/udev/control"); }, std::chrono::seconds(10))) {
            ADD_FAILURE() << "systemd-udevd did not start";
            return;
        }
    }

    if (start({udisksdProgram()}, "udisksd.log") < 0) return;
    up_ = waitUntil(
        [] {
            return runCommand(
                       "gdbus introspect --system --dest org.freedesktop.UDisks2 "
                       "--object-path /org/freedesktop/UDisks2/Manager >/dev/null") == 0;
        },
        std::chrono::seconds(30));
    if (!up_) ADD_FAILURE() << "udisksd did not come up on the private bus";
}

UdisksServices::~UdisksServices() {
    for (const auto& device : std::vector<std::string>(devices_)) detach(device);
    stopAll();
    std::error_code ec;
    if (madeUdevRun_) fs::remove_all(kUdevRun, ec);
    fs::remove_all(folder_, ec);
    fs::remove(stateFile_, ec);
}

pid_t UdisksServices::start(const std::vector<std::string>& argv, const std::string& logName) {
    const std::string log = pathToUtf8(folder_ / logName);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = -1;
    const int rc = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        ADD_FAILURE() << argv[0] << " cannot be started";
        return -1;
    }
    pids_.push_back(pid);
    record("pid " + std::to_string(pid) + " " + startTime(pid));
    return pid;
}

void UdisksServices::record(const std::string& line) {
    std::ofstream(stateFile_, std::ios::app) << line << "\n";
}

void UdisksServices::stopAll() {
    // Last started first: udisksd before the udev and the bus it uses.
    for (auto it = pids_.rbegin(); it != pids_.rend(); ++it) {
        kill(*it, SIGTERM);
        if (!stopped(*it)) {
            kill(*it, SIGKILL);
            waitpid(*it, nullptr, 0);
        }
    }
    pids_.clear();
}

std::string UdisksServices::attach(const fs::path& image) {
    // The image first: the cleanup finds the loop device by its backing file even when
    // the test dies before it learns the device's name.
    record("image " + pathToUtf8(image));
    std::string out;
    if (runCommand("losetup --find --show '" + pathToUtf8(image) + "'", &out) != 0) {
        ADD_FAILURE() << "losetup: " << out;
        return {};
    }
    const std::string device = fileNameUtf8(pathFromUtf8(trimWhitespace(out)));
    devices_.push_back(device);
    if (up_ && !waitUntil([&] { return udisksBlockProperty(device, "IdType") == "vfat"; },
                          std::chrono::seconds(30))) {
        ADD_FAILURE() << "udisks did not see the FAT file system of " << device;
        return {};
    }
    return device;
}

void UdisksServices::detach(const std::string& device) {
    if (std::find(devices_.begin(), devices_.end(), device) == devices_.end()) return;
    std::string out;
    EXPECT_EQ(runCommand("losetup -d /dev/" + device, &out), 0) << out;
    std::erase(devices_, device);
    if (up_ && !waitUntil([&] { return udisksBlockProperty(device, "IdType").empty(); },
                          std::chrono::seconds(30)))
        ADD_FAILURE() << "udisks still shows a file system on " << device;
}

std::string udisksBlockProperty(const std::string& device, const std::string& property) {
    std::string out;
    if (runCommand("gdbus call --system --dest org.freedesktop.UDisks2 --object-path "
                   "/org/freedesktop/UDisks2/block_devices/" +
                       device +
                       " --method org.freedesktop.DBus.Properties.Get "
                       "org.freedesktop.UDisks2.Block " +
                       property,
                   &out) != 0)
        return {};
    // "(<'DEMO'>,)"
    const auto open = out.find("<'"), close = out.rfind("'>");
    if (open == std::string::npos || close == std::string::npos || close < open) return {};
    return out.substr(open + 2, close - open - 2);
}

}  // namespace tvk::test
