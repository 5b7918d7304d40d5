// tvk make-files DIR: a set of test preset and song files, as the Make Files dialog
// writes them.

#include <iostream>

#include "app/Session.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "organfiles/MakeFiles.h"

namespace tvk::cli {
namespace {

std::vector<std::string> splitList(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
        parts.push_back(trim(text.substr(start, comma - start)));
    parts.push_back(trim(text.substr(start)));
    return parts;
}

bool takeNumber(std::vector<std::string>& args, const std::string& name, long long& value,
                ConsoleInteraction& ui) {
    std::string text;
    if (!takeOption(args, name, text)) return true;
    try {
        std::size_t used = 0;
        value = std::stoll(text, &used);
        if (used == text.size() && value >= 0) return true;
    } catch (const std::exception&) {
    }
    ui.err() << "tvk make-files: " << name << " needs a whole number, not '" << text << "'\n";
    return false;
}

int runMakeFiles(std::vector<std::string>& args, ConsoleInteraction& ui) {
    MakeFilesRequest request;
    long long presets = request.presetsPerFamily, songs = request.songsPerFamily, seed = -1;
    if (!takeNumber(args, "--presets", presets, ui) || !takeNumber(args, "--songs", songs, ui) ||
        !takeNumber(args, "--seed", seed, ui))
        return 2;
    takeOption(args, "--suffix", request.suffix);
    std::string families;
    if (takeOption(args, "--families", families)) {
        request.families.clear();
        for (const Series s : {Series::SU, Series::A, Series::E})
            for (const auto& code : splitList(toUpperAscii(families)))
                if (code == seriesCode(s)) request.families.push_back(s);
        if (request.families.empty()) {
            ui.err() << "tvk make-files: --families takes SU, A and E, separated by commas\n";
            return 2;
        }
    }
    if (args.size() != 1) {
        ui.err() << "usage: tvk make-files DIR [--presets N] [--songs N] [--seed N] "
                    "[--suffix TEXT] [--families SU,A,E]\n";
        return 2;
    }
    request.parent = pathFromUtf8(args[0]);
    request.presetsPerFamily = static_cast<int>(std::min(presets, 1000LL));
    request.songsPerFamily = static_cast<int>(std::min(songs, 1000LL));

    Session session(makePlatformSystem(), ui);
    Context ctx = session.context();
    RandomSource random =
        seed >= 0 ? RandomSource(static_cast<std::uint32_t>(seed)) : RandomSource();
    const MakeFilesResult result = MakeFiles(ctx, request, random);
    ui.out() << result.written.size() << " files written to " << pathToUtf8(result.folder) << "\n";
    if (result.notWritten > 0)
        ui.out() << result.notWritten
                 << " not written: the organ numbers presets 1 to 250 and songs 1 to 40\n";
    return result.written.empty() && (presets > 0 || songs > 0) ? 1 : 0;
}

}  // namespace

TVK_CLI_COMMAND(make_files,
                {"make-files",
                 "DIR [--presets N] [--songs N] [--seed N] [--suffix TEXT] [--families SU,A,E]",
                 "write test preset and song files into DIR/FAKEPRFILES - ...", runMakeFiles});

}  // namespace tvk::cli
