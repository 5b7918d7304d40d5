#include "app/FileIO.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <optional>
#include <vector>

#include "app/FileHandles.h"
#include "app/FileTimes.h"
#include "app/MountRules.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

namespace {

constexpr std::size_t kCopyChunk = 1 << 20;
constexpr std::string_view kTempPrefix = ".tvk-";
constexpr std::string_view kTempSuffix = ".part";

void removeQuietly(const std::filesystem::path& file) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

// `count` bytes, gathered by `readSome(buffer, wanted, gotSoFar)` until it returns 0 at
// the end of the file.
template <typename ReadSome>
std::string readFilling(std::size_t count, ReadSome readSome) {
    std::string bytes(count, '\0');
    std::size_t got = 0;
    while (got < count) {
        const std::size_t n = readSome(bytes.data() + got, count - got, got);
        if (n == 0) break;
        got += n;
    }
    bytes.resize(got);
    return bytes;
}

RuntimeError shortRead(const std::filesystem::path& file, std::uintmax_t got, std::uintmax_t size) {
    return RuntimeError(kErrDeviceIO, pathToUtf8(file) + ": read " + std::to_string(got) +
                                          " of its " + std::to_string(size) + " bytes");
}

// Up to `count` bytes from where `in` stands: fewer only at the end of the file.
std::string readUpTo(detail::InputFile& in, std::size_t count) {
    return readFilling(
        count, [&](char* buffer, std::size_t n, std::size_t) { return in.read(buffer, n); });
}

// Runs `write` on a new temporary file beside `file`, then `publish`es it. The temporary
// file is removed when anything fails.
template <typename Write, typename Publish>
void throughTemporary(const std::filesystem::path& file, Write write, Publish publish) {
    const std::filesystem::path temp = temporaryNameFor(file);
    std::optional<detail::OutputFile> out;
    out.emplace(temp);  // when this fails there is nothing of ours to remove
    try {
        write(*out);
        out->close();
        out.reset();
        publish(temp);
    } catch (...) {
        out.reset();  // closed first: Windows cannot remove an open file
        removeQuietly(temp);
        throw;
    }
}

// Writes a new file under its own name on a mount that cannot rename safely (MountRules).
// The mount's note names the file until it is complete, so that a stop half way (a pulled
// stick, a killed program) leaves a file the next mount knows to remove.
template <typename Write>
void writeInPlace(const std::filesystem::path& file, const AppliedRules& mount, Write write) {
    const MountRules& rules = mount.rules;
    const auto below = file.lexically_normal().lexically_relative(mount.mountDir);
    writeFileReplacing(rules.writingNote, rules.notePrefix + pathToUtf8(below) + "\n");
    std::optional<detail::OutputFile> out;
    try {
        out.emplace(file);
    } catch (...) {
        removeQuietly(rules.writingNote);  // nothing was made
        throw;
    }
    try {
        write(*out);
        out->close();
        out.reset();
    } catch (...) {
        out.reset();
        std::error_code ec;
        std::filesystem::remove(file, ec);
        if (!ec) removeQuietly(rules.writingNote);  // else the next mount takes it away
        throw;
    }
    removeQuietly(rules.writingNote);
}

// A new file, through a temporary name and a rename that refuses to replace, or in place
// where the mount asks for that.
template <typename Write>
void writeNew(const std::filesystem::path& file, Write write) {
    checkNameStorable(file);
    if (const auto mount = mountRulesFor(file); mount && mount->rules.writeInPlace)
        return writeInPlace(file, *mount, write);
    throughTemporary(file, write, [&](const std::filesystem::path& temp) {
        detail::renameExclusive(temp, file);
    });
}

}  // namespace

std::string readWholeFile(const std::filesystem::path& file, std::uintmax_t limit) {
    detail::InputFile in(file);
    const std::uintmax_t size = in.size();
    if (size > limit) throw RuntimeError(kErrOutOfMemory, pathToUtf8(file));
    std::string bytes = readUpTo(in, static_cast<std::size_t>(size));
    if (bytes.size() != size) throw shortRead(file, bytes.size(), size);
    return bytes;
}

std::string readTextFileOrEmpty(const std::filesystem::path& file, std::size_t limit) {
    try {
        return readFileHead(file, limit);
    } catch (const RuntimeError&) {
        return {};
    }
}

std::string readFileHead(const std::filesystem::path& file, std::size_t count) {
    detail::InputFile in(file);
    return readUpTo(in, count);
}

FileReader::FileReader(const std::filesystem::path& file)
    : in_(std::make_unique<detail::InputFile>(file)), size_(in_->size()) {}

