#include "library/ListCommands.h"

#include <algorithm>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/ShownPaths.h"
#include "app/Text.h"
#include "app/Version.h"
#include "organfiles/OrganNames.h"

namespace tvk {

namespace {

namespace fs = std::filesystem;

const std::string kQ(kQuote);
const std::string kBr(kLineBreak);
constexpr const char* kPresetListName = "ListOfPresets.txt";

// The quoted field of a comma-separated record.
std::string quoted(const std::string& text) {
    std::string out = kQ;
    for (char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + kQ;
}

// "Waltz_#012.EPG" -> "Waltz.EPG"; "" when the name has no "_#" before its extension.
std::string convertedName(const std::string& name) {
    const std::size_t length = utf8Length(name);
    if (length < 4) return {};
    const std::string ext = utf8Right(name, 4);
    const std::size_t mark = name.find("_#");
    if (mark == std::string::npos || mark == 0 || mark + 2 > name.size() - ext.size()) return {};
    return name.substr(0, mark) + ext;
}

}  // namespace

std::optional<fs::path> mnuEditNewFldr_Click(Context& ctx, const fs::path& parent) {
    return routine(ctx, "frmMain.mnuEditNewFldr_Click",
                   [&](Routine& r) -> std::optional<fs::path> {
                       const auto answer = ctx.ui.prompt(
                           "CREATE NEW FOLDER",
                           "Please enter the NAME for the new folder that will be appended "
                           "to... " +
                               kBr + pathToUtf8(parent));
                       if (!answer || trim(*answer).empty()) return std::nullopt;
                       const fs::path folder = parent / pathFromUtf8(*answer);
                       const bool made = r.step("MkDir " + pathToUtf8(folder), [&] {
                           requireNameInFolder(*answer);
                           if (!fs::create_directory(folder))
                               Routine::raise(kErrPathFileAccess, pathToUtf8(folder));
                       });
                       refreshLists(ctx.state);
                       if (!made) return std::nullopt;
                       return folder;
                   })
        .value_or(std::nullopt);
}

ConvertReport mnuFileConvert_Click(Context& ctx, const ListSelection& list) {
    ConvertReport report;
    routine(ctx, "frmMain.mnuFileConvert_Click", [&](Routine& r) {
        const std::string text =
            "This process will convert ALL Presetname files from the old format of..." + kBr + kQ +
            "Preset Name_#123.EPG" + kQ + kBr + " TO" + kBr + kQ + "Preset Name.EPG" + kQ + kBr +
            "in the " + kQ + shownPath(ctx.state.drive, list.folder) + kQ + " folder." + kBr +
            "Do you want to continue?";
        if (ctx.ui.message(Message{"CONVERT FILENAMES", text, Buttons::YesNo, Icon::Question, 2}) !=
            Answer::Yes)
            return;
        for (const auto& name : list.names) {
            std::string newName = convertedName(name);
            if (newName.empty()) continue;
            const fs::path from = list.folder / pathFromUtf8(name);
            std::error_code ec;
            if (fs::exists(list.folder / pathFromUtf8(newName), ec) &&
                !isCaseOnlyRename(from, list.folder / pathFromUtf8(newName))) {
                ++report.copies;
                newName = freeDuplicateName(list.folder, newName);
            }
            ctx.ui.setStatus(StatusPanel::Progress, "Converting " + name);
            ctx.ui.processEvents();
            if (r.step("Name " + pathToUtf8(from) + " As " + newName,
                       [&] { moveFile(from, list.folder / pathFromUtf8(newName)); }))
                report.renamed.emplace_back(name, newName);
        }
        if (report.copies > 0)
            ctx.ui.inform(kProjectName,
                          "There are " + std::to_string(report.copies) + " copies of files.");
        refreshLists(ctx.state);
    });
    return report;
}

std::optional<fs::path> mnuFilePrint_Click(Context& ctx, const std::vector<std::string>& entries) {
    return routine(ctx, "frmMain.mnuFilePrint_Click",
                   [&](Routine& r) -> std::optional<fs::path> {
                       std::vector<std::string> names;
                       for (const auto& name : entries)
                           if (toUpperAscii(utf8Right(name, 3)) != "TXT") names.push_back(name);
                       std::sort(names.begin(), names.end());
                       std::string text;
                       for (const auto& name : names) text += quoted(name) + std::string(kCrLf);
                       const fs::path file = ctx.paths.presetPool() / kPresetListName;
                       if (!r.step("Open " + pathToUtf8(file) + " For Output", [&] {
                               fs::create_directories(file.parent_path());
                               writeFileReplacing(file, text);
                           }))
                           return std::nullopt;
                       ctx.ui.inform("PRINT PRESETS",
                                     "List of Presets Complete" + kBr + "The file " + kQ +
                                         kPresetListName + kQ + " is in the Preset Pool folder.",
                                     Icon::Information);
                       refreshLists(ctx.state);
                       return file;
                   })
        .value_or(std::nullopt);
}

}  // namespace tvk
