// tvk startup [SWITCHES]: the program's start-up without a window.
// tvk register [--location DIR] [--version V]: writes the installation record.

#include <iostream>

#include "app/Session.h"
#include "app/Startup.h"
#include "app/Text.h"
#include "app/Version.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"

namespace tvk::cli {
namespace {

std::string joined(const std::vector<std::string>& args) {
    std::string line;
    for (const auto& a : args) line += (line.empty() ? "" : " ") + a;
    return line;
}

int runStartup(std::vector<std::string>& args, ConsoleInteraction& ui) {
    Session session(makePlatformSystem(joined(args)), ui);
    Context ctx = session.context();
    const StartupOutcome outcome = FormLoad(ctx);
    if (outcome != StartupOutcome::Running) return 1;
    ui.out() << "Program folder: " << pathToUtf8(session.paths.programFolder) << "\n"
             << "Library root: " << pathToUtf8(session.paths.libraryRoot) << "\n"
             << "Settings file: " << pathToUtf8(session.paths.settingsFile()) << "\n";
    if (session.trace.debug) ui.out() << "Trace file: " << pathToUtf8(session.trace.file()) << "\n";
    return 0;
}

int runRegister(std::vector<std::string>& args, ConsoleInteraction& ui) {
    std::string location, version = programVersionText();
    takeOption(args, "--version", version);
    auto system = makePlatformSystem();
    std::filesystem::path folder = takeOption(args, "--location", location)
                                       ? pathFromUtf8(location)
                                       : system->currentDirectory();
    std::error_code ec;
    folder = std::filesystem::absolute(folder, ec);
    try {
        writeInstallationRecord(*system, folder, version);
    } catch (const std::exception& e) {
        ui.err() << "tvk: the installation record could not be written: " << e.what() << "\n";
        return 1;
    }
    ui.out() << "Installation record: InstallLocation=" << pathToUtf8(folder)
             << ", DisplayVersion=" << version << "\n";
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(startup, {"startup", "[+DEBUG|-DEBUG|+ERROR|-ERROR]...",
                          "run the program's start-up without a window", runStartup});
TVK_CLI_COMMAND(register_, {"register", "[--location DIR] [--version V]",
                            "write the installation record (as the installer does)", runRegister});

}  // namespace tvk::cli
