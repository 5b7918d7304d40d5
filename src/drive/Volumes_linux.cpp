// Linux drives: image files attached with --drive-image (a block device given there is
// taken as a stick as it stands), then the machine's mounted removable volumes (a parent
// disk flagged removable, or anything on a USB bus), in the order of their device names
// so the same stick wins each time, as the lowest letter does on Windows. Label and
// serial number come from the FAT boot sector when the device can be read, else from
// the udev database; rename and format go through udisks.

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <utility>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/ImageDrives.h"
#include "drive/MountInfo.h"
#include "drive/Process.h"
#include "drive/Udisks.h"
#include "drive/VolumeHelpers.h"
#include "drive/Volumes.h"

namespace tvk {

namespace fs = std::filesystem;

namespace {

std::vector<SystemVolume> systemVolumes() {
    return removableVolumes(parseMountInfo(readTextFile("/proc/self/mountinfo")), "/sys");
}

std::optional<SystemVolume> systemVolume(const std::string& id) {
    for (auto& v : systemVolumes())
        if (v.id == id) return v;
    return std::nullopt;
}

// Windows' flags for the file systems a stick may carry; FAT volumes preserve case and
// store names in Unicode (long names), nothing more.
std::uint32_t windowsFlags(const std::string& fileSystem) {
    using namespace fsflags;
    if (fileSystem == "FAT" || fileSystem == "FAT32" || fileSystem == "exFAT")
        return kCasePreservedNames | kUnicodeOnDisk;
    if (fileSystem == "NTFS")
        return kCaseSensitiveSearch | kCasePreservedNames | kUnicodeOnDisk | kPersistentAcls |
               kFileCompression | kVolumeQuotas | kSparseFiles | kReparsePoints | kObjectIds |
               kEncryption;
    return kCaseSensitiveSearch | kCasePreservedNames | kUnicodeOnDisk | kPersistentAcls |
           kSparseFiles;
}

VolumeInfo fromProbe(const VolumeProbe& p) {
    VolumeInfo info;
    info.volumeName = p.label;
    info.serialNumber = p.hasSerial ? p.serialNumber : 0;
    info.fileSystemName = p.fileSystemName;
    info.maxComponentLength = 255;
    info.fileSystemFlags = windowsFlags(p.fileSystemName);
    return info;
}

VolumeInfo systemVolumeInfo(const SystemVolume& v) {
    try {
        if (access(v.mount.source.c_str(), R_OK) == 0)
            if (auto probe = probeVolume(pathFromUtf8(v.mount.source))) return fromProbe(*probe);
    } catch (const RuntimeError&) {
        // Fall back to what udev recorded when it saw the device.
    }
    const auto udev = parseUdevData(readTextFile(
        "/run/udev/data/b" + std::to_string(v.mount.major) + ":" + std::to_string(v.mount.minor)));
    return fromProbe(probeFromUdev(udev, v.mount.fsType));
}

// A block device named with --drive-image (an unmounted stick, a loop device), taken as
// a stick whatever its bus: its mount if it has one, else none and the device node.
std::optional<SystemVolume> namedDevice(const std::string& id) {
    const fs::path node = "/dev/" + id;
    std::error_code ec;
    if (!fs::is_block_file(node, ec)) return std::nullopt;
    const std::string numbers = trimWhitespace(readTextFile("/sys/class/block/" + id + "/dev"));
    for (const auto& m : parseMountInfo(readTextFile("/proc/self/mountinfo")))
        if (m.root == "/" && std::to_string(m.major) + ":" + std::to_string(m.minor) == numbers)
            return SystemVolume{id, m, DriveType::Removable};
    SystemVolume unmounted{id, {}, DriveType::Removable};
    unmounted.mount.source = pathToUtf8(node);
    return unmounted;
}

class LinuxVolumes : public Volumes {
  public:
    LinuxVolumes(const VolumesOptions& options)
        : images_(imageMountFolder()), system_(options.systemVolumes) {
        ImageDrives::cleanStale(imageMountFolder());
        for (const auto& image : options.images) {
            std::error_code ec;
            if (fs::is_block_file(image, ec))
                devices_.push_back(fileNameUtf8(fs::canonical(image, ec)));
            else
                images_.attach(image);
        }
        last_ = snapshot();
    }
    ~LinuxVolumes() override {
        if (noticeFd_ >= 0) close(noticeFd_);
    }

    std::vector<std::string> drives() override {
        std::vector<std::string> ids;
        for (auto& d : images_.all()) ids.push_back(d->id);
        ids.insert(ids.end(), devices_.begin(), devices_.end());
        if (system_)
            for (const auto& v : systemVolumes())
                if (std::find(devices_.begin(), devices_.end(), v.id) == devices_.end())
                    ids.push_back(v.id);
        return ids;
    }

    DriveType driveType(const std::string& drive) override {
        if (auto* d = images_.find(drive))
            return ImageDrives::isMounted(*d) ? DriveType::Removable : DriveType::NoRootDir;
        const auto v = volume(drive);
        return v ? v->type : DriveType::NoRootDir;
    }

    fs::path rootPath(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return d->mountDir;
        const auto v = volume(drive);
        return v ? pathFromUtf8(v->mount.mountPoint) : fs::path();
    }

    std::string shownRoot(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return fileNameUtf8(d->image) + ":";
        return {};
    }

