#include "app/RuntimeError.h"

#include <cerrno>
#include <filesystem>
#include <new>

#include "app/Text.h"

namespace tvk {

namespace {
#ifdef _WIN32
constexpr bool kSystemCategoryIsWindows = true;
#else
constexpr bool kSystemCategoryIsWindows = false;
#endif
}  // namespace

std::string errorDescription(int number) {
    switch (number) {
        case 5:
            return "Invalid procedure call or argument";
        case 6:
            return "Overflow";
        case 7:
            return "Out of memory";
        case 9:
            return "Subscript out of range";
        case 13:
            return "Type mismatch";
        case 52:
            return "Bad file name or number";
        case 53:
            return "File not found";
        case 55:
            return "File already open";
        case 57:
            return "Device I/O error";
        case 58:
            return "File already exists";
        case 61:
            return "Disk full";
        case 62:
            return "Input past end of file";
        case 67:
            return "Too many files";
        case 68:
            return "Device unavailable";
        case 70:
            return "Permission denied";
        case 71:
            return "Disk not ready";
        case 74:
            return "Can't rename with different drive";
        case 75:
            return "Path/File access error";
        case 76:
            return "Path not found";
        default:
            return "Application-defined or object-defined error";
    }
}

RuntimeError::RuntimeError(int number, std::string detail)
    : std::runtime_error(errorDescription(number) + (detail.empty() ? "" : ": " + detail)),
      number_(number),
      detail_(std::move(detail)) {}

int classicNumberForErrno(int err) {
    switch (err) {
        case ENOENT:
            return kErrFileNotFound;
        case ENOTDIR:
            return kErrPathNotFound;
        case EEXIST:
            return kErrFileAlreadyExists;
        case ENOSPC:
        case EFBIG:
#ifdef EDQUOT
        case EDQUOT:
#endif
            return kErrDiskFull;
        case EACCES:
        case EPERM:
        case EROFS:
        case ETXTBSY:
            return kErrPermissionDenied;
        case EBADF:
        case ENAMETOOLONG:
        case EINVAL:
        case EILSEQ:
            return kErrBadFileNameOrNumber;
        case EIO:
            return kErrDeviceIO;
        case ENODEV:
        case ENXIO:
        case ENOTCONN:
        case ECONNABORTED:  // a FUSE driver that died under a request
#ifdef ENOMEDIUM            // Linux: a card reader with no card, a stale FUSE mount
        case ENOMEDIUM:
        case ESTALE:
#endif
            return kErrDiskNotReady;
        case ENOMEM:
            return kErrOutOfMemory;
        case EMFILE:
        case ENFILE:
            return kErrTooManyFiles;
        case EXDEV:
            return kErrRenameAcrossDisks;
        default:
            return kErrPathFileAccess;
    }
}

int classicNumberForWindowsError(unsigned long code) {
    // The system's error codes by number, as winerror.h names them.
    switch (code) {
        case 2:  // ERROR_FILE_NOT_FOUND
            return kErrFileNotFound;
        case 3:    // ERROR_PATH_NOT_FOUND
        case 267:  // ERROR_DIRECTORY
            return kErrPathNotFound;
        case 4:  // ERROR_TOO_MANY_OPEN_FILES
            return kErrTooManyFiles;
        case 5:   // ERROR_ACCESS_DENIED
        case 19:  // ERROR_WRITE_PROTECT
        case 32:  // ERROR_SHARING_VIOLATION
        case 33:  // ERROR_LOCK_VIOLATION
            return kErrPermissionDenied;
        case 6:    // ERROR_INVALID_HANDLE
        case 123:  // ERROR_INVALID_NAME
        case 161:  // ERROR_BAD_PATHNAME
        case 206:  // ERROR_FILENAME_EXCED_RANGE
            return kErrBadFileNameOrNumber;
        case 8:   // ERROR_NOT_ENOUGH_MEMORY
        case 14:  // ERROR_OUTOFMEMORY
            return kErrOutOfMemory;
        case 15:  // ERROR_INVALID_DRIVE
        case 55:  // ERROR_DEV_NOT_EXIST
            return kErrDeviceUnavailable;
        case 17:  // ERROR_NOT_SAME_DEVICE
            return kErrRenameAcrossDisks;
        case 21:    // ERROR_NOT_READY
        case 1006:  // ERROR_FILE_INVALID: the volume went away under an open file
            return kErrDiskNotReady;
        case 23:    // ERROR_CRC
        case 25:    // ERROR_SEEK
        case 27:    // ERROR_SECTOR_NOT_FOUND
        case 29:    // ERROR_WRITE_FAULT
        case 30:    // ERROR_READ_FAULT
        case 31:    // ERROR_GEN_FAILURE
        case 1117:  // ERROR_IO_DEVICE
        case 1392:  // ERROR_FILE_CORRUPT
            return kErrDeviceIO;
        case 38:  // ERROR_HANDLE_EOF
            return kErrInputPastEndOfFile;
        case 39:   // ERROR_HANDLE_DISK_FULL
        case 112:  // ERROR_DISK_FULL
            return kErrDiskFull;
        case 80:   // ERROR_FILE_EXISTS
        case 183:  // ERROR_ALREADY_EXISTS
            return kErrFileAlreadyExists;
        default:
            return kErrPathFileAccess;
    }
}

int classicErrorNumber(std::error_code ec) {
    // The standard library reports the Windows system's own codes in the system
    // category; elsewhere that category holds errno values.
    if (kSystemCategoryIsWindows && ec.category() == std::system_category())
        return classicNumberForWindowsError(static_cast<unsigned long>(ec.value()));
    const std::error_condition cond = ec.default_error_condition();
    if (cond.category() == std::generic_category()) return classicNumberForErrno(cond.value());
    return kErrPathFileAccess;
}

RuntimeError RuntimeError::fromErrorCode(std::error_code ec, std::string detail) {
    const int number = classicErrorNumber(ec);
    if (detail.empty()) detail = ec.message();
    return RuntimeError(number, std::move(detail));
}

RuntimeError RuntimeError::fromErrno(int err, std::string detail) {
    return fromErrorCode(std::error_code(err, std::generic_category()), std::move(detail));
}

RuntimeError RuntimeError::fromCurrentException() {
    try {
        throw;
    } catch (const RuntimeError& e) {
        return e;
    } catch (const std::filesystem::filesystem_error& e) {
        std::string detail = e.path1().empty() ? e.code().message() : pathToUtf8(e.path1());
        RuntimeError error = fromErrorCode(e.code(), detail);
        // The C library says "no such file" when a folder on the way is missing, as the
        // MinGW runtime does for a new folder; Windows itself calls that path not found.
        std::error_code ec;
        const auto parent = e.path1().parent_path();
        if (error.number() == kErrFileNotFound && !parent.empty() &&
            !std::filesystem::exists(parent, ec))
            return RuntimeError(kErrPathNotFound, std::move(detail));
        return error;
    } catch (const std::system_error& e) {
        return fromErrorCode(e.code(), e.what());
    } catch (const std::bad_alloc&) {
        return RuntimeError(kErrOutOfMemory);
    } catch (const std::out_of_range& e) {
        return RuntimeError(kErrSubscriptOutOfRange, e.what());
    } catch (const std::exception& e) {
        return RuntimeError(kErrInvalidProcedureCall, e.what());
    }
}

void throwIfError(std::error_code ec, const std::string& detail) {
    if (ec) throw RuntimeError::fromErrorCode(ec, detail);
}

}  // namespace tvk
