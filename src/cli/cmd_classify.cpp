// tvk classify NAME...: what the program makes of a file name.

#include <iostream>

#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "organfiles/OrganNames.h"

namespace tvk::cli {
namespace {

int runClassify(std::vector<std::string>& args, ConsoleInteraction& ui) {
    if (args.empty()) {
        ui.err() << "usage: tvk classify NAME...\n";
        return 2;
    }
    for (const auto& name : args) {
        const NameInfo info = classifyName(name);
        ui.out() << name << '\t' << fileKindText(info.kind) << '\t' << info.seriesLetter << '\t'
                 << nameTypeText(info.type) << '\t'
                 << (info.number ? std::to_string(*info.number) : std::string()) << '\n';
    }
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(classify, {"classify", "NAME...",
                           "kind, series letter, name type and number of file names", runClassify});

}  // namespace tvk::cli
