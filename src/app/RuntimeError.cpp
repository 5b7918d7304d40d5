#include "app/RuntimeError.h"

#include <cerrno>
#include <filesystem>
#include <new>

namespace tvk {

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

RuntimeError RuntimeError::fromErrorCode(std::error_code ec, std::string detail) {
    // default_error_condition maps Windows and POSIX codes alike onto std::errc.
    const std::error_condition cond = ec.default_error_condition();
    int number = kErrPathFileAccess;
    if (cond.category() == std::generic_category()) {
        switch (static_cast<std::errc>(cond.value())) {
            case std::errc::no_such_file_or_directory:
                number = kErrFileNotFound;
                break;
            case std::errc::not_a_directory:
                number = kErrPathNotFound;
                break;
            case std::errc::file_exists:
                number = kErrFileAlreadyExists;
                break;
            case std::errc::no_space_on_device:
            case std::errc::file_too_large:
                number = kErrDiskFull;
                break;
            case std::errc::permission_denied:
            case std::errc::operation_not_permitted:
            case std::errc::read_only_file_system:
            case std::errc::text_file_busy:
                number = kErrPermissionDenied;
                break;
            case std::errc::bad_file_descriptor:
            case std::errc::filename_too_long:
            case std::errc::invalid_argument:
            case std::errc::illegal_byte_sequence:
                number = kErrBadFileNameOrNumber;
                break;
            case std::errc::io_error:
                number = kErrDeviceIO;
                break;
            case std::errc::no_such_device:
            case std::errc::no_such_device_or_address:
            case std::errc::not_connected:
                number = kErrDiskNotReady;
                break;
            case std::errc::not_enough_memory:
                number = kErrOutOfMemory;
                break;
            case std::errc::too_many_files_open:
                number = 67;
                break;
            default:
                number = kErrPathFileAccess;
                break;
        }
    }
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
        std::string detail = e.path1().empty() ? e.code().message() : e.path1().string();
        return fromErrorCode(e.code(), detail);
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
