#include "drive/ImageDrives.h"

#include "app/FileIO.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <thread>

#include "app/DiskSpace.h"
#include "app/FileTimes.h"
#include "app/MountRules.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/MountInfo.h"
#include "drive/Process.h"
#include "drive/VolumeHelpers.h"

namespace tvk {

namespace fs = std::filesystem;

namespace {

bool isMountPoint(const fs::path& dir) {
    const std::string wanted = pathToUtf8(dir);
    for (const auto& m : parseMountInfo(readTextFile("/proc/self/mountinfo")))
        if (m.mountPoint == wanted) return true;
    return false;
}

// A FUSE driver finishes writing after the unmount returns; wait until no process holds
// the image (or its loop device) open, so the next tool sees the final bytes.
void waitUntilReleased(const fs::path& file) {
    std::error_code ec;
    const fs::path target = fs::weakly_canonical(file, ec);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    for (;;) {
        bool held = false;
        for (const auto& proc : fs::directory_iterator("/proc", ec)) {
            const std::string pid = fileNameUtf8(proc.path());
            if (pid.empty() || pid.find_first_not_of("0123456789") != std::string::npos ||
                pid == std::to_string(getpid()))
                continue;
            for (const auto& fd : fs::directory_iterator(proc.path() / "fd", ec)) {
                std::error_code lec;
                if (fs::read_symlink(fd.path(), lec) == target) {
                    held = true;
                    break;
                }
            }
            if (held) break;
        }
        if (!held || std::chrono::steady_clock::now() > deadline) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

// Read at the next start to remove a mount a crashed run left behind.
std::string writeRecord(const fs::path& record, const ImageDrive& d) {
    try {
        writeFileReplacing(record, pathToUtf8(d.image) + "\n" + d.loopDevice + "\n");
        return {};
    } catch (const RuntimeError& e) {
        return std::string("its mount record could not be written: ") + e.what();
    }
}

std::string detachLoop(const std::string& loop) {
    if (loop.empty()) return {};
    waitUntilReleased(loop);
    const auto r = runProcess({"losetup", "-d", loop});
    return r.ok() ? std::string() : r.output;
}

std::string unmountDir(const fs::path& dir) {
    if (!isMountPoint(dir)) return {};
    auto r = runProcess({"fusermount", "-u", pathToUtf8(dir)});
    if (!r.ok()) r = runProcess({"umount", pathToUtf8(dir)});
    if (!r.ok()) r = runProcess({"fusermount", "-u", "-z", pathToUtf8(dir)});
    return r.ok() ? std::string() : trimWhitespace(r.output);
}

// fusefat reports no free space at all; the image's FAT says how much there is. The
// driver writes its FAT through to the image, so the count is current.
DiskSpace imageFreeSpace(const fs::path& image, bool readOnly) {
    std::optional<FatFreeSpace> fat;
    try {
        FileReader in(image);
        fat = countFatFreeSpace(
            [&](std::uint64_t offset, std::size_t size) { return in.readAt(offset, size); });
    } catch (const RuntimeError&) {
        throw RuntimeError(kErrDiskNotReady, "free space of " + pathToUtf8(image));
    }
    if (!fat) throw RuntimeError(kErrDeviceIO, "free space of " + pathToUtf8(image));
    DiskSpace space;
    space.unit = fat->clusterBytes;
    space.available = fat->freeClusters * fat->clusterBytes;
    space.readOnly = readOnly;
    return space;
}

}  // namespace

fs::path programRuntimeFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code ec;
    if (runtime && *runtime && fs::is_directory(runtime, ec))
        return fs::path(runtime) / "tavrin-file-manager";
    return fs::temp_directory_path() / ("tavrin-file-manager-" + std::to_string(getuid()));
}

fs::path imageMountFolder() {
    return programRuntimeFolder() / "drives";
}

ImageDrives::ImageDrives(fs::path runtimeFolder) : folder_(std::move(runtimeFolder)) {}

ImageDrives::~ImageDrives() {
    for (auto& d : drives_) {
        unmount(*d);
        std::error_code ec;
        fs::remove(d->mountDir, ec);
        fs::remove(fs::path(d->mountDir).concat(".image"), ec);
    }
}

ImageDrive* ImageDrives::find(const std::string& id) {
    for (auto& d : drives_)
        if (d->id == id) return d.get();
    return nullptr;
}

ImageDrive& ImageDrives::attach(const fs::path& image) {
    std::error_code ec;
    if (!fs::is_regular_file(image, ec)) throw RuntimeError(kErrFileNotFound, pathToUtf8(image));
    auto d = std::make_unique<ImageDrive>();
    d->image = fs::weakly_canonical(image, ec);
    // Two FUSE drivers writing one image would corrupt it.
    for (const auto& other : drives_)
        if (other->image == d->image)
            throw RuntimeError(kErrFileAlreadyExists, pathToUtf8(image) + " is attached already");
    auto lock = StickLock::tryTake(imageLockKey(d->image), StickUse::Write);
    if (!lock) throw StickBusy(pathToUtf8(image) + " is in use by another command of this program");
    d->lock = std::move(*lock);
    ++counter_;
    d->id = "image" + std::to_string(counter_);
    const std::string stem = std::to_string(getpid()) + "-" + std::to_string(counter_);
    d->mountDir = folder_ / stem;
    fs::create_directories(d->mountDir, ec);
    throwIfError(ec, pathToUtf8(d->mountDir));
    if (const std::string problem = mount(*d); !problem.empty()) {
        fs::remove(d->mountDir, ec);
        fs::remove(folder_ / (stem + ".image"), ec);
        throw RuntimeError(kErrDeviceIO, pathToUtf8(image) + ": " + problem);
    }
    drives_.push_back(std::move(d));
    return *drives_.back();
}

std::string ImageDrives::mount(ImageDrive& d) {
    if (d.mounted) return {};
    const auto probe = probeVolume(d.image);
    if (!probe)
        return "the image holds no file system the program knows (its boot sector may be "
               "damaged)";
    d.probe = *probe;
    const std::string image = pathToUtf8(d.image), dir = pathToUtf8(d.mountDir);
    // An image the user may not write is a write-protected stick: mounted for reading.
    // (An administrator may write any file: a file nobody may write counts as protected too.)
    struct stat st {};
    d.readOnly = ::access(d.image.c_str(), W_OK) != 0 ||
                 (::stat(d.image.c_str(), &st) == 0 && (st.st_mode & 0222) == 0);
    std::vector<std::string> command;
    if (probe->fatBits != 0) {
        command = {"fusefat", "-o", d.readOnly ? "ro" : "rw+", image, dir};
    } else if (probe->fileSystemName == "exFAT") {
        // As root exfat-fuse insists on a block device.
        std::string source = image;
        if (geteuid() == 0) {
            const auto loop = d.readOnly ? runProcess({"losetup", "-r", "-f", "--show", image})
                                         : runProcess({"losetup", "-f", "--show", image});
            if (!loop.ok()) return "no loop device for the exFAT image: " + loop.output;
            d.loopDevice = trimWhitespace(loop.output);
            source = d.loopDevice;
        }
        command = {"mount.exfat-fuse", source, dir};
        if (d.readOnly) command.insert(command.begin() + 1, {"-o", "ro"});
    } else if (startsWith(probe->fileSystemName, "ext")) {
        command = {"fuse2fs", image, dir, "-o", d.readOnly ? "ro" : "rw"};
    } else {
        return "no driver here mounts a " + probe->fileSystemName + " image";
    }
    if (auto problem = writeRecord(fs::path(d.mountDir).concat(".image"), d); !problem.empty()) {
        detachLoop(d.loopDevice);
        d.loopDevice.clear();
        return problem;
    }
    const auto r = runProcess(command);
    if (!r.ok() || !isMountPoint(d.mountDir)) {
        detachLoop(d.loopDevice);
        d.loopDevice.clear();
        return command[0] + " could not mount it: " + trimWhitespace(r.output);
    }
    d.mounted = true;
    if (probe->fatBits != 0) {
        markMonthOneTooHigh(d.mountDir);
        countSpaceWith(d.mountDir,
                       [image = d.image, ro = d.readOnly] { return imageFreeSpace(image, ro); });
        followFusefatRules(d);
    }
    return {};
}

// fusefat stores only ASCII names, and on FAT12 and FAT16 its renames corrupt the
// volume (entries duplicated, clusters shared), so new files are written there under
// their own names. A write that never finished (the program killed, the image pulled)
// is known by its note, and its file is removed at the next mount: its source is still
// where it was.
void ImageDrives::followFusefatRules(ImageDrive& d) {
    MountRules rules;
    rules.asciiNamesOnly = true;
    rules.writeInPlace = d.probe.fatBits != 32;
    rules.notePrefix = pathToUtf8(d.image) + "\n";
    rules.writingNote = fs::path(d.mountDir).concat(".writing");
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder_, ec)) {
        if (entry.path().extension() != ".writing") continue;
        const std::string note = readTextFile(entry.path());
        const auto nl = note.find('\n');
        if (nl == std::string::npos || note.substr(0, nl) != pathToUtf8(d.image)) continue;
        // The image is this process's alone (its lock), so any note for it is an old one.
        std::string below = note.substr(nl + 1);
        if (!below.empty() && below.back() == '\n') below.pop_back();
        std::error_code rec;
        if (!below.empty() && fs::remove(d.mountDir / pathFromUtf8(below), rec))
            d.unfinishedRemoved.push_back(below);
        if (!rec) fs::remove(entry.path(), rec);
    }
    setMountRules(d.mountDir, std::move(rules));
}

