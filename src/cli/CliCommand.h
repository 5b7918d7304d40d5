#pragma once
// tvk's subcommands. Each lives in its own cli/*.cpp file and registers itself:
//
//   TVK_CLI_COMMAND(info, {"info", "FILE...", "show the file information panel's lines", runInfo});

#include <functional>
#include <string>
#include <vector>

namespace tvk::cli {

class ConsoleInteraction;

struct CliCommand {
    std::string name;
    std::string usage;    // arguments, for the help text
    std::string summary;  // one line
    // Returns the process exit code.
    std::function<int(std::vector<std::string>& args, ConsoleInteraction& ui)> run;
};

bool registerCliCommand(CliCommand command);
const std::vector<CliCommand>& cliCommands();

// Removes "--name VALUE" or "--name=VALUE" from args; nullopt-like empty when absent.
bool takeOption(std::vector<std::string>& args, const std::string& name, std::string& value);
bool takeFlag(std::vector<std::string>& args, const std::string& name);

}  // namespace tvk::cli

#define TVK_CLI_COMMAND(id, ...) \
    static const bool tvkCliRegistered_##id = ::tvk::cli::registerCliCommand(__VA_ARGS__)
