#pragma once
// The main window's load, activate and unload work, without the window: the window's
// events and `tvk startup` call these.

#include <functional>
#include <optional>
#include <string>

#include "app/Context.h"

namespace tvk {

enum class StartupOutcome {
    Running,           // start-up completed; the window may show
    NotAdministrator,  // refused: the box was shown; the program ends
    AlreadyRunning,
    NoRegistryEntry,
};

struct Switches {
    bool debug = false;
    bool errorTrap = true;
};
// Looks for "-DEBUG", "+DEBUG", "-ERROR", "+ERROR" anywhere in the upper-cased command
// line, in that order; later tests win.
Switches parseSwitches(const std::string& commandLine);

// Start-up in the order the program has always followed: rights, switches, program
// folder, trace file, single instance, installation record, library tree, settings.
StartupOutcome FormLoad(Context& ctx);

struct ActivateHooks {
    std::function<void()> scanForDrives;     // the thumbdrive scan
    std::function<void()> startUpdateCheck;  // fetch the version page
};
// Each activation: the one-time "FORMAT CHANGE" notice; the first one also scans for a
// stick and starts the update check.
void FormActivate(Context& ctx, bool& activatedOnce, const ActivateHooks& hooks);

// True when `available` is a later version than `program`, compared as texts.
bool isNewerVersion(const std::string& program, const std::string& available);
// The version page arrived: offers the download when it names a newer version.
void bzrMainDownloadComplete(Context& ctx, const std::string& location, const std::string& title);

// Stores the main window's position when asked to, and writes the settings.
void FormUnload(Context& ctx, std::optional<WindowRect> mainWindow);

// Writes the installation record an installer writes: InstallLocation, DisplayVersion
// and DisplayName under the program's uninstall key.
void writeInstallationRecord(System& system, const std::filesystem::path& location,
                             const std::string& version);

}  // namespace tvk
