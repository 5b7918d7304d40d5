#include "cli/CliCommand.h"

#include <algorithm>

namespace tvk::cli {

namespace {
std::vector<CliCommand>& registry() {
    static std::vector<CliCommand> commands;
    return commands;
}
}  // namespace

bool registerCliCommand(CliCommand command) {
    auto& all = registry();
    const auto at =
        std::lower_bound(all.begin(), all.end(), command.name,
                         [](const CliCommand& c, const std::string& n) { return c.name < n; });
    all.insert(at, std::move(command));
    return true;
}

const std::vector<CliCommand>& cliCommands() {
    return registry();
}

bool takeOption(std::vector<std::string>& args, const std::string& name, std::string& value) {
    for (auto it = args.begin(); it != args.end(); ++it) {
        if (*it == name && it + 1 != args.end()) {
            value = *(it + 1);
            args.erase(it, it + 2);
            return true;
        }
        if (it->rfind(name + "=", 0) == 0) {
            value = it->substr(name.size() + 1);
            args.erase(it);
            return true;
        }
    }
    return false;
}

bool takeFlag(std::vector<std::string>& args, const std::string& name) {
    const auto it = std::find(args.begin(), args.end(), name);
    if (it == args.end()) return false;
    args.erase(it);
    return true;
}

}  // namespace tvk::cli
