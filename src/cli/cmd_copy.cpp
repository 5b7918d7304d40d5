// tvk copy [--mode MODE] [--drive-image FILE] SOURCE DEST [NAME...]: the copy engine
// between two folders, as a drop or a paste runs it in the window.

#include <iostream>

#include "app/PlainFiles.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/CopyPaste.h"

namespace tvk::cli {
namespace {

constexpr const char* kUsage = "[--mode MODE] [--drive-image FILE] SOURCE DEST [NAME...]";

void printReport(std::ostream& out, const CopyReport& report) {
    for (const auto& c : report.copied) out << c.from << " -> " << c.to << "\n";
    for (const auto& name : report.skipped) out << "skipped: " << name << "\n";
    for (const auto& f : report.failures)
        out << "failed: " << f.name << " (error " << f.errorNumber << ")\n";
    out << report.copied.size() << " copied, " << report.skipped.size() << " skipped, "
        << report.failures.size() << " failed, " << report.duplicates << " duplicate names tried\n";
}

int runCopy(std::vector<std::string>& args, ConsoleInteraction& ui) {
    DriveSession drives(args, ui);
    std::string modeWord;
    const bool modeGiven = takeOption(args, "--mode", modeWord);
    const auto named = copyModeFromName(modeWord);
    if (args.size() < 2 || (modeGiven && !named)) {
        ui.err() << "usage: tvk copy " << kUsage << "\n"
                 << "MODE is LEFT, RIGHT, DIFF, flbDocs or flbUSB; " << kStickWord
                 << " names the stick's TAVRIN folder\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    const auto stick = attachStick(ctx);
    const auto source = folderArgument(ctx, ui, args[0]);
    const auto destination = folderArgument(ctx, ui, args[1]);
    if (!source || !destination) return 1;
    for (const auto& folder : {*source, *destination}) {
        std::error_code ec;
        if (!std::filesystem::is_directory(folder, ec)) {
            ui.err() << "tvk: " << pathToUtf8(folder) << " is not a folder\n";
            return 1;
        }
    }
    // Without names, every file in the order the window's list shows them.
    std::vector<std::string> names(args.begin() + 2, args.end());
    if (names.empty()) names = listPlainFiles(*source);

    if (!drives.lockStick(isOnStick(*destination, stick) ? StickUse::Write : StickUse::Read))
        return 1;
    const CopyMode mode = named ? *named : folderCopyMode(*source, *destination, stick);
    // The list a drop lands in: a list's name copies only there.
    ctx.state.activeList =
        isOnStick(*destination, stick) ? ListControl::flbUSB : ListControl::flbDocs;
    const CopyReport report =
        Copyfiles(ctx, copyRequest(ctx, std::move(names), *source, *destination, mode));
    printReport(ui.out(), report);
    return report.completed ? 0 : 1;
}

}  // namespace

TVK_CLI_COMMAND(copy, {"copy", kUsage,
                       "copy files between two folders with the copy engine (STICK is the "
                       "stick's TAVRIN folder)",
                       runCopy});

}  // namespace tvk::cli
