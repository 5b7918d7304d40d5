#pragma once
// What tvk's drive commands share: "--drive-image FILE" (repeatable) attaches image
// files as if sticks were plugged in, and a session whose library and settings
// ("TVK.ini" in the library) are the user's.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/Session.h"
#include "cli/ConsoleInteraction.h"
#include "drive/StickLock.h"

namespace tvk::cli {

struct DriveSession {
    // Takes the --drive-image options out of args. With images given, only they are
    // drives; otherwise the machine's own removable drives are. Throws RuntimeError when
    // an image cannot be attached. The user's settings are read as the window reads
    // them; without a settings file the defaults hold.
    DriveSession(std::vector<std::string>& args, ConsoleInteraction& ui);

    // Takes the lock of the drive the command works on (selected before): false, after
    // "THUMBDRIVE BUSY", when another command of the program holds it. Kept until the
    // session ends.
    bool lockStick(StickUse use);

    Session session;
    Context ctx;
    std::optional<StickLock> stickLock;
};

// Fills the thumbdrive state with the first removable drive without the scan's
// questions, as the window has it after a scan. False (with a message) when none.
bool selectFirstDrive(Context& ctx, ConsoleInteraction& ui);

// The word that names the stick's TAVRIN folder on the command line.
inline constexpr const char* kStickWord = "STICK";

// Takes the first removable drive as attached when it has a TAVRIN folder, as an
// accepted scan leaves it, and returns that folder; empty (and nothing said) otherwise.
std::filesystem::path attachStick(Context& ctx);

// A folder argument: STICK for the attached stick's TAVRIN folder (nullopt, with a
// message, when there is none), anything else a path.
std::optional<std::filesystem::path> folderArgument(Context& ctx, ConsoleInteraction& ui,
                                                    const std::string& word);

}  // namespace tvk::cli
