#pragma once
// The copy engine: copies a batch of files from one folder to another, giving presets and
// recordings free organ numbers on the stick and readable names in the library, and
// never replacing a file that is already there.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvk {

struct Context;

// "LEFT" from the stick to the library, "RIGHT" the other way, "DIFF" between two
// folders on one side; a list's own name ("flbDocs", "flbUSB") makes duplicates in the
// folder that list shows.
enum class CopyMode { Left, Right, Diff, FlbDocs, FlbUSB };

const char* copyModeName(CopyMode mode);
std::optional<CopyMode> copyModeFromName(std::string_view name);  // exact words only

inline constexpr std::size_t kMaxCopyBatch = 1500;

// The copy batch.
struct CopyRequest {
    std::vector<std::string> files;  // names in `source`, in the order to copy them
    std::filesystem::path source;
    std::filesystem::path destination;
    CopyMode mode = CopyMode::Diff;
    // The attached stick's TAVRIN folder, empty without one: its counts are taken
    // again after the copy.
    std::filesystem::path stickFolder;
    std::uint8_t numberSeq = 0;  // the "Number Seq" setting: 1 continues numbers
};

struct CopiedFile {
    std::string from, to;
    bool operator==(const CopiedFile&) const = default;
};
struct CopyFailure {
    std::string name;
    int errorNumber = 0;  // the classic number of the last failure before Ignore
    bool operator==(const CopyFailure&) const = default;
};

struct CopyReport {
    std::vector<CopiedFile> copied;
    std::vector<std::string> skipped;  // no family to number it by, or not asked for
    std::vector<CopyFailure> failures;
    int duplicates = 0;         // taken names tried before a bracketed one was free
    bool completed = false;     // false when the user aborted on an error
    bool stickRemoved = false;  // the stick was pulled part way
    bool refused = false;       // the stick could not be written: nothing was copied
};

// A request for `mode` with the attached stick and the user's "Number Seq" setting.
CopyRequest copyRequest(const Context& ctx, std::vector<std::string> files,
                        std::filesystem::path source, std::filesystem::path destination,
                        CopyMode mode);

// frmMain.Copyfiles. A duplicate-making mode copies only when it names the active list
// (ctx.state.activeList), as the window's list commands do. With a `command` ("Paste",
// "Drop") status panel 2 says at the end what it did.
CopyReport Copyfiles(Context& ctx, const CopyRequest& request, const std::string& command = {});

}  // namespace tvk
