// tvk pool-recordings [--drive-image FILE]: the transfer button "Add &USB Recordings" on the stick.

#include "cli/CliCommand.h"
#include "cli/TransferCli.h"

namespace tvk::cli {

TVK_CLI_COMMAND(pool_recordings, {"pool-recordings", kTransferUsage,
                                  "copy the stick's recordings into Music Recordings",
                                  [](std::vector<std::string>& args, ConsoleInteraction& ui) {
                                      return runTransfer(args, ui, 4);
                                  }});

}  // namespace tvk::cli
