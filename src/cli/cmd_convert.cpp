// tvk convert FOLDER [--drive-image FILE]: File > Convert over every file of FOLDER
// ("Waltz_#012.EPG" becomes "Waltz.EPG").

#include "app/PlainFiles.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/ListCommands.h"

namespace tvk::cli {
namespace {

int runConvert(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (args.size() != 1) {
        ui.err() << "usage: tvk convert FOLDER|STICK [--drive-image FILE]\n";
        return 2;
    }
    const auto folder = folderArgument(drives.ctx, ui, args[0]);
    if (!folder || !drives.lockStick(StickUse::Write)) return 1;
    const ConvertReport report =
        mnuFileConvert_Click(drives.ctx, {ListControl::flbDocs, *folder, listPlainFiles(*folder)});
    for (const auto& [from, to] : report.renamed) ui.out() << from << " -> " << to << "\n";
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(convert, {"convert", "FOLDER [--drive-image FILE]",
                          "take the old \"_#number\" out of the file names of FOLDER", runConvert});

}  // namespace tvk::cli
