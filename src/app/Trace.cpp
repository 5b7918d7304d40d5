#include "app/Trace.h"

#include <cerrno>
#include <cstdio>

#include "app/Clock.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "app/Version.h"

namespace tvk {

std::tm Trace::localNow() {
    return localTime(std::time(nullptr));
}

Trace::Trace(Clock clock) : clock_(std::move(clock)) {}

void Trace::open(const std::filesystem::path& file) {
    file_ = file;
    out_.close();
    handleClosed_ = false;
    errno = 0;
    out_.open(file, std::ios::binary | std::ios::trunc);
    if (!out_) {
        const int err = errno ? errno : EACCES;
        throw RuntimeError::fromErrno(err, pathToUtf8(file));
    }
    write("Tavrin File Manager - Debugging Log");
    write("Version: " + programVersionText());
    write(std::string(42, '-'));
}

void Trace::write(std::string_view line) {
    if (!debug || ending) return;
    if (handleClosed_) throw RuntimeError(kErrBadFileNameOrNumber, "trace file #256 is closed");
    if (!out_.is_open()) return;  // tracing without a file: nothing to write to
    out_ << line << kCrLf;
    out_.flush();
    if (!out_) {
        out_.clear();
        throw RuntimeError::fromErrno(errno ? errno : EIO, pathToUtf8(file_));
    }
}

void Trace::enterLine(const std::string& entry) {
    write(stamp() + "- " + entry + " - ENTER");
}

void Trace::exitLine(const std::string& entry) {
    write(stamp() + "- " + entry + " - EXIT");
}

void Trace::closeAllFiles() {
    if (out_.is_open()) {
        out_.close();
        handleClosed_ = true;
    }
    appendOut_.close();
}

void Trace::reopenForAppend() {
    if (!debug || file_.empty()) return;
    appendOut_.open(file_, std::ios::binary | std::ios::app);
}

std::string Trace::stamp() const {
    const std::tm t = clock_();
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d%02d%02d.%02d%02d%02d", t.tm_year % 100, t.tm_mon + 1,
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    return buf;
}

std::string Trace::makeEntry(int depth, std::string_view qualifiedName) {
    return std::string(static_cast<std::size_t>(depth > 0 ? depth : 0), '|') +
           std::string(qualifiedName);
}

std::string Trace::push(std::string_view qualifiedName) {
    if (depth_ >= 32767) throw RuntimeError(kErrOverflow, "routine depth");
    ++depth_;
    if (depth_ > kMaxDepth) throw RuntimeError(kErrSubscriptOutOfRange, "routine stack is full");
    stack_[static_cast<std::size_t>(depth_)] = makeEntry(depth_, qualifiedName);
    return stack_[static_cast<std::size_t>(depth_)];
}

void Trace::pop() {
    if (depth_ <= 0) return;
    if (depth_ <= kMaxDepth) stack_[static_cast<std::size_t>(depth_)].clear();
    --depth_;
}

std::string Trace::entry(int index) const {
    if (index < 1 || index > kMaxDepth) return {};
    return stack_[static_cast<std::size_t>(index)];
}

}  // namespace tvk
