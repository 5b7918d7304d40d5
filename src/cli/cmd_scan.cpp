// tvk scan [--drive-image FILE]: the thumbdrive scan, then the chosen drive's properties
// and the drive information summary.

#include <iostream>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "drive/DriveInfo.h"
#include "drive/ScanForUSBs.h"
#include "library/TransferCommands.h"

namespace tvk::cli {
namespace {

int runScan(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    Context& ctx = drives.ctx;
    afterScan(ctx, ScanForUSBs(ctx));
    const ThumbDriveState& d = ctx.state.drive;
    if (d.letter.empty()) {
        ui.out() << "No thumbdrive found.\n";
        return 1;
    }
    DriveInfo info;
    try {
        info.Initialize(ctx, d.letter);
        ui.out() << toDisplayLines(info.ToString());
    } catch (const RuntimeError& e) {
        ui.out() << "The drive's properties could not be read: " << e.what() << "\n";
    }
    ui.out() << "\nDrive: " << d.letter << "  " << pathToUtf8(d.root) << "\n"
             << driveStatusText(d) << "\n"
             << "Thumbdrive folder: "
             << (d.tavrinPresent ? pathToUtf8(d.tavrinFolder()) : std::string("(none)")) << "\n"
             << "Accepted: " << (d.present ? "yes" : "no") << "\n";
    if (!ctx.state.driveInfoText.empty())
        ui.out() << toDisplayLines(ctx.state.driveInfoText) << "\n";
    return d.present ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(scan, {"scan", "[--drive-image FILE]",
                       "find and check the thumbdrive, then show its properties", runScan});

}  // namespace tvk::cli
