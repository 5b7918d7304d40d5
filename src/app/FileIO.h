#pragma once
// Every file the program reads or writes goes through here. Writers never leave a
// half-written file under a real name: new contents go to a temporary name in the same
// folder and are renamed into place only when complete. Failures arrive as RuntimeError
// with the classic error number (53 file not found, 61 disk full, 70 permission denied,
// 71 disk not ready, ...).

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tvk {

namespace detail {
class InputFile;
}

// The whole file. A file larger than `limit` bytes is refused as out of memory (7),
// so a size read from outside never drives an allocation on its own; one that yields
// fewer bytes than its size is a device I/O error (57).
std::string readWholeFile(const std::filesystem::path& file,
                          std::uintmax_t limit = std::uintmax_t(1) << 31);

// At most `count` bytes from the start of the file (fewer when the file is shorter).
std::string readFileHead(const std::filesystem::path& file, std::size_t count);

// A small system or configuration file's text, read up to `limit` bytes rather than by
// its size (kernel files report none); empty when it is absent or cannot be read, for
// the files whose absence only means "nothing said".
std::string readTextFileOrEmpty(const std::filesystem::path& file,
                                std::size_t limit = std::size_t(4) << 20);

// A file held open for reads at chosen positions: an MP3 searched a block at a time, a
// volume's boot sector and tables, an organ file's header read until its line ends.
class FileReader {
  public:
    explicit FileReader(const std::filesystem::path& file);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    // The size as the file was opened; a device's is its medium's.
    std::uintmax_t size() const { return size_; }
    // Up to `count` bytes from `position`: fewer at the end of the file, none past it.
    std::string readAt(std::uint64_t position, std::size_t count);

  private:
    std::unique_ptr<detail::InputFile> in_;
    std::uintmax_t size_;
};

// Writes `bytes` as the new contents of `file` (made or replaced). The old contents stay
// in place until the new ones are complete and flushed.
void writeFileReplacing(const std::filesystem::path& file, std::string_view bytes);

// Writes a new file; refuses (58, file already exists) when `file` is already there.
void writeNewFile(const std::filesystem::path& file, std::string_view bytes);

// Adds `bytes` at the end of `file`, made when missing. Not flushed to disk: for a log
// that a reader takes up to its last whole line.
void appendToFile(const std::filesystem::path& file, std::string_view bytes);

// Called during a copy with the bytes copied so far and the source's size.
using CopyProgress = std::function<void(std::uintmax_t done, std::uintmax_t total)>;

// Copies `source` to `destination` through a temporary name in the destination's folder
// and renames it into place when complete; the modification time is kept. Refuses (58)
// when `destination` exists, and never replaces it. Exactly the source's size is copied:
// a source that ends early is a device I/O error (57). On any failure the temporary file
// is removed (as far as the destination still lets it) and the error is thrown.
void copyFileSafely(const std::filesystem::path& source, const std::filesystem::path& destination,
                    const CopyProgress& progress = {});

// As copyFileSafely, for a copy named after its contents: `nameFor` gets the source's
// first bytes (its first kNamedCopyHead bytes, or all of a smaller file) and returns the
// copy's name in `folder`. The source is opened once, which matters on a slow stick.
// Returns the name.
inline constexpr std::size_t kNamedCopyHead = std::size_t(1) << 20;
using NameForContents = std::function<std::string(std::string_view head)>;
std::string copyFileNamed(const std::filesystem::path& source, const std::filesystem::path& folder,
                          const NameForContents& nameFor, const CopyProgress& progress = {});

// As copyFileNamed, into a folder kept up to date in place rather than rebuilt: a file
// already under the chosen name stays when it holds the source's bytes, and is otherwise
// replaced only by a complete copy, so an interrupted copy leaves the old file. With
// `write` false nothing is written; the result says what would be done.
enum class MirrorCopy { Added, Replaced, Unchanged };
struct MirroredFile {
    std::string name;
    MirrorCopy how = MirrorCopy::Added;
};
MirroredFile copyFileMirrored(const std::filesystem::path& source,
                              const std::filesystem::path& folder, const NameForContents& nameFor,
                              const CopyProgress& progress = {}, bool write = true);

// Renames within one volume; refuses (58) when `to` exists instead of replacing it. On
// FAT a name that differs only in case is the same file, so it counts as existing.
void renameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to);

// Many renames within one folder whose every entry the caller has listed. Where the file
// system cannot refuse to replace by itself, a rename goes ahead only when its new name is
// not among the names known to be there (without regard to case, as on FAT), instead of
// asking the file system first: on a FUSE stick every question that names a file costs a
// scan of the whole folder. Refuses (58) like renameNoReplace.
class FolderRenamer {
  public:
    FolderRenamer(std::filesystem::path folder, const std::vector<std::string>& entries);
    void rename(const std::string& from, const std::string& to);

  private:
    std::filesystem::path folder_;
    std::unordered_set<std::string> taken_;  // upper case
    bool refusesByItself_ = true;            // until the file system says otherwise
};

// The temporary name a writer uses beside `file`: hidden, and never an organ file name.
std::filesystem::path temporaryNameFor(const std::filesystem::path& file);
// True for a name temporaryNameFor makes (left behind when a stick was pulled).
bool isTemporaryName(std::string_view fileName);

}  // namespace tvk
