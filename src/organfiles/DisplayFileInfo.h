#pragma once
// The file information panel's text for one file: version and inside name for presets
// and recordings, playing time and bit rate for MP3 files, date and size for all.

#include <cstdint>
#include <ctime>
#include <string>

namespace tvk {

struct Context;

// `fileName` is the full path as UTF-8. The lines are joined by the message line break
// and also kept in ctx.state.fileInfoText. An empty name gives an empty panel.
std::string DisplayFileInfo(Context& ctx, const std::string& fileName);

// "11/21/2026 5:31:11 AM": the Windows US short date and long time.
std::string usDateTime(const std::tm& local);
// "1KB" for 1,500 bytes: thousands, truncated.
std::string kilobytesText(std::uintmax_t bytes);
// "1.50MB" for 1,572,864 bytes: binary megabytes, two decimals.
std::string megabytesText(std::uintmax_t bytes);

}  // namespace tvk