    VolumeInfo volumeInformation(const std::string& drive) override {
        if (auto* d = images_.find(drive)) {
            if (!ImageDrives::isMounted(*d)) throw RuntimeError(kErrDiskNotReady, drive);
            const auto probe = probeVolume(d->image);
            if (!probe) throw RuntimeError(kErrDeviceIO, pathToUtf8(d->image));
            d->probe = *probe;
            return fromProbe(*probe);
        }
        // Unmounted, the volume is not ready, as a drive Windows gave no letter is.
        const auto v = volume(drive);
        if (!v || v->mount.mountPoint.empty()) throw RuntimeError(kErrDiskNotReady, drive);
        return systemVolumeInfo(*v);
    }

    std::string deviceId(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return pathToUtf8(d->image);
        const auto v = volume(drive);
        return v ? v->mount.source : std::string();
    }

    bool heldWhileAttached(const std::string& drive) override {
        return images_.find(drive) != nullptr;
    }

    std::vector<std::string> takeUnfinishedRemoved(const std::string& drive) override {
        auto* d = images_.find(drive);
        return d ? std::exchange(d->unfinishedRemoved, {}) : std::vector<std::string>{};
    }

    std::vector<std::string> systemEntries(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return imageSystemEntries(d->probe);
        const auto v = volume(drive);
        if (v && startsWith(v->mount.fsType, "ext")) return {"lost+found"};
        return {};
    }

    std::string setLabel(const std::string& drive, const std::string& label) override {
        if (auto* d = images_.find(drive)) return relabelImage(*d, label);
        const auto v = volume(drive);
        if (!v) return "The thumbdrive is no longer attached.";
        return udisks::setLabel(v->id, label);
    }

    bool hasFormatWindow() const override { return false; }

    FormatOutcome format(const std::string& drive, const std::string& label) override {
        if (auto* d = images_.find(drive)) return formatImage(*d, label);
        const auto v = volume(drive);
        if (!v) return {kFormatError, "The thumbdrive is no longer attached."};
        return formatWithUdisks(*v, label);
    }

    int noticeHandle() override {
        if (noticeFd_ < 0) noticeFd_ = open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
        return noticeFd_;
    }

    std::vector<DeviceNotice> takeNotices() override {
        if (noticeFd_ >= 0) {
            // Reading the table again clears the change mark on the descriptor.
            char buffer[4096];
            lseek(noticeFd_, 0, SEEK_SET);
            while (read(noticeFd_, buffer, sizeof buffer) > 0) {
            }
        }
        auto now = snapshot();
        auto notices = diffSnapshots(last_, now);
        last_ = std::move(now);
        return notices;
    }

  private:
    std::vector<std::pair<std::string, std::string>> snapshot() {
        std::vector<std::pair<std::string, std::string>> ids;
        for (const auto& id : drives())
            if (driveType(id) == DriveType::Removable || driveType(id) == DriveType::CdRom)
                ids.emplace_back(id, deviceId(id));
        return ids;
    }

    std::string relabelImage(ImageDrive& d, const std::string& label) {
        if (std::string problem = images_.unmount(d); !problem.empty()) return problem;
        std::vector<std::string> tool;
        if (d.probe.fatBits)
            tool = {"fatlabel", pathToUtf8(d.image), label};
        else if (d.probe.fileSystemName == "exFAT")
            tool = {"exfatlabel", pathToUtf8(d.image), label};
        else
            tool = {"e2label", pathToUtf8(d.image), label};
        const auto r = runProcess(tool);
        const std::string mounted = images_.mount(d);
        if (!r.ok()) return trimWhitespace(r.output);
        return mounted;
    }

    FormatOutcome formatImage(ImageDrive& d, const std::string& label) {
        if (std::string problem = images_.unmount(d); !problem.empty())
            return {kFormatError, problem};
        std::error_code ec;
        const auto size = fs::file_size(d.image, ec);
        std::vector<std::string> mkfs = {"mkfs.fat"};
        const std::string bits = fatBitsForSize(size);
        if (!bits.empty()) mkfs.insert(mkfs.end(), {"-F", bits});
        if (!label.empty()) mkfs.insert(mkfs.end(), {"-n", label});
        mkfs.push_back(pathToUtf8(d.image));
        const auto r = runProcess(mkfs);
        const std::string mounted = images_.mount(d);
        if (!r.ok()) return {kFormatError, trimWhitespace(r.output)};
        if (!mounted.empty()) return {kFormatError, mounted};
        return {0, {}};
    }

    // A device that will not mount again afterwards is formatted all the same; the
    // TAVRIN folder step then finds it not ready.
    static FormatOutcome formatWithUdisks(const SystemVolume& v, const std::string& label) {
        if (!v.mount.mountPoint.empty())
            if (std::string problem = udisks::unmount(v.id); !problem.empty())
                return {kFormatError, problem};
        if (std::string problem = udisks::formatFat(v.id, label); !problem.empty())
            return {kFormatError, problem};
        udisks::mount(v.id);
        return {0, {}};
    }

    std::optional<SystemVolume> volume(const std::string& drive) {
        if (std::find(devices_.begin(), devices_.end(), drive) != devices_.end())
            return namedDevice(drive);
        return system_ ? systemVolume(drive) : std::nullopt;
    }

    ImageDrives images_;
    std::vector<std::string> devices_;  // block devices named with --drive-image
    bool system_;
    int noticeFd_ = -1;
    std::vector<std::pair<std::string, std::string>> last_;
};

}  // namespace

std::shared_ptr<Volumes> makePlatformVolumes(const VolumesOptions& options) {
    return std::make_shared<LinuxVolumes>(options);
}

bool waitForNotices(Volumes& volumes, int timeoutMs) {
    const int fd = volumes.noticeHandle();
    if (fd < 0) return false;
    pollfd p{fd, POLLPRI, 0};
    return poll(&p, 1, timeoutMs) > 0 && (p.revents & (POLLPRI | POLLERR));
}

}  // namespace tvk