FileReader::~FileReader() = default;

std::string FileReader::readAt(std::uint64_t position, std::size_t count) {
    if (position >= size_) return {};
    count = static_cast<std::size_t>(std::min<std::uintmax_t>(count, size_ - position));
    return readFilling(count, [&](char* buffer, std::size_t n, std::size_t got) {
        return in_->readAt(position + got, buffer, n);
    });
}

namespace {

// A driver that keeps months one off (FileTimes.h) stamps a file with the time of its
// last write when it closes it, so the entry gets its date once the file is in place.
void settleEntryTime(const std::filesystem::path& file, FileTime wanted) {
    if (!monthOneTooHigh(file)) return;
    detail::setFileTimes(file, timeToStore(file, wanted));
}

}  // namespace

void writeFileReplacing(const std::filesystem::path& file, std::string_view bytes) {
    checkNameStorable(file);
    throughTemporary(
        file,
        [&](detail::OutputFile& out) {
            out.write(bytes.data(), bytes.size());
            out.flushToDisk();
        },
        [&](const std::filesystem::path& temp) { detail::renameReplacing(temp, file); });
    settleEntryTime(file, std::chrono::system_clock::now());
}

void writeNewFile(const std::filesystem::path& file, std::string_view bytes) {
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(file, ec)))
        throw RuntimeError(kErrFileAlreadyExists, pathToUtf8(file));
    writeNew(file, [&](detail::OutputFile& out) {
        out.write(bytes.data(), bytes.size());
        out.flushToDisk();
    });
    settleEntryTime(file, std::chrono::system_clock::now());
}

void appendToFile(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::app);
    if (out) out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (out) out.close();
    if (!out) throw RuntimeError(classicNumberForErrno(errno), pathToUtf8(file));
}

namespace {

// Copies `head` (already read from `in`) and the rest of `in` to `destination`; with
// `replace`, the complete copy takes the place of a file already there.
void copyOpened(detail::InputFile& in, const std::filesystem::path& source, std::string_view head,
                std::uintmax_t total, const std::filesystem::path& destination,
                const CopyProgress& progress, bool replace = false) {
    std::error_code ec;
    if (!replace && std::filesystem::exists(std::filesystem::symlink_status(destination, ec)))
        throw RuntimeError(kErrFileAlreadyExists, pathToUtf8(destination));
    // Only a copy onto a drive that keeps months one off needs the source's date again;
    // asking for it by name costs a FUSE stick a scan of its folder.
    std::optional<FileTime> written;
    if (monthOneTooHigh(destination)) written = modificationTime(source);
    const auto write = [&](detail::OutputFile& out) {
        std::uintmax_t done = head.size();
        if (!head.empty()) {
            out.write(head.data(), head.size());
            if (progress) progress(done, total);
        }
        std::vector<char> buffer(static_cast<std::size_t>(
            std::min<std::uintmax_t>(std::max<std::uintmax_t>(total, 1), kCopyChunk)));
        // Exactly the size the file was opened with: a damaged stick (a cut or
        // cross-linked cluster chain) ends a file early without any error of its own,
        // and a copy that took that for the whole file would replace good ones.
        while (done < total) {
            const auto wanted =
                static_cast<std::size_t>(std::min<std::uintmax_t>(buffer.size(), total - done));
            const std::size_t n = in.read(buffer.data(), wanted);
            if (n == 0) throw shortRead(source, done, total);
            out.write(buffer.data(), n);
            done += n;
            if (progress) progress(done, total);
        }
        out.copyTimesFrom(in);
    };
    if (replace) {
        checkNameStorable(destination);
        throughTemporary(destination, write, [&](const std::filesystem::path& temp) {
            detail::renameReplacing(temp, destination);
        });
    } else {
        writeNew(destination, write);
    }
    if (written) settleEntryTime(destination, *written);
}

// True when `in`, of which `head` is already read, holds the bytes of `other` (of the
// same size). Stops at the first difference.
bool sameRest(detail::InputFile& in, std::string_view head, const std::filesystem::path& other) {
    FileReader theirs(other);
    if (theirs.readAt(0, head.size()) != head) return false;
    std::uint64_t at = head.size();
    std::vector<char> buffer(kCopyChunk);
    for (;;) {
        const std::size_t n = in.read(buffer.data(), buffer.size());
        if (n == 0) return at == theirs.size();
        if (theirs.readAt(at, n) != std::string_view(buffer.data(), n)) return false;
        at += n;
    }
}

}  // namespace

