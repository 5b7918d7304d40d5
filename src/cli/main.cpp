// tvk: the program's commands without a window.

#include <iostream>
#include <string>
#include <vector>

#include "app/Routine.h"
#include "app/Version.h"
#include "cli/CliCommand.h"
#include "cli/Console.h"
#include "cli/ConsoleInteraction.h"
#include "drive/StickLock.h"

namespace {

void printHelp(std::ostream& out) {
    out << "usage: tvk [--yes | --no] [--verbose] COMMAND [ARGS]\n"
           "       tvk --version\n\n"
           "Message boxes are printed as [TITLE] text and answered from standard input by\n"
           "button name (Yes, No, OK, Cancel, Abort, Retry, Ignore); --yes or --no answer\n"
           "them all. Without an answer every box takes the cautious choice.\n\ncommands:\n";
    for (const auto& c : tvk::cli::cliCommands())
        out << "  " << c.name << (c.usage.empty() ? "" : " " + c.usage) << "\n      " << c.summary
            << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    using namespace tvk::cli;
    std::vector<std::string> args = commandLineArguments(argc, argv);
    useUtf8Console();
    ConsoleInteraction ui(std::cin, std::cout, std::cerr);
    if (takeFlag(args, "--yes")) ui.autoAnswer = AutoAnswer::Yes;
    if (takeFlag(args, "--no")) ui.autoAnswer = AutoAnswer::No;
    if (takeFlag(args, "--verbose")) ui.showStatus = true;

    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        printHelp(std::cout);
        return args.empty() ? 2 : 0;
    }
    if (args[0] == "--version") {
        std::cout << tvk::programVersionText() << "\n";
        return 0;
    }
    for (const auto& command : cliCommands()) {
        if (command.name != args[0]) continue;
        args.erase(args.begin());
        try {
            return command.run(args, ui);
        } catch (const tvk::ProgramEnd& end) {
            return end.exitCode;
        } catch (const tvk::StickBusy&) {
            // An image another command has attached: nothing was touched.
            tvk::showStickBusy(ui);
            return 1;
        } catch (const tvk::UntrappedError& e) {
            tvk::reportUntrappedError(ui, e.error);
            return 1;
        } catch (const std::exception& e) {
            std::cerr << "tvk: " << e.what() << "\n";
            return 1;
        }
    }
    std::cerr << "tvk: unknown command '" << args[0] << "' (see tvk --help)\n";
    return 2;
}
