// tvk print-presets FOLDER [--drive-image FILE]: File > Print Preset Pool; the names of
// FOLDER's files go to "ListOfPresets.txt" in the Preset Pool.

#include "app/PlainFiles.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/ListCommands.h"

namespace tvk::cli {
namespace {

int runPrintPresets(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (args.size() != 1) {
        ui.err() << "usage: tvk print-presets FOLDER|STICK [--drive-image FILE]\n";
        return 2;
    }
    const auto folder = folderArgument(drives.ctx, ui, args[0]);
    if (!folder || !drives.lockStick(StickUse::Read)) return 1;
    const auto written = mnuFilePrint_Click(drives.ctx, listPlainFiles(*folder));
    if (written) ui.out() << pathToUtf8(*written) << "\n";
    return written ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(print_presets,
                {"print-presets", "FOLDER [--drive-image FILE]",
                 "list FOLDER's files in ListOfPresets.txt in the Preset Pool", runPrintPresets});

}  // namespace tvk::cli
