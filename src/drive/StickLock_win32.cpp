#include <windows.h>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/StickLock.h"

namespace tvk {

std::filesystem::path stickLockFolder() {
    return std::filesystem::temp_directory_path() / pathFromUtf8("Tavrin File Manager locks");
}

std::optional<StickLock> StickLock::tryTake(const std::string& key, StickUse use) {
    const auto folder = stickLockFolder();
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    const auto file = folder / pathFromUtf8(key + ".lock");
    HANDLE h = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        throw RuntimeError(classicNumberForWindowsError(GetLastError()), pathToUtf8(file));
    OVERLAPPED at{};
    const DWORD how =
        LOCKFILE_FAIL_IMMEDIATELY | (use == StickUse::Write ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (!LockFileEx(h, how, 0, 1, 0, &at)) {
        const DWORD err = GetLastError();
        CloseHandle(h);
        if (err == ERROR_LOCK_VIOLATION || err == ERROR_IO_PENDING) return std::nullopt;
        throw RuntimeError(classicNumberForWindowsError(err), pathToUtf8(file));
    }
    StickLock lock;
    lock.handle_ = reinterpret_cast<std::intptr_t>(h);
    return lock;
}

void StickLock::release() {
    if (handle_ == kNone) return;
    CloseHandle(reinterpret_cast<HANDLE>(handle_));  // the system drops the lock with it
    handle_ = kNone;
}

}  // namespace tvk
