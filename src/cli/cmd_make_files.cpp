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
    if (args.size() != 1) {
        ui.err() << "usage: tvk make-files DIR [--presets N] [--songs N] [--seed N] "
                    "[--suffix TEXT]\n";
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
                {"make-files", "DIR [--presets N] [--songs N] [--seed N] [--suffix TEXT]",
                 "write test preset and song files into DIR/FAKEPRFILES - ...", runMakeFiles});

}  // namespace tvk::cli
