// tvk sort [--drive-image FILE]: renumbers the thumbdrive's presets and recordings in
// alphabetical order, with the window's question and report on the console. An
// interrupted sort of the same stick is offered for finishing or putting back first.

#include <iostream>

#include "app/CommonRoutines.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/SortFiles.h"

namespace tvk::cli {
namespace {

int runSort(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (!args.empty()) {
        ui.err() << "usage: tvk sort [--drive-image FILE]\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    if (!selectFirstDrive(ctx, ui) || !drives.lockStick(StickUse::Write)) return 1;
    if (!FolderExists(ctx, ctx.state.drive.tavrinFolder())) {
        ui.err() << "tvk: the thumbdrive has no TAVRIN folder ("
                 << pathToUtf8(ctx.state.drive.tavrinFolder()) << ")\n";
        return 1;
    }
    const SortReport report = btnSort_Click(ctx);
    for (const auto& name : report.leftAlone) ui.out() << "Left as it is: " << name << "\n";
    if (report.completed) {
        ui.out() << "Renamed " << report.renamed << " files.\n";
        // Renames per renamed file: one each, plus a temporary name per cycle of files
        // that trade names.
        ui.out() << "Renames: " << report.renames << "\n";
    }
    return report.completed ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(sort, {"sort", "[--drive-image FILE]",
                       "renumber the thumbdrive's presets and recordings alphabetically", runSort});

}  // namespace tvk::cli
