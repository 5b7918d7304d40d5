// tvk info FILE...: the file information panel's lines for each file.

#include <iostream>

#include "app/Session.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "organfiles/DisplayFileInfo.h"

namespace tvk::cli {
namespace {

int runInfo(std::vector<std::string>& args, ConsoleInteraction& ui) {
    if (args.empty()) {
        ui.err() << "usage: tvk info FILE...\n";
        return 2;
    }
    Session session(makePlatformSystem(), ui);
    Context ctx = session.context();
    std::string out;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i) out += '\n';
        out += toDisplayLines(DisplayFileInfo(ctx, pathFromUtf8(args[i])));
        out += '\n';
        // Flushed in batches: a thousand small writes would cost more than the reading.
        if (out.size() > 65536) {
            ui.out() << out;
            out.clear();
        }
    }
    ui.out() << out << std::flush;
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(info, {"info", "FILE...", "show the file information panel's lines", runInfo});

}  // namespace tvk::cli
