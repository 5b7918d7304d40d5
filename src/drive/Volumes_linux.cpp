// Linux drives: image files attached with --drive-image, then the machine's mounted
// removable volumes (a parent disk flagged removable, or anything on a USB bus), in the
// order of their device names so the same stick wins each time, as the lowest letter
// does on Windows. Label and serial number come from the FAT boot sector when the
// device can be read, else from the udev database; rename and format go through udisks.

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

// gdbus takes its arguments as GVariant text.
std::string gvariantString(const std::string& text) {
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') out += '\\';
        out += c;
    }
    return out + "'";
}

const char* const kUdisksMissing =
    "This needs the udisks2 service, which is not running on this computer, so the "
    "thumbdrive was left as it was.";

bool udisksRunning() {
    return runProcess({"gdbus", "introspect", "--system", "--dest", "org.freedesktop.UDisks2",
                       "--object-path", "/org/freedesktop/UDisks2"})
        .ok();
}

ProcessResult udisksCall(const std::string& device, const std::string& method,
                         std::vector<std::string> args) {
    std::vector<std::string> argv = {"gdbus",
                                     "call",
                                     "--system",
                                     "--dest",
                                     "org.freedesktop.UDisks2",
                                     "--object-path",
                                     "/org/freedesktop/UDisks2/block_devices/" + device,
                                     "--method",
                                     "org.freedesktop.UDisks2." + method};
    argv.insert(argv.end(), args.begin(), args.end());
    return runProcess(argv);
}

class LinuxVolumes : public Volumes {
  public:
    LinuxVolumes(const VolumesOptions& options)
        : images_(imageMountFolder()), system_(options.systemVolumes) {
        ImageDrives::cleanStale(imageMountFolder());
        for (const auto& image : options.images) images_.attach(image);
        last_ = snapshot();
    }
    ~LinuxVolumes() override {
        if (noticeFd_ >= 0) close(noticeFd_);
    }

    std::vector<std::string> drives() override {
        std::vector<std::string> ids;
        for (auto& d : images_.all()) ids.push_back(d->id);
        if (system_)
            for (const auto& v : systemVolumes()) ids.push_back(v.id);
        return ids;
    }

    DriveType driveType(const std::string& drive) override {
        if (auto* d = images_.find(drive))
            return ImageDrives::isMounted(*d) ? DriveType::Removable : DriveType::NoRootDir;
        if (!system_) return DriveType::NoRootDir;
        const auto v = systemVolume(drive);
        return v ? v->type : DriveType::NoRootDir;
    }

    fs::path rootPath(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return d->mountDir;
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
        return v ? pathFromUtf8(v->mount.mountPoint) : fs::path();
    }

    VolumeInfo volumeInformation(const std::string& drive) override {
        if (auto* d = images_.find(drive)) {
            if (!ImageDrives::isMounted(*d)) throw RuntimeError(kErrDiskNotReady, drive);
            const auto probe = probeVolume(d->image);
            if (!probe) throw RuntimeError(kErrDeviceIO, pathToUtf8(d->image));
            d->probe = *probe;
            return fromProbe(*probe);
        }
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
        if (!v) throw RuntimeError(kErrDiskNotReady, drive);
        return systemVolumeInfo(*v);
    }

    std::string deviceId(const std::string& drive) override {
        if (auto* d = images_.find(drive)) return pathToUtf8(d->image);
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
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
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
        if (v && startsWith(v->mount.fsType, "ext")) return {"lost+found"};
        return {};
    }

    std::string setLabel(const std::string& drive, const std::string& label) override {
        if (auto* d = images_.find(drive)) return relabelImage(*d, label);
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
        if (!v) return "The thumbdrive is no longer attached.";
        if (!udisksRunning()) return kUdisksMissing;
        const auto r = udisksCall(v->id, "Filesystem.SetLabel", {gvariantString(label), "{}"});
        return r.ok() ? std::string() : trimWhitespace(r.output);
    }

    bool hasFormatWindow() const override { return false; }

    FormatOutcome format(const std::string& drive, const std::string& label) override {
        if (auto* d = images_.find(drive)) return formatImage(*d, label);
        const auto v = system_ ? systemVolume(drive) : std::nullopt;
        if (!v) return {kFormatError, "The thumbdrive is no longer attached."};
        if (!udisksRunning()) return {kFormatError, kUdisksMissing};
        return formatWithUdisks(v->id, label);
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

    FormatOutcome formatWithUdisks(const std::string& device, const std::string& label) {
        udisksCall(device, "Filesystem.Unmount", {"{}"});
        std::string options = "{'update-partition-type': <true>";
        if (!label.empty()) options += ", 'label': <" + gvariantString(label) + ">";
        options += "}";
        const auto r = udisksCall(device, "Block.Format", {"'vfat'", options});
        udisksCall(device, "Filesystem.Mount", {"{}"});
        if (!r.ok()) return {kFormatError, trimWhitespace(r.output)};
        return {0, {}};
    }

    ImageDrives images_;
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
