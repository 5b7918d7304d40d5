#include "drive/StickLock.h"

#include <cctype>

#include "app/Text.h"
#include "drive/Volumes.h"

namespace tvk {

StickLock::~StickLock() {
    release();
}

StickLock& StickLock::operator=(StickLock&& other) noexcept {
    if (this != &other) {
        release();
        handle_ = other.handle_;
        other.handle_ = kNone;
    }
    return *this;
}

std::string imageLockKey(const std::filesystem::path& image) {
    std::error_code ec;
    const std::string path = pathToUtf8(std::filesystem::weakly_canonical(image, ec));
    // FNV-1a: stable across runs and programs, unlike std::hash.
    std::uint64_t h = 14695981039346656037ull;
    for (const unsigned char c : path) h = (h ^ c) * 1099511628211ull;
    return "image-" + hexUpper(h);
}

void showStickBusy(Interaction& ui) {
    ui.message(Message{"THUMBDRIVE BUSY",
                       "The thumbdrive is busy with another command of this program." +
                           std::string(kBlankLine) +
                           "Nothing was changed. Try again when it has finished.",
                       Buttons::Ok, Icon::Exclamation, 1});
}

namespace {

// Empty when the drive layer holds the stick for as long as it is attached (an image,
// which only one process may mount at a time).
std::string stickKey(Context& ctx) {
    const ThumbDriveState& d = ctx.state.drive;
    if (d.letter.empty() || !ctx.volumes || ctx.volumes->heldWhileAttached(d.letter)) return {};
    // Without a serial number the drive's place is the best name it has.
    const std::string id = d.serialHex.empty() || d.serialHex == "0"
                               ? (d.root.empty() ? d.letter : pathToUtf8(d.root))
                               : d.serialHex;
    std::string key = "volume-";
    for (const char c : id) key += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return key;
}

}  // namespace

std::optional<StickLock> lockStickQuietly(Context& ctx, StickUse use) {
    const std::string key = stickKey(ctx);
    if (key.empty()) return StickLock();
    return StickLock::tryTake(key, use);
}

std::optional<StickLock> lockStick(Context& ctx, StickUse use) {
    auto lock = lockStickQuietly(ctx, use);
    if (!lock) showStickBusy(ctx.ui);
    return lock;
}

}  // namespace tvk
