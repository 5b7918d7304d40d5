#pragma once
// Image files attached as if a stick had been plugged in (--drive-image): each is
// mounted with its FUSE driver (fusefat for FAT, exfat-fuse for exFAT, fuse2fs for ext)
// under the program's runtime folder, and unmounted again when the program ends. A run
// that crashed leaves its mounts behind; the next run removes them.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "drive/StickLock.h"
#include "drive/VolumeProbe.h"

namespace tvk {

struct ImageDrive {
    std::string id;                  // "image1", "image2", ...
    std::filesystem::path image;     // the image file
    std::filesystem::path mountDir;  // where its files are while mounted
    std::string loopDevice;          // exFAT as root goes through a loop device
    VolumeProbe probe;               // as read when last mounted
    bool mounted = false;
    bool readOnly = false;  // the image file cannot be written: mounted for reading only
    // Held from attach to the end: two FUSE drivers on one image corrupt it, and even a
    // mount alone writes to it.
    StickLock lock;
    // Files an earlier run left half written in place (MountRules), removed at the
    // last mount; names below the mount point.
    std::vector<std::string> unfinishedRemoved;
};

class ImageDrives {
  public:
    explicit ImageDrives(std::filesystem::path runtimeFolder);
    ~ImageDrives();
    ImageDrives(const ImageDrives&) = delete;
    ImageDrives& operator=(const ImageDrives&) = delete;

    // Mounts the image; throws RuntimeError with a readable detail when it cannot, and
    // StickBusy when another process has it attached.
    ImageDrive& attach(const std::filesystem::path& image);
    ImageDrive* find(const std::string& id);
    std::vector<std::unique_ptr<ImageDrive>>& all() { return drives_; }

    // Empty when done, else what went wrong.
    std::string unmount(ImageDrive& drive);
    std::string mount(ImageDrive& drive);
    // Mounted and still in the mount table (someone may have unmounted it meanwhile).
    static bool isMounted(const ImageDrive& drive);

    // Removes mounts left behind by runs that are no longer alive.
    static void cleanStale(const std::filesystem::path& runtimeFolder);

  private:
    void followFusefatRules(ImageDrive& drive);
    std::filesystem::path folder_;
    std::vector<std::unique_ptr<ImageDrive>> drives_;
    int counter_ = 0;
};

// $XDG_RUNTIME_DIR/tavrin-file-manager, else a per-user folder in /tmp: what the
// program's runs share while the machine is up (mounts, stick locks).
std::filesystem::path programRuntimeFolder();
// Its "drives" folder.
std::filesystem::path imageMountFolder();

}  // namespace tvk
