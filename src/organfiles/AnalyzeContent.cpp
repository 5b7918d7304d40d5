#include "organfiles/AnalyzeContent.h"

#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "organfiles/OrganNames.h"

namespace tvk {

namespace {

ContentCounts countFiles(const std::vector<std::string>& names) {
    ContentCounts c;
    for (const auto& name : names) {
        ++c.all;
        const FileKind kind = fileKind(name);
        const bool organ = isStickOrganExtension(extensionOf(name));
        if (organ && kind == FileKind::Recording) ++c.music;
        if (organ && kind == FileKind::Preset) ++c.presets;
        if (kind == FileKind::Mp3) ++c.mp3;
        if (kind == FileKind::Midi) ++c.midi;
    }
    if (c.all > 0) c.other = c.all - (c.presets + c.music + c.mp3 + c.midi);
    return c;
}

}  // namespace

ContentCounts countContent(const std::filesystem::path& tavrinFolder) {
    return countFiles(listPlainFiles(tavrinFolder, "*"));
}

std::string driveSummary(const std::string& fileSystem, const ContentCounts& c) {
    const std::string br(kLineBreak);
    return "FILESYS: " + fileSystem + br + "PRESET FILES: " + std::to_string(c.presets) + br +
           "MUSIC FILES: " + std::to_string(c.music) + br + "MP3 FILES: " + std::to_string(c.mp3) +
           br + "MIDI FILES: " + std::to_string(c.midi) + br +
           "OTHER FILES: " + std::to_string(c.other);
}

void AnalyzeContent(Context& ctx, const std::filesystem::path& tavrinFolder) {
    routine(ctx, "frmMain.AnalyzeContent", [&](Routine& r) {
        ContentCounts counts;
        r.step("Count the files of " + pathToUtf8(tavrinFolder),
               [&] { counts = countContent(tavrinFolder); });
        ctx.state.counts = counts;
        ctx.state.driveInfoText = driveSummary(ctx.state.drive.fileSystem, counts);
        ctx.ui.setStatus(StatusPanel::Progress, "");
        ctx.ui.setStatus(StatusPanel::Second, "");
    });
}

}  // namespace tvk
