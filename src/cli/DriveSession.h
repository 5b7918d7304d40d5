#pragma once
// What tvk's drive commands share: "--drive-image FILE" (repeatable) attaches image
// files as if sticks were plugged in, and a session whose library is the user's.

#include <memory>
#include <string>
#include <vector>

#include "app/Session.h"
#include "cli/ConsoleInteraction.h"

namespace tvk::cli {

struct DriveSession {
    // Takes the --drive-image options out of args. With images given, only they are
    // drives; otherwise the machine's own removable drives are. Throws RuntimeError when
    // an image cannot be attached.
    DriveSession(std::vector<std::string>& args, ConsoleInteraction& ui);

    Session session;
    Context ctx;
};

// Fills the thumbdrive state with the first removable drive without the scan's
// questions, as the window has it after a scan. False (with a message) when none.
bool selectFirstDrive(Context& ctx, ConsoleInteraction& ui);

}  // namespace tvk::cli
