// tvk add-all [--drive-image FILE]: the transfer button "&Add ALL to Computer" on the stick.

#include "cli/CliCommand.h"
#include "cli/TransferCli.h"

namespace tvk::cli {

TVK_CLI_COMMAND(add_all, {"add-all", kTransferUsage,
                          "copy the whole stick into a new mirror folder in the library",
                          [](std::vector<std::string>& args, ConsoleInteraction& ui) {
                              return runTransfer(args, ui, 2);
                          }});

}  // namespace tvk::cli
