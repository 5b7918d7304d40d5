#pragma once
// What the transfer commands share: the stick's file list, the copy of one file with its
// status text and progress, and the names the library side gives organ files.

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/Routine.h"
#include "library/CopyNames.h"
#include "library/DoneSummary.h"
#include "library/TransferCommands.h"

namespace tvk {

// A file being copied: where it is and its first bytes, read by the copy itself, so
// naming it after its contents does not open it a second time.
struct SourceFile {
    const std::filesystem::path& path;
    std::string_view head;
    std::string readable() const { return readableName(path, head); }
};

// Chooses the destination name of a source file.
using NameChooser = std::function<std::string(const std::string& name, const SourceFile& source)>;

// Copies a list of files into one folder, one step a file (Retry chooses the name again),
// showing `verb` + name + " - " + percent in status panel 1 and advancing the progress
// bar. A file the user goes on without is kept as a failure in the report.
class TransferCopy {
  public:
    TransferCopy(Context& ctx, Routine& r, TransferReport& report, std::string verb,
                 bool percent = true)
        : ctx_(ctx), r_(r), report_(report), verb_(std::move(verb)), percent_(percent) {}

    // A pulled stick ends the run (StickRemoved) instead of failing file after file.
    TransferCopy& stopWhenStickRemoved() {
        stickAware_ = true;
        return *this;
    }

    void run(const std::filesystem::path& from, const std::vector<std::string>& files,
             FolderNames& to, const NameChooser& choose);

  private:
    void copyOne(const std::filesystem::path& from, const std::string& name, FolderNames& to,
                 const NameChooser& choose);

    Context& ctx_;
    Routine& r_;
    TransferReport& report_;
    std::string verb_;
    bool percent_;
    bool stickAware_ = false;
};

// A folder's files by size, subfolders included, for finding a file's bytes in it.
using FilesBySize = std::multimap<std::uintmax_t, std::filesystem::path>;
FilesBySize filesBySize(const std::filesystem::path& folder);
// True when a file of `sizes` holds the bytes of `file`.
bool heldIn(const FilesBySize& sizes, const std::filesystem::path& file);

// The plain files of the stick's TAVRIN folder that match `patterns`, in list order.
std::vector<std::string> stickFiles(Context& ctx, Routine& r, const std::string& patterns = "*.*");
// All of them, for a command that must not take a failed listing for an empty stick:
// false when the user went on without it; throws StickRemoved for a pulled stick.
bool listStickFiles(Context& ctx, Routine& r, std::vector<std::string>& files,
                    const std::string& patterns = "*.*");

// The name "&Add ALL to Computer" gives a stick file in the library: a preset or recording
// its readable name and own extension, anything else its own name; " (n)" before the
// extension while the name is taken.
std::string addAllName(Context& ctx, const FolderNames& folder, const std::string& name,
                       const SourceFile& source, int& duplicates);

// "Copying NAME - 42%".
std::string copyingText(const std::string& verb, const std::string& name, std::size_t done,
                        std::size_t count, bool percent);

// After a command changed files: the view again, the stick's counts and the buttons that
// need the mirror folder.
void afterTransfer(Context& ctx);

// The paragraph separator of the transfer messages.
inline const std::string kParagraph = "\r\r";

// Update and restore fill `report` as they go, so an Abort still leaves what was done.
void updateComputer(Context& ctx, Routine& r, TransferReport& report, bool dryRun = false);
void restoreThumbdrive(Context& ctx, Routine& r, TransferReport& report, bool confirmed,
                       bool dryRun = false);

// The note at the stick's root that says a restore is under way.
std::filesystem::path restoreNote(const Context& ctx);
bool restoreUnfinished(const Context& ctx);

}  // namespace tvk
