// tvk update [--drive-image FILE] [--dry-run]: the transfer button "&Update FROM Thumbdrive" on the
// stick.

#include "cli/CliCommand.h"
#include "cli/TransferCli.h"

namespace tvk::cli {

TVK_CLI_COMMAND(update, {"update", kMirrorUsage,
                         "update the stick's mirror folder in the library from the stick",
                         [](std::vector<std::string>& args, ConsoleInteraction& ui) {
                             return runTransfer(args, ui, 0);
                         }});

}  // namespace tvk::cli
