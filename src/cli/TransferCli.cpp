#include "cli/TransferCli.h"

#include <iostream>

#include "cli/CliCommand.h"
#include "cli/DriveSession.h"
#include "library/TransferCommands.h"

namespace tvk::cli {

int runTransfer(std::vector<std::string>& args, ConsoleInteraction& ui, int index) {
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
    // Only the restore writes to the stick; the others copy from it.
    if (!drives.lockStick(index == 1 ? StickUse::Write : StickUse::Read)) return 1;
    const TransferReport report = btnUSB_Docs_Click(ctx, index);
    auto& out = ui.out();
    for (const auto& name : report.removed) out << "removed: " << name << "\n";
    for (const auto& c : report.copied) out << c.from << " -> " << c.to << "\n";
    for (const auto& name : report.skipped) out << "skipped: " << name << "\n";
    for (const auto& f : report.failures)
        out << "failed: " << f.name << " (error " << f.errorNumber << ")\n";
    if (report.declined) out << "Nothing was done.\n";
    out << report.copied.size() << " copied, " << report.removed.size() << " removed, "
        << report.failures.size() << " failed, " << report.duplicates << " duplicate names tried\n";
    return report.completed ? 0 : 1;
}

}  // namespace tvk::cli
