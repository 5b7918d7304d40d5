#include "app/StickFaults.h"

#include <filesystem>

#include "app/DiskSpace.h"
#include "app/Interaction.h"
#include "app/Text.h"

namespace tvk {

bool stickGone(const Context& ctx) {
    const ThumbDriveState& d = ctx.state.drive;
    if (!d.present) return false;
    std::error_code ec;
    return !std::filesystem::is_directory(d.tavrinFolder(), ec);
}

bool stickWritable(Context& ctx, Routine& r) {
    if (ctx.state.drive.root.empty()) return true;  // a folder named as the stick, no drive
    bool readOnly = false;
    if (!stickStep(r, "Measure the free space of " + pathToUtf8(ctx.state.drive.root),
                   [&] { readOnly = diskSpace(ctx.state.drive.root).readOnly; }))
        return false;
    if (!readOnly) return true;
    ctx.ui.message(Message{"THUMBDRIVE WRITE-PROTECTED",
                           "The thumbdrive is write-protected.\r\rNothing was changed. Remove the "
                           "protection and try again.",
                           Buttons::Ok, Icon::Exclamation, 1});
    return false;
}

bool stickReady(Context& ctx, Routine& r) {
    try {
        return stickWritable(ctx, r);
    } catch (const StickRemoved&) {
        return false;
    }
}

void showStickRemoved(Context& ctx, std::size_t done, std::size_t total,
                      const std::string& whatIsWhere) {
    ctx.ui.message(Message{"THUMBDRIVE REMOVED",
                           std::to_string(done) + " of " + std::to_string(total) +
                               " files were done." + "\r\r" + whatIsWhere,
                           Buttons::Ok, Icon::Exclamation, 1});
}

}  // namespace tvk
