#pragma once
// The traced routines over the organ file layout: format version, the file's own name,
// record positions and the listing of a folder's preset or recording files. Failures go
// through the routine's error handler; OrganFile.h has the same reading without it.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvk {

struct Context;

inline constexpr int kNameListEntries = 750;

// "2" for a "Ver2.0" header. A missing file or one without the mark goes to the error
// handler; after Ignore or Abort the result is "".
std::string GetFileVersion(Context& ctx, const std::filesystem::path& file);
// The preset or song name, trimmed; the first 16 characters for a file without the mark.
std::string GetPresetName(Context& ctx, const std::filesystem::path& file);
// The same from the file's first bytes, already read (an empty file is error 62).
std::string GetPresetName(Context& ctx, const std::filesystem::path& file, std::string_view head);
// `family` "S", "A" or "E"; `kind` "PRESET" or "RECORDING"; `button` "A1".."E10" or "0".
std::int32_t CalcAddress(Context& ctx, std::string_view family, std::string_view kind,
                         std::string_view button);

// The SPG, APG and EPG files (SMR, AMR, EMR) of `folder`, sorted by plain text
// comparison. More than 750 is error 9; Ignore keeps the first 750. nullopt when the
// user aborted.
std::optional<std::vector<std::string>> ReadPresetNames(Context& ctx,
                                                        const std::filesystem::path& folder);
std::optional<std::vector<std::string>> ReadRecordingsNames(Context& ctx,
                                                            const std::filesystem::path& folder);

}  // namespace tvk
