// tvk search TEXT: the content search over a folder, or over the thumbdrive's TAVRIN
// folder. Each match is the "MATCH FOUND" box, answered on the console.

#include <iostream>
#include <memory>

#include "app/Session.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "cli/DriveSession.h"
#include "organfiles/ContentSearch.h"

namespace tvk::cli {
namespace {

constexpr const char* kUsage =
    "TEXT [--folder DIR | --drive-image FILE] [--presets] [--recordings] [--whole-word] "
    "[--match-case] [--count-only]";

int runSearch(std::vector<std::string>& args, ConsoleInteraction& ui) {
    SearchRequest request;
    std::string folder;
    const bool inFolder = takeOption(args, "--folder", folder);
    request.presets = takeFlag(args, "--presets");
    request.recordings = takeFlag(args, "--recordings");
    request.wholeWord = takeFlag(args, "--whole-word");
    request.matchCase = takeFlag(args, "--match-case");
    request.countOnly = takeFlag(args, "--count-only");

    // The drive options are taken before the text, which may look like anything.
    std::unique_ptr<DriveSession> drives;
    std::unique_ptr<Session> plain;
    if (!inFolder) drives = std::make_unique<DriveSession>(args, ui);
    if (args.size() != 1) {
        ui.err() << "usage: tvk search " << kUsage << "\n";
        return 2;
    }
    request.text = args[0];
    Context ctx = inFolder
                      ? (plain = std::make_unique<Session>(makePlatformSystem(), ui))->context()
                      : drives->ctx;
    if (inFolder) {
        request.folder = pathFromUtf8(folder);
    } else {
        if (!selectFirstDrive(ctx, ui) || !drives->lockStick(StickUse::Read)) return 1;
        request.folder = ctx.state.drive.tavrinFolder();
    }
    const SearchReport report = btnSearch_Click(ctx, request);
    return report.matches > 0 ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(search,
                {"search", kUsage,
                 "look for a text among the names inside preset and recording files", runSearch});

}  // namespace tvk::cli