void copyFileSafely(const std::filesystem::path& source, const std::filesystem::path& destination,
                    const CopyProgress& progress) {
    detail::InputFile in(source);
    copyOpened(in, source, {}, in.size(), destination, progress);
}

std::string copyFileNamed(const std::filesystem::path& source, const std::filesystem::path& folder,
                          const NameForContents& nameFor, const CopyProgress& progress) {
    detail::InputFile in(source);
    const std::uintmax_t total = in.size();
    const std::string head =
        readUpTo(in, static_cast<std::size_t>(std::min<std::uintmax_t>(total, kNamedCopyHead)));
    std::string name = nameFor(head);
    copyOpened(in, source, head, total, folder / pathFromUtf8(name), progress);
    return name;
}

MirroredFile copyFileMirrored(const std::filesystem::path& source,
                              const std::filesystem::path& folder, const NameForContents& nameFor,
                              const CopyProgress& progress, bool write) {
    auto in = std::make_unique<detail::InputFile>(source);
    const std::uintmax_t total = in->size();
    const std::string head =
        readUpTo(*in, static_cast<std::size_t>(std::min<std::uintmax_t>(total, kNamedCopyHead)));
    MirroredFile result{nameFor(head), MirrorCopy::Added};
    const auto destination = folder / pathFromUtf8(result.name);
    std::error_code ec;
    const auto status = std::filesystem::symlink_status(destination, ec);
    if (std::filesystem::is_regular_file(status)) {
        result.how = MirrorCopy::Replaced;
        const bool readOn = total > head.size();
        if (std::filesystem::file_size(destination, ec) == total && !ec &&
            sameRest(*in, head, destination))
            result.how = MirrorCopy::Unchanged;
        else if (readOn && write)
            in = std::make_unique<detail::InputFile>(source);  // read past the head: start over
        if (result.how == MirrorCopy::Unchanged || !write) return result;
        if (readOn) {
            copyOpened(*in, source, {}, total, destination, progress, true);
            return result;
        }
    } else if (std::filesystem::exists(status)) {
        throw RuntimeError(kErrFileAlreadyExists, pathToUtf8(destination));
    }
    if (write) copyOpened(*in, source, head, total, destination, progress, true);
    return result;
}

namespace {

// Such a driver also stamps a renamed entry with the time of the rename; the file keeps
// the date it had. Asked only there, as a question by name costs a FUSE stick a scan.
template <class Rename>
void renameKeepingDate(const std::filesystem::path& from, const std::filesystem::path& to,
                       Rename&& rename) {
    std::optional<FileTime> kept;
    if (monthOneTooHigh(from)) kept = modificationTime(from);
    rename();
    if (kept) settleEntryTime(to, *kept);
}

}  // namespace

void renameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to) {
    checkNameStorable(to);
    renameKeepingDate(from, to, [&] { detail::renameExclusive(from, to); });
}

FolderRenamer::FolderRenamer(std::filesystem::path folder, const std::vector<std::string>& entries)
    : folder_(std::move(folder)) {
    for (const auto& e : entries) taken_.insert(utf8ToUpper(e));
}

void FolderRenamer::rename(const std::string& from, const std::string& to) {
    const auto source = folder_ / pathFromUtf8(from), target = folder_ / pathFromUtf8(to);
    checkNameStorable(target);
    const std::string upperFrom = utf8ToUpper(from), upperTo = utf8ToUpper(to);
    if (upperTo != upperFrom && taken_.count(upperTo))
        throw RuntimeError(kErrFileAlreadyExists, pathToUtf8(target));
    renameKeepingDate(source, target, [&] {
        if (!refusesByItself_ || !detail::renameRefusingByItself(source, target)) {
            refusesByItself_ = false;
            detail::renameReplacing(source, target);
        }
    });
    taken_.erase(upperFrom);
    taken_.insert(upperTo);
}

std::filesystem::path temporaryNameFor(const std::filesystem::path& file) {
    // Hidden on Linux, and ending in neither an organ nor a media extension, so neither
    // the lists nor the organ take a left-over one for a real file.
    static std::atomic<unsigned> counter{0};
    const auto stamp = static_cast<unsigned long long>(
        std::chrono::steady_clock::now().time_since_epoch().count());
    const std::string name =
        std::string(kTempPrefix) + hexUpper((stamp << 8) ^ counter++) + std::string(kTempSuffix);
    return file.parent_path() / pathFromUtf8(name);
}

bool isTemporaryName(std::string_view fileName) {
    return startsWith(fileName, kTempPrefix) && endsWith(fileName, kTempSuffix);
}

}  // namespace tvk
