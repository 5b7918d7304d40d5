#include "cli/TransferCli.h"

#include <iostream>

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/TransferCommands.h"

namespace tvk::cli {

namespace {

// One line per file, then the totals; nothing was changed.
void printDryRun(std::ostream& out, const TransferReport& report) {
    int copy = 0, replace = 0, unchanged = 0, remove = 0;
    for (const auto& line : report.lines) {
        out << line.action << " " << line.from;
        if (line.action == "remove") {
            out << " (" << (line.where.rfind("the ", 0) == 0 ? "to " : "") << line.where << ")\n";
            ++remove;
            continue;
        }
        out << " -> " << line.to << "\n";
        (line.action == "copy" ? copy : line.action == "replace" ? replace : unchanged)++;
    }
    out << copy << " to copy, " << replace << " to replace, " << unchanged << " unchanged, "
        << remove << " to remove; nothing was changed\n";
}

}  // namespace

int runTransfer(std::vector<std::string>& args, ConsoleInteraction& ui, int index) {
    const bool dryRun = index <= 1 && takeFlag(args, "--dry-run");
    DriveSession drives(args, ui);
    if (!args.empty()) {
        ui.err() << "tvk: unexpected argument '" << args.front() << "'\n";
        return 2;
    }
    Context& ctx = drives.ctx;
    if (attachStick(ctx).empty()) {
        ui.err() << "tvk: no attached stick with a TAVRIN folder (use --drive-image FILE for an "
                    "image)\n";
        return 1;
    }
    // The restore writes to the stick, and so may an update that finishes an unfinished
    // restore first; the others, and the dry runs, only read it.
    const bool writes = index <= 1 && !dryRun;
    if (!drives.lockStick(writes ? StickUse::Write : StickUse::Read)) return 1;
    const TransferReport report = btnUSB_Docs_Click(ctx, index, dryRun);
    auto& out = ui.out();
    if (dryRun) {
        printDryRun(out, report);
        return report.completed ? 0 : 1;
    }
    for (const auto& name : report.removed) out << "removed: " << name << "\n";
    for (const auto& c : report.copied) out << c.from << " -> " << c.to << "\n";
    for (const auto& name : report.skipped) out << "skipped: " << name << "\n";
    for (const auto& f : report.failures)
        out << "failed: " << f.name << " (error " << f.errorNumber << ")\n";
    if (report.declined) out << "Nothing was done.\n";
    if (index == 0)
        out << report.copied.size() << " copied, " << report.unchanged.size() << " unchanged, "
            << report.removed.size() << " removed to the recycle bin, " << report.failures.size()
            << " failed\n";
    else
        out << report.copied.size() << " copied, " << report.removed.size() << " removed, "
            << report.failures.size() << " failed, " << report.duplicates
            << " duplicate names tried\n";
    return report.completed ? 0 : 1;
}

}  // namespace tvk::cli
