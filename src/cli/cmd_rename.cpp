// tvk rename LIST FOLDER NAME [--drive-image FILE]: File > Rename on one file of a list;
// the prompts are answered from standard input, one line each.

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/ListFiles.h"
#include "library/RenameFile.h"

namespace tvk::cli {
namespace {

int runRename(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    const ListControl list = args.empty() ? ListControl::None : listControlFromName(args[0]);
    if (args.size() != 3 || !isFileList(list)) {
        ui.err() << "usage: tvk rename flbDocs|flbUSB FOLDER|STICK NAME [--drive-image FILE]\n";
        return 2;
    }
    const auto folder = folderArgument(drives.ctx, ui, args[1]);
    if (!folder || !drives.lockStick(StickUse::Write)) return 1;
    const RenameReport report = mnuFileRename_Click(drives.ctx, {list, *folder, args[2]});
    if (report.renamed) ui.out() << report.newName << "\n";
    return report.renamed ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(rename, {"rename", "LIST FOLDER NAME [--drive-image FILE]",
                         "rename or renumber one file of flbDocs or flbUSB (FOLDER may be STICK)",
                         runRename});

}  // namespace tvk::cli
