// tvk names FILE and tvk edit-names FILE: the preset name editor's boxes on the console.
// The view is the file's own name on a line "0<TAB>name", then one line a box in bank
// order, "A1<TAB>name".

#include <iostream>

#include "app/Session.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "organfiles/Cp1252.h"
#include "organfiles/PresetNames.h"

namespace tvk::cli {
namespace {

void printView(std::ostream& out, const PresetNames& names) {
    std::string text = "0\t" + names.fileName + "\n";
    for (const auto& box : names.boxes) text += box.code + "\t" + box.name + "\n";
    out << text << std::flush;
}

int runNames(std::vector<std::string>& args, ConsoleInteraction& ui) {
    if (args.size() != 1) {
        ui.err() << "usage: tvk names FILE\n";
        return 2;
    }
    Session session(makePlatformSystem(), ui);
    Context ctx = session.context();
    const auto names = loadPresetNames(ctx, pathFromUtf8(args[0]));
    if (!names) return 1;
    printView(ui.out(), *names);
    return 0;
}

// What a box accepts: at most `width` characters, each with a Windows-1252 byte.
bool acceptable(const std::string& text, std::size_t width, ConsoleInteraction& ui) {
    if (utf8Length(text) > width) {
        ui.err() << "tvk edit-names: \"" << text << "\" is longer than " << width
                 << " characters\n";
        return false;
    }
    if (!fitsCp1252(text)) {
        ui.err() << "tvk edit-names: \"" << text << "\" holds a character the organ cannot show\n";
        return false;
    }
    return true;
}

int runEditNames(std::vector<std::string>& args, ConsoleInteraction& ui) {
    std::string fileName;
    const bool newFileName = takeOption(args, "--file-name", fileName);
    if (args.empty()) {
        ui.err() << "usage: tvk edit-names FILE [--file-name NAME] [CODE=NAME]...\n";
        return 2;
    }
    Session session(makePlatformSystem(), ui);
    Context ctx = session.context();
    const auto file = pathFromUtf8(args[0]);
    const auto loaded = loadPresetNames(ctx, file);
    if (!loaded) return 1;

    PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
    if (newFileName) {
        if (!acceptable(fileName, kEditorFileNameWidth, ui)) return 2;
        edit.fileName = fileName;
    }
    for (std::size_t i = 1; i < args.size(); ++i) {
        const auto eq = args[i].find('=');
        const std::string code = args[i].substr(0, eq);
        const PresetNameBox* box = eq == std::string::npos ? nullptr : loaded->box(code);
        if (!box) {
            ui.err() << "tvk edit-names: '" << args[i] << "' is not CODE=NAME for a button of "
                     << seriesCode(loaded->family) << " presets\n";
            return 2;
        }
        const std::string name = args[i].substr(eq + 1);
        if (!acceptable(name, presetNameWidth(loaded->family), ui)) return 2;
        edit.names[static_cast<std::size_t>(box - loaded->boxes.data())] = name;
    }
    if (!commitPresetNames(ctx, *loaded, edit)) return 1;
    const auto after = loadPresetNames(ctx, file, "frmPresetRename.btnReload_Click");
    if (!after) return 1;
    printView(ui.out(), *after);
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(names, {"names", "FILE",
                        "print a preset file's own name and its registration names as the "
                        "name editor shows them",
                        runNames});
TVK_CLI_COMMAND(edit_names,
                {"edit-names", "FILE [--file-name NAME] [CODE=NAME]...",
                 "change names in a preset file as the name editor commits them", runEditNames});

}  // namespace tvk::cli
