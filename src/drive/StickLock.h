#pragma once
// One command per stick at a time, across processes: the window and tvk both take a lock
// keyed by the stick before they work on it, shared while a command only reads the stick
// and exclusive while one writes to it. The kernel drops the lock of a process that ends,
// however it ends, so a killed command never leaves a stick locked.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "app/Context.h"

namespace tvk {

enum class StickUse { Read, Write };

class StickLock {
  public:
    StickLock() = default;  // holds nothing: no stick, or one its drive layer holds already
    ~StickLock();
    StickLock(StickLock&& other) noexcept : handle_(other.handle_) { other.handle_ = kNone; }
    StickLock& operator=(StickLock&& other) noexcept;
    StickLock(const StickLock&) = delete;
    StickLock& operator=(const StickLock&) = delete;

    // Nullopt when another holder's use excludes `use`. `key` names the stick ("volume-..."
    // or "image-..."); it becomes a file name in the per-user lock folder.
    static std::optional<StickLock> tryTake(const std::string& key, StickUse use);

  private:
    static constexpr std::intptr_t kNone = -1;
    void release();
    std::intptr_t handle_ = kNone;
};

// The per-user folder of the lock files.
std::filesystem::path stickLockFolder();

// The key of an image file attached as a stick: the same for every path that names it.
std::string imageLockKey(const std::filesystem::path& image);

// Thrown where a stick cannot be attached because another command holds it.
struct StickBusy : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// "THUMBDRIVE BUSY": what a command that cannot get its lock shows, having changed nothing.
void showStickBusy(Interaction& ui);

// The lock of the accepted stick for a command. Nullopt, after "THUMBDRIVE BUSY", when
// another command holds the stick; an empty lock when there is no stick to lock.
std::optional<StickLock> lockStick(Context& ctx, StickUse use);

// As lockStick without the box, for work the user did not ask for (the scan's recovery
// and clean-up): nullopt when the stick is busy.
std::optional<StickLock> lockStickQuietly(Context& ctx, StickUse use);

}  // namespace tvk
