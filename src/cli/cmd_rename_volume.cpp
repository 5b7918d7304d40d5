// tvk rename-volume LABEL [--drive-image FILE]: gives the thumbdrive a new volume label
// through the rename command (its confirmation is asked on the console).

#include <iostream>

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "drive/ScanForUSBs.h"
#include "drive/VolumeCommands.h"

namespace tvk::cli {
namespace {

int runRenameVolume(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    if (args.size() != 1) {
        ui.err() << "usage: tvk rename-volume LABEL [--drive-image FILE]\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    if (!selectFirstDrive(ctx, ui) || !drives.lockStick(StickUse::Write)) return 1;
    ui.promptAnswers.push_back(args[0]);
    btnRenameVol_Click(ctx);
    const ThumbDriveState& d = ctx.state.drive;
    ui.out() << driveStatusText(d) << "\n";
    return d.volumeName == volumeLabelFromAnswer(args[0]) ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(rename_volume,
                {"rename-volume", "LABEL [--drive-image FILE]",
                 "give the thumbdrive a new volume name (11 characters)", runRenameVolume});

}  // namespace tvk::cli
