#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/ImageDrives.h"
#include "drive/StickLock.h"

namespace tvk {

std::filesystem::path stickLockFolder() {
    return programRuntimeFolder() / "locks";
}

std::optional<StickLock> StickLock::tryTake(const std::string& key, StickUse use) {
    const auto folder = stickLockFolder();
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    const auto file = folder / (key + ".lock");
    const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) throw RuntimeError::fromErrno(errno, pathToUtf8(file));
    const int how = (use == StickUse::Write ? LOCK_EX : LOCK_SH) | LOCK_NB;
    int rc;
    while ((rc = ::flock(fd, how)) != 0 && errno == EINTR) {
    }
    if (rc != 0) {
        const int err = errno;
        ::close(fd);
        if (err == EWOULDBLOCK) return std::nullopt;
        throw RuntimeError::fromErrno(err, pathToUtf8(file));
    }
    StickLock lock;
    lock.handle_ = fd;
    return lock;
}

void StickLock::release() {
    if (handle_ == kNone) return;
    ::close(static_cast<int>(handle_));  // drops the flock
    handle_ = kNone;
}

}  // namespace tvk
