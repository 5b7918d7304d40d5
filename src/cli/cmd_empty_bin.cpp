// tvk empty-bin: File > Empty Bin; the program's " Recycle Bin" folder goes to the
// system's recycle bin after the confirmation.

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/DeleteFiles.h"

namespace tvk::cli {
namespace {

int runEmptyBin(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (!args.empty()) {
        ui.err() << "usage: tvk empty-bin\n";
        return 2;
    }
    const DeleteReport report = mnuFileEmpty_Click(drives.ctx);
    for (const auto& name : report.deleted) ui.out() << "recycled " << name << "\n";
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(empty_bin,
                {"empty-bin", "",
                 "send the program's Recycle Bin folder to the system's recycle bin", runEmptyBin});

}  // namespace tvk::cli
