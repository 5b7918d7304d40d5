// tvk delete LIST FOLDER [NAME...] [--drive-image FILE]: Edit > Delete. flbDocs files go
// to the system's recycle bin, flbUSB files into the program's " Recycle Bin" folder;
// "dirDocs FOLDER" deletes the folder itself. Boxes are answered from standard input.

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/DeleteFiles.h"
#include "library/Selection.h"

namespace tvk::cli {
namespace {

int runDelete(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    const ListControl list = args.empty() ? ListControl::None : listControlFromName(args[0]);
    const bool tree = list == ListControl::dirDocs;
    if ((tree && args.size() != 2) || (!tree && (args.size() < 3 || !isFileList(list)))) {
        ui.err() << "usage: tvk delete flbDocs|flbUSB FOLDER|STICK NAME... [--drive-image FILE]\n"
                    "       tvk delete dirDocs FOLDER\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    const auto folder = folderArgument(ctx, ui, args[1]);
    if (!folder || !drives.lockStick(StickUse::Write)) return 1;
    ListSelection selection{list, *folder, {}};
    if (!tree) {
        // Selecting the names fills the selected-file table as a click does.
        const std::vector<std::string> names(args.begin() + 2, args.end());
        fileListClick(ctx, {list, *folder, {}, names, names.size()});
        selection.names = ctx.state.selected;
    }
    const DeleteReport report = mnuEditDelete_Click(ctx, selection);
    for (std::size_t i = 0; i < report.deleted.size(); ++i) {
        ui.out() << "deleted " << report.deleted[i];
        if (i < report.binNames.size()) ui.out() << " -> Recycle Bin/" << report.binNames[i];
        ui.out() << "\n";
    }
    const std::size_t wanted = tree ? 1 : selection.names.size();
    return report.deleted.size() == wanted ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(delete,
                {"delete", "LIST FOLDER [NAME...] [--drive-image FILE]",
                 "delete files of flbDocs/flbUSB, or the folder of dirDocs, to a recycle bin",
                 runDelete});

}  // namespace tvk::cli
