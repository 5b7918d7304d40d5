#pragma once
// The naming rules of every command that copies organ files between the stick and the
// library: free organ numbers for the stick, readable names for the library, and the
// bracketed counter that marks a copy whose name was taken. They only choose names;
// nothing here writes a file.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "organfiles/OrganNames.h"

namespace tvk {

struct Context;

// The names a destination folder holds, read once and kept up to date as a command adds
// files, so a search past a thousand taken numbers does not ask the disk a thousand
// times (on a FUSE stick every question reads the whole folder). Only a name that differs
// from a listed one in case alone is looked up on disk: a folder that ignores case (FAT,
// Windows) holds "SUPSET01.LPG" when it lists "supset01.lpg". A name that appeared since
// the listing is still never replaced: the copy itself refuses it.
class FolderNames {
  public:
    // Lists the folder unless `list` is false; throws when it cannot be read.
    explicit FolderNames(std::filesystem::path folder, bool list = true);
    // The names a command is giving a folder it keeps up to date in place: only the names
    // added count as taken (without regard to case), not the old files still there.
    static FolderNames planned(std::filesystem::path folder);
    bool taken(const std::string& name) const;
    void add(const std::string& name);
    const std::filesystem::path& folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
    bool listed_ = false;
    bool addedOnly_ = false;
    std::unordered_set<std::string> names_, upperNames_;
};

// "Piano.spg" is {"Piano", ".SPG"}: the name before a three-letter extension, and that
// extension upper-cased. A name without one keeps its own extension as it is, or none.
struct NameParts {
    std::string base, extension;
};
NameParts splitExtension(std::string_view name);

// Free-number search: prefix + counter (at least `digits` digits) + extension, raising
// the counter while that name is taken. The counter is left at the number used.
std::string freeOrganNumberName(const FolderNames& folder, std::string_view prefix, int& counter,
                                int digits, std::string_view extension);

// Suffix search: `wanted` when it is free, otherwise base + " (" + counter + ")" +
// extension, raising the counter after each candidate. `duplicates` grows by one for
// every taken name tried.
std::string freeSuffixName(const FolderNames& folder, const std::string& wanted,
                           const NameParts& parts, int& counter, int& duplicates);

// The name a preset or recording gets in the library: the name inside it (GetPresetName)
// made legal by CheckName, then by windowsSafeName. A file whose inside name is empty or
// blank keeps its own name without the extension. `head`, when given, is the file's
// first bytes, already read.
std::string readableName(Context& ctx, const std::filesystem::path& file,
                         std::optional<std::string_view> head = std::nullopt);
// The same, reading the file without a routine of its own: a failure is the caller's
// step, so a vanished file is one error box, not two.
std::string readableName(const std::filesystem::path& file);
// The same from the first bytes copyFileNamed hands over, so a copy named after its
// contents opens its source once; the file is read again only when its first line runs
// past them.
std::string readableName(const std::filesystem::path& file, std::string_view head);

}  // namespace tvk
