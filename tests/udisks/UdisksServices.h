#pragma once
// A private udisks2 stack for the tests of real block devices: a system bus of its own
// (dbus-daemon on a socket in a temporary folder), udev, and udisksd, each started by
// the test and stopped again by its pid, and loop devices over FAT images.
//
// Everything started is written to a state file first, so that the cleanup script
// (udisks_cleanup.sh, a CTest cleanup fixture) can stop it and detach the loop devices
// when the test was killed on a timeout.

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/TempTree.h"

namespace tvk::test {

class UdisksServices {
  public:
    // Why the stack cannot run here (not root, no loop devices, a tool missing), or
    // empty when it can.
    static std::string unavailableReason();

    // Points this process's system bus at a socket in a folder of its own (which also
    // holds the temporary folders made meanwhile) and starts the three services there,
    // or nothing, for the service missing; fails the test when one does not come up.
    enum class Start { All, Nothing };
    explicit UdisksServices(std::filesystem::path stateFile, Start what = Start::All);
    ~UdisksServices();
    UdisksServices(const UdisksServices&) = delete;
    UdisksServices& operator=(const UdisksServices&) = delete;

    bool up() const { return up_; }

    // Attaches the image as a loop device and, with the services up, waits until udisks
    // shows its FAT file system. The device's name ("loop7"), or empty (the test has
    // failed) when not.
    std::string attach(const std::filesystem::path& image);
    // Detaches it now, as a stick is pulled out, and waits until udisks has seen that;
    // nothing when it is detached already.
    void detach(const std::string& device);

  private:
    pid_t start(const std::vector<std::string>& argv, const std::string& logName);
    void record(const std::string& line);
    void stopAll();

    std::filesystem::path stateFile_;
    std::filesystem::path folder_;
    // The tests' temporary trees go inside the folder too, so the cleanup's removal of
    // the folder takes the images and libraries of a killed test with it.
    ScopedEnv busAddress_, tempFolder_;
    std::vector<pid_t> pids_;
    std::vector<std::string> devices_;
    bool madeUdevRun_ = false;
    bool up_ = false;
};

// udisks' view of a block device's property ("IdLabel", "IdType" of
// org.freedesktop.UDisks2.Block), as gdbus prints it; empty when it cannot be read.
std::string udisksBlockProperty(const std::string& device, const std::string& property);

}  // namespace tvk::test
