// tvk format [--drive-image FILE]: formats the thumbdrive FAT through the format command
// (its confirmations are asked on the console) and makes the TAVRIN folder again.

#include <iostream>

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "drive/ScanForUSBs.h"
#include "drive/VolumeCommands.h"

namespace tvk::cli {
namespace {

int runFormat(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (!args.empty()) {
        ui.err() << "usage: tvk format [--drive-image FILE]\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    if (!selectFirstDrive(ctx, ui) || !drives.lockStick(StickUse::Write)) return 1;
    mnuFileFormat_Click(ctx);
    const ThumbDriveState& d = ctx.state.drive;
    ui.out() << "File system: " << d.fileSystem << "\n" << driveStatusText(d) << "\n";
    return d.present ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(format, {"format", "[--drive-image FILE]",
                         "format the thumbdrive FAT and make its TAVRIN folder", runFormat});

}  // namespace tvk::cli
