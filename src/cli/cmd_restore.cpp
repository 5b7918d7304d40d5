// tvk restore [--drive-image FILE] [--dry-run]: the transfer button "Restore TO &Thumbdrive" on the
// stick.

#include "cli/CliCommand.h"
#include "cli/TransferCli.h"

namespace tvk::cli {

TVK_CLI_COMMAND(restore,
                {"restore", kMirrorUsage, "restore the stick from its mirror folder in the library",
                 [](std::vector<std::string>& args, ConsoleInteraction& ui) {
                     return runTransfer(args, ui, 1);
                 }});

}  // namespace tvk::cli
