// tvk new-folder PARENT: Edit > New Folder; the name is read from standard input.

#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/ListCommands.h"

namespace tvk::cli {
namespace {

int runNewFolder(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (args.size() != 1) {
        ui.err() << "usage: tvk new-folder PARENT\n";
        return 2;
    }
    const auto made = mnuEditNewFldr_Click(drives.ctx, pathFromUtf8(args[0]));
    if (made) ui.out() << pathToUtf8(*made) << "\n";
    return made ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(new_folder, {"new-folder", "PARENT",
                             "make a folder in PARENT, named from standard input", runNewFolder});

}  // namespace tvk::cli
