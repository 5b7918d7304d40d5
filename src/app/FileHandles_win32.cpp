#include <windows.h>

#include "app/FileHandles.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk::detail {

namespace {

[[noreturn]] void fail(DWORD code, const std::filesystem::path& path) {
    throw RuntimeError(classicNumberForWindowsError(code), pathToUtf8(path));
}

HANDLE asHandle(std::intptr_t h) {
    return reinterpret_cast<HANDLE>(h);
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& file) : path_(file) {
    const HANDLE h = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        const DWORD code = GetLastError();
        // Opening a folder as a file is an access error, not a permission problem.
        const DWORD attributes = GetFileAttributesW(file.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
            throw RuntimeError(kErrPathFileAccess, pathToUtf8(file));
        fail(code, file);
    }
    handle_ = reinterpret_cast<std::intptr_t>(h);
}

InputFile::~InputFile() {
    CloseHandle(asHandle(handle_));
}

std::uintmax_t InputFile::size() const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(asHandle(handle_), &size)) fail(GetLastError(), path_);
    return static_cast<std::uintmax_t>(size.QuadPart);
}

std::size_t InputFile::read(char* buffer, std::size_t count) {
    DWORD got = 0;
    const DWORD want = count > 0x40000000 ? 0x40000000 : static_cast<DWORD>(count);
    if (!ReadFile(asHandle(handle_), buffer, want, &got, nullptr)) fail(GetLastError(), path_);
    return got;
}

std::size_t InputFile::readAt(std::uint64_t offset, char* buffer, std::size_t count) {
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(offset);
    at.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD got = 0;
    const DWORD want = count > 0x40000000 ? 0x40000000 : static_cast<DWORD>(count);
    if (!ReadFile(asHandle(handle_), buffer, want, &got, &at)) {
        const DWORD code = GetLastError();
        if (code == ERROR_HANDLE_EOF) return 0;
        fail(code, path_);
    }
    return got;
}

OutputFile::OutputFile(const std::filesystem::path& file) : path_(file) {
    const HANDLE h = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) fail(GetLastError(), file);
    handle_ = reinterpret_cast<std::intptr_t>(h);
}

OutputFile::~OutputFile() {
    if (handle_ != -1) CloseHandle(asHandle(handle_));
}

void OutputFile::write(const char* bytes, std::size_t count) {
    while (count > 0) {
        const DWORD chunk = count > 0x40000000 ? 0x40000000 : static_cast<DWORD>(count);
        DWORD written = 0;
        if (!WriteFile(asHandle(handle_), bytes, chunk, &written, nullptr))
            fail(GetLastError(), path_);
        if (written == 0) fail(ERROR_DISK_FULL, path_);
        bytes += written;
        count -= written;
    }
}

void OutputFile::flushToDisk() {
    if (!FlushFileBuffers(asHandle(handle_))) fail(GetLastError(), path_);
}

void OutputFile::copyTimesFrom(const InputFile& source) {
    FILETIME created, accessed, written;
    if (GetFileTime(asHandle(source.handle_), &created, &accessed, &written))
        SetFileTime(asHandle(handle_), nullptr, &accessed, &written);
}

void OutputFile::close() {
    const HANDLE h = asHandle(handle_);
    handle_ = -1;
    if (!CloseHandle(h)) fail(GetLastError(), path_);
}

void renameReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (!MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) fail(GetLastError(), to);
}

void renameExclusive(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (!MoveFileExW(from.c_str(), to.c_str(), 0)) fail(GetLastError(), to);
}

bool renameRefusingByItself(const std::filesystem::path& from, const std::filesystem::path& to) {
    renameExclusive(from, to);  // a move without the replace flag never replaces
    return true;
}

bool setFileTimes(const std::filesystem::path& file, std::chrono::system_clock::time_point t) {
    std::error_code ec;
    std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(t), ec);
    return !ec;
}

}  // namespace tvk::detail
