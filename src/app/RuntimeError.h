#pragma once
// Run-time errors as users and support know them from the error box: a classic
// error number and its description, mapped from whatever the OS reported.

#include <exception>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tvk {

enum ErrorNumber : int {
    kErrOverflow = 6,
    kErrOutOfMemory = 7,
    kErrSubscriptOutOfRange = 9,
    kErrTypeMismatch = 13,
    kErrBadFileNameOrNumber = 52,
    kErrFileNotFound = 53,
    kErrDeviceIO = 57,
    kErrFileAlreadyExists = 58,
    kErrDiskFull = 61,
    kErrInputPastEndOfFile = 62,
    kErrPermissionDenied = 70,
    kErrDiskNotReady = 71,
    kErrPathFileAccess = 75,
    kErrPathNotFound = 76,
    kErrTooManyFiles = 67,
    kErrDeviceUnavailable = 68,
    kErrRenameAcrossDisks = 74,
    kErrInvalidProcedureCall = 5,
};

// The classic error number for an OS error: errno values, and on Windows the system's
// error codes, which the standard library reports in the system category.
int classicErrorNumber(std::error_code ec);
int classicNumberForErrno(int err);
int classicNumberForWindowsError(unsigned long code);

// The runtime's description for a number ("File not found" for 53).
std::string errorDescription(int number);

class RuntimeError : public std::runtime_error {
  public:
    explicit RuntimeError(int number, std::string detail = {});
    int number() const { return number_; }
    // The classic description; the detail (a path, the OS text) is kept for the trace.
    std::string description() const { return errorDescription(number_); }
    const std::string& detail() const { return detail_; }

    // Maps an OS error to the run-time error a user would have seen.
    static RuntimeError fromErrorCode(std::error_code ec, std::string detail = {});
    static RuntimeError fromErrno(int err, std::string detail = {});
    // Converts whatever a step threw (filesystem_error, bad_alloc, ...) into one.
    static RuntimeError fromCurrentException();

  private:
    int number_;
    std::string detail_;
};

// Throws the mapped RuntimeError when `ec` holds an error.
void throwIfError(std::error_code ec, const std::string& detail = {});

}  // namespace tvk
