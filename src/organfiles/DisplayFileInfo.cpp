#include "organfiles/DisplayFileInfo.h"

#include <chrono>
#include <filesystem>
#include <vector>

#include "app/Clock.h"
#include "app/FileTimes.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "mp3/cMP3Info.h"
#include "organfiles/FileLayout.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

std::string modifiedText(const std::filesystem::path& file) {
    return usDateTime(localTime(std::chrono::system_clock::to_time_t(modificationTime(file))));
}

constexpr const char* kNoHeader = "unknown (no TAVRN header)";

bool hasOrganHeader(const std::filesystem::path& file) {
    try {
        return readFirstLine(file).find(kBrandMark) != std::string::npos;
    } catch (const RuntimeError&) {
        return false;
    }
}

std::string joinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i) text += kLineBreak;
        text += lines[i];
    }
    return text;
}

}  // namespace

std::string usDateTime(const std::tm& t) {
    const int hour12 = t.tm_hour % 12 == 0 ? 12 : t.tm_hour % 12;
    return std::to_string(t.tm_mon + 1) + "/" + std::to_string(t.tm_mday) + "/" +
           std::to_string(t.tm_year + 1900) + " " + std::to_string(hour12) + ":" +
           zeroPad(t.tm_min, 2) + ":" + zeroPad(t.tm_sec, 2) + (t.tm_hour < 12 ? " AM" : " PM");
}

std::string kilobytesText(std::uintmax_t bytes) {
    return std::to_string(bytes / 1000) + "KB";
}

std::string megabytesText(std::uintmax_t bytes) {
    // Hundredths rounded half up, in whole numbers so 1.505 is never 1.50 by accident.
    const std::uintmax_t hundredths = (bytes * 100 + 524288) / 1048576;
    return std::to_string(hundredths / 100) + "." +
           zeroPad(static_cast<long long>(hundredths % 100), 2) + "MB";
}

std::string DisplayFileInfo(Context& ctx, const std::filesystem::path& file) {
    std::string text;
    routine(ctx, "frmMain.DisplayFileInfo", [&](Routine& r) {
        if (file.empty()) return;
        const std::string fileName = pathToUtf8(file);
        std::string modified;
        std::uintmax_t size = 0;
        r.step("Read the date and size of " + fileName, [&] {
            size = std::filesystem::file_size(file);
            modified = modifiedText(file);
        });
        const FileKind kind = kindByEnding(fileName);
        std::vector<std::string> lines;
        if (kind == FileKind::Preset || kind == FileKind::Recording) {
            // A picture or a damaged preset has no organ header: say so rather than
            // raise the error box for a click.
            lines.push_back("File Version: " + (hasOrganHeader(file) ? GetFileVersion(ctx, file)
                                                                     : std::string(kNoHeader)));
            lines.push_back((kind == FileKind::Preset ? "Preset Name: " : "Song Name: ") +
                            GetPresetName(ctx, file));
            lines.push_back("Modified: " + modified);
            lines.push_back("File Size: " + kilobytesText(size));
        } else if (utf8ToUpper(utf8Right(fileName, 2)) == "P3") {
            cMP3Info mp3(ctx);
            mp3.LetFilename(file);
            lines.push_back("Modified: " + modified);
            lines.push_back("Length: " + mp3.FormattedTime());
            lines.push_back("Bitrate: " + std::to_string(mp3.BitRate()));
            lines.push_back("File Size: " + megabytesText(size));
            lines.push_back(mp3.ChannelMode());
        } else {
            lines.push_back("Modified: " + modified);
            lines.push_back("File Size: " + kilobytesText(size));
        }
        text = joinLines(lines);
    });
    ctx.state.fileInfoText = text;
    return text;
}

}  // namespace tvk
