#pragma once
// The file information panel's text for one file: version and inside name for presets
// and recordings, playing time and bit rate for MP3 files, date and size for all.

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>

namespace tvk {

struct Context;

// The lines for the file at `file`, joined by the message line break and also kept in
// ctx.state.fileInfoText. An empty path gives an empty panel. (Build the path from a
// UTF-8 name with pathFromUtf8.)
std::string DisplayFileInfo(Context& ctx, const std::filesystem::path& file);

// "11/21/2026 5:31:11 AM": the Windows US short date and long time.
std::string usDateTime(const std::tm& local);
// "1KB" for 1,500 bytes: thousands, truncated.
std::string kilobytesText(std::uintmax_t bytes);
// "1.50MB" for 1,572,864 bytes: binary megabytes, two decimals.
std::string megabytesText(std::uintmax_t bytes);

}  // namespace tvk
