// tvk pool-presets [--drive-image FILE]: the transfer button "Add &USB Presets to Pool" on the
// stick.

#include "cli/CliCommand.h"
#include "cli/TransferCli.h"

namespace tvk::cli {

TVK_CLI_COMMAND(pool_presets,
                {"pool-presets", kTransferUsage, "copy the stick's presets into the Preset Pool",
                 [](std::vector<std::string>& args, ConsoleInteraction& ui) {
                     return runTransfer(args, ui, 3);
                 }});

}  // namespace tvk::cli