std::string ImageDrives::unmount(ImageDrive& d) {
    if (!d.mounted) return {};
    const std::string problem = unmountDir(d.mountDir);
    if (!problem.empty()) return problem;
    d.mounted = false;
    forgetMonthOneTooHigh(d.mountDir);
    forgetSpaceCounter(d.mountDir);
    forgetMountRules(d.mountDir);
    waitUntilReleased(d.image);
    detachLoop(d.loopDevice);
    d.loopDevice.clear();
    return {};
}

bool ImageDrives::isMounted(const ImageDrive& drive) {
    return drive.mounted && isMountPoint(drive.mountDir);
}

void ImageDrives::cleanStale(const fs::path& folder) {
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
        const std::string name = fileNameUtf8(entry.path());
        if (!endsWith(name, ".image")) continue;
        const std::string stem = name.substr(0, name.size() - 6);
        const long pid = std::strtol(stem.c_str(), nullptr, 10);
        // Only runs that are gone: a live one (even another user's, EPERM) keeps its mounts.
        if (pid <= 0 || kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        const fs::path dir = folder / stem;
        std::string record = readTextFile(entry.path());
        const auto nl = record.find('\n');
        const std::string loop =
            nl == std::string::npos ? "" : trimWhitespace(record.substr(nl + 1));
        unmountDir(dir);
        detachLoop(loop);
        std::error_code rec;
        fs::remove(dir, rec);
        fs::remove(entry.path(), rec);
    }
}

}  // namespace tvk
