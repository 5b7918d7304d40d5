#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "app/FileHandles.h"
#include "app/FileTimes.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

#ifndef RENAME_NOREPLACE
#define RENAME_NOREPLACE (1 << 0)
#endif

namespace tvk::detail {

namespace {

[[noreturn]] void fail(int err, const std::filesystem::path& path) {
    throw RuntimeError::fromErrno(err, pathToUtf8(path));
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& file) : path_(file) {
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) fail(errno, file);
    struct stat st {};
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        const int err = S_ISDIR(st.st_mode) ? EISDIR : errno;
        ::close(fd);
        if (err == EISDIR) throw RuntimeError(kErrPathFileAccess, pathToUtf8(file));
        fail(err, file);
    }
    handle_ = fd;
    openedTimes_[0] = st.st_atim.tv_sec;
    openedTimes_[1] = st.st_atim.tv_nsec;
    openedTimes_[2] = st.st_mtim.tv_sec;
    openedTimes_[3] = st.st_mtim.tv_nsec;
}

InputFile::~InputFile() {
    ::close(static_cast<int>(handle_));
}

std::uintmax_t InputFile::size() const {
    struct stat st {};
    if (::fstat(static_cast<int>(handle_), &st) != 0) fail(errno, path_);
    if (!S_ISBLK(st.st_mode)) return static_cast<std::uintmax_t>(st.st_size);
    // A block device reports no size of its own; its end is its medium's. The position
    // sequential reads stand at is kept.
    const int fd = static_cast<int>(handle_);
    const off_t here = ::lseek(fd, 0, SEEK_CUR);
    const off_t end = ::lseek(fd, 0, SEEK_END);
    if (here < 0 || end < 0 || ::lseek(fd, here, SEEK_SET) < 0) fail(errno, path_);
    return static_cast<std::uintmax_t>(end);
}

std::size_t InputFile::read(char* buffer, std::size_t count) {
    for (;;) {
        const ssize_t n = ::read(static_cast<int>(handle_), buffer, count);
        if (n >= 0) return static_cast<std::size_t>(n);
        if (errno != EINTR) fail(errno, path_);
    }
}

std::size_t InputFile::readAt(std::uint64_t offset, char* buffer, std::size_t count) {
    for (;;) {
        const ssize_t n =
            ::pread(static_cast<int>(handle_), buffer, count, static_cast<off_t>(offset));
        if (n >= 0) return static_cast<std::size_t>(n);
        if (errno != EINTR) fail(errno, path_);
    }
}

OutputFile::OutputFile(const std::filesystem::path& file) : path_(file) {
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) fail(errno, file);
    handle_ = fd;
}

OutputFile::~OutputFile() {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

void OutputFile::write(const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t n = ::write(static_cast<int>(handle_), bytes, count);
        if (n < 0) {
            if (errno == EINTR) continue;
            int err = errno;
            // A write to a file we hold open is no question of permission: some FUSE
            // drivers (fusefat) say EPERM when the volume is full.
            struct statvfs vfs {};
            if ((err == EPERM || err == EACCES) &&
                ::fstatvfs(static_cast<int>(handle_), &vfs) == 0 &&
                static_cast<unsigned long long>(vfs.f_bavail) * vfs.f_frsize < count)
                err = ENOSPC;
            fail(err, path_);
        }
        if (n == 0) fail(ENOSPC, path_);
        bytes += n;
        count -= static_cast<std::size_t>(n);
    }
}

void OutputFile::flushToDisk() {
    // Some FUSE file systems have no fsync; their data is written by close.
    if (::fsync(static_cast<int>(handle_)) != 0 && errno != EINVAL && errno != ENOSYS)
        fail(errno, path_);
}

void OutputFile::copyTimesFrom(const InputFile& source) {
    const auto& t = source.openedTimes_;
    struct timespec times[2] = {{static_cast<time_t>(t[0]), static_cast<long>(t[1])},
                                {static_cast<time_t>(t[2]), static_cast<long>(t[3])}};
    if (monthOneTooHigh(source.path_)) {
        // Keep the date the source's entry holds, not the one its driver reports.
        const FileTime entry =
            entryTime(source.path_, std::chrono::system_clock::from_time_t(times[1].tv_sec));
        times[1].tv_sec = std::chrono::system_clock::to_time_t(entry);
    }
    // Not every file system keeps times; the copy is good without them.
    ::futimens(static_cast<int>(handle_), times);
}

void OutputFile::close() {
    const int fd = static_cast<int>(handle_);
    handle_ = -1;
    if (::close(fd) != 0 && errno != EINTR) fail(errno, path_);
}

void renameReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::rename(from.c_str(), to.c_str()) != 0) fail(errno, to);
}

bool renameRefusingByItself(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) ==
        0)
        return true;
    const int err = errno;
    if (err != EINVAL && err != ENOSYS && err != EOPNOTSUPP) fail(err, to);
    return false;
}

void renameExclusive(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (renameRefusingByItself(from, to)) return;
    // File systems without the no-replace flag (FUSE drivers among them): look first.
    struct stat st {};
    if (::lstat(to.c_str(), &st) == 0) fail(EEXIST, to);
    renameReplacing(from, to);
}

bool setFileTimes(const std::filesystem::path& file, std::chrono::system_clock::time_point t) {
    using namespace std::chrono;
    const auto since = t.time_since_epoch();
    struct timespec at {};
    at.tv_sec = duration_cast<seconds>(since).count();
    at.tv_nsec = static_cast<long>(duration_cast<nanoseconds>(since - seconds(at.tv_sec)).count());
    const struct timespec times[2] = {at, at};
    return ::utimensat(AT_FDCWD, file.c_str(), times, 0) == 0;
}

}  // namespace tvk::detail
