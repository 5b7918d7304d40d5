#include "app/Startup.h"

#include "app/CommonRoutines.h"
#include "app/IniFile.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "app/Version.h"

namespace tvk {

namespace {

const std::string kLb(kLineBreak), kBl(kBlankLine), kQ(kQuote);

// The developer's own machine starts in the program folder.
constexpr const char* kDeveloperUser = "tvkdev";
constexpr const char* kDeveloperDomain = "TVK-DEVBOX";

void refuse(Context& ctx, Routine* r, const Message& box) {
    ctx.ui.message(box);
    if (r) r->detail("* Terminating *");
}

void makeFolder(Context& ctx, Routine& r, const std::filesystem::path& folder) {
    if (FolderExists(ctx, folder)) return;
    r.step("MkDir " + pathToUtf8(folder), [&] {
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        throwIfError(ec, pathToUtf8(folder));
    });
}

// Opens the trace in the program folder or, where that cannot be written (a package's
// folder under /usr), in the user's state folder, so a traced start never loses its log.
void openTrace(Context& ctx) {
    const auto file = ctx.paths.traceFile();
    try {
        ctx.trace.open(file);
        return;
    } catch (const RuntimeError& e) {
        const auto state = ctx.system.stateFolder();
        if (!state.empty()) {
            std::error_code ec;
            std::filesystem::create_directories(state, ec);
            try {
                ctx.trace.open(state / file.filename());
                return;
            } catch (const RuntimeError&) {
                // reported below with the program folder's own failure
            }
        }
        // Without its log the program still works; say where the log could not go.
        ctx.trace.debug = false;
        ctx.ui.message(Message{"TRACE FILE",
                               "The trace file could not be created:" + kLb + pathToUtf8(file) +
                                   kBl + e.description() + kBl +
                                   "The program will run without the trace.",
                               Buttons::Ok, Icon::Exclamation, 1});
    }
}

}  // namespace

Switches parseSwitches(const std::string& commandLine) {
    const std::string upper = toUpperAscii(commandLine);
    Switches s;
    if (upper.find("-DEBUG") != std::string::npos) s.debug = false;
    if (upper.find("+DEBUG") != std::string::npos) s.debug = true;
    if (upper.find("-ERROR") != std::string::npos) s.errorTrap = false;
    if (upper.find("+ERROR") != std::string::npos) s.errorTrap = true;
    return s;
}

namespace {

bool refuseWithoutAdministrator(Context& ctx) {
    if (ctx.system.isAdministrator()) return false;
    refuse(ctx, nullptr,
           Message{kProductName,
                   "This program needs Administrator privilages." + kBl +
                       "Right-click on the file or shortcut and select " + std::string(kCrLf) + kQ +
                       "Run as administrator" + kQ,
                   Buttons::Ok, Icon::Critical, 1});
    return true;
}

// The switches, the program folder and the trace, which every later step writes to.
void prepareTrace(Context& ctx) {
    const Switches switches = parseSwitches(ctx.system.commandLine());
    ctx.trace.debug = switches.debug;
    ctx.trace.errorTrap = switches.errorTrap;
    const std::string location =
        regQuery_A_Key(ctx, RegistryRoot::LocalMachine, kUninstallKey, "InstallLocation");
    ctx.paths.programFolder =
        location.empty() ? ctx.system.currentDirectory() : pathFromUtf8(location);
    if (ctx.trace.debug) openTrace(ctx);
}

bool refuseSecondInstance(Context& ctx, Routine& r) {
    if (ctx.system.acquireSingleInstance()) return false;
    refuse(ctx, &r,
           Message{"DUPLICATE INSTANCES PROHIBITED",
                   "The " + kQ + kProductName + kQ + " is already running.", Buttons::Ok,
                   Icon::Exclamation, 1});
    return true;
}

// Refuses to run without an installation record; records an update to this version.
bool refuseWithoutRegistryEntry(Context& ctx, Routine& r) {
    const std::string installed =
        regQuery_A_Key(ctx, RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion");
    const std::string version = programVersionText();
    if (installed.empty()) {
        r.detail("NO VERSION IN REGISTRY");
        refuse(
            ctx, &r,
            Message{"NO REGISTRY ENTRY",
                    std::string("Can't get VERSION of ") + kProductName + "." + kLb +
                        "It doesn't appear in the Registry." + kBl + "This program will terminate.",
                    Buttons::Ok, Icon::Critical, 1});
        return true;
    }
    if (installed != version) {
        r.detail("SOFTWARE UPDATE");
        regCreate_Key_Value(ctx, RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion",
                            version);
        ctx.ui.message(Message{"TVK: UPDATE", "Update to " + version + " successful", Buttons::Ok,
                               Icon::Information, 1});
    }
    return false;
}

// The commands that need a stick stay grey until a scan finds one.
void greyStickCommands(Context& ctx) {
    for (int i = 0; i < 5; ++i) ctx.state.enabled[controlName("btnUSB_Docs", i)] = false;
    for (const char* c : {"btnSort", "btnRenameVol", "btnCompare"}) ctx.state.enabled[c] = false;
}

void enterDeveloperFolder(Context& ctx, Routine& r) {
    if (ctx.system.environment("USERNAME") != std::optional<std::string>(kDeveloperUser) ||
        ctx.system.environment("USERDOMAIN") != std::optional<std::string>(kDeveloperDomain))
        return;
    r.step("ChDir " + pathToUtf8(ctx.paths.programFolder),
           [&] { ctx.system.setCurrentDirectory(ctx.paths.programFolder); });
}

void makeLibraryFolders(Context& ctx, Routine& r) {
    ctx.paths.libraryRoot = ctx.system.documentsFolder() / kProductName;
    makeFolder(ctx, r, ctx.paths.libraryRoot);
    for (const auto& folder : {ctx.paths.downloaded(), ctx.paths.musicRecordings(),
                               ctx.paths.presetPool(), ctx.paths.recycleBin()})
        makeFolder(ctx, r, folder);
}

// Reads the settings (or writes the defaults) and opens the views on the library.
void loadSettings(Context& ctx) {
    if (FileExists(ctx, ctx.paths.settingsFile())) {
        ReadIniFile(ctx);
    } else {
        WriteIniFile(ctx, true);
    }
    ctx.state.series = seriesFromNumber(ctx.settings.organSeries);
    ctx.state.docsFolder = ctx.paths.libraryRoot;
    ctx.state.pattern = "*.*";
    ctx.state.usbPattern = "*.*";
}

}  // namespace

StartupOutcome FormLoad(Context& ctx) {
    if (refuseWithoutAdministrator(ctx)) return StartupOutcome::NotAdministrator;
    prepareTrace(ctx);

    StartupOutcome outcome = StartupOutcome::Running;
    routine(ctx, "frmMain.Form_Load", [&](Routine& r) {
        if (refuseSecondInstance(ctx, r)) {
            outcome = StartupOutcome::AlreadyRunning;
            return;
        }
        if (const auto common = ctx.system.environment("CommonProgramFiles(x86)"))
            ctx.paths.commonProgramFiles = pathFromUtf8(*common) / kProductName;
        if (refuseWithoutRegistryEntry(ctx, r)) {
            outcome = StartupOutcome::NoRegistryEntry;
            return;
        }
        if (const auto local = ctx.system.environment("LOCALAPPDATA"))
            ctx.paths.localAppData = pathFromUtf8(*local) / "Morvel Services" / kProductName;
        greyStickCommands(ctx);
        enterDeveloperFolder(ctx, r);
        makeLibraryFolders(ctx, r);
        loadSettings(ctx);
    });
    return outcome;
}

void FormActivate(Context& ctx, bool& activatedOnce, const ActivateHooks& hooks) {
    routine(ctx, "frmMain.Form_Activate", [&](Routine&) {
        if (!ctx.settings.formatChange) {
            ctx.ui.message(Message{
                "FORMAT CHANGE",
                "With this version of TVK, there has been a change in the Presetname, file naming "
                "format." +
                    kBl + "The format " + kQ + "Preset Name_#123.EPG" + kQ + " is no longer used." +
                    kBl +
                    "You will need to go through your folders on your computer and Convert them "
                    "using the menu option:" +
                    kBl + "File -> Convert",
                Buttons::Ok, Icon::Information, 1});
            ctx.settings.formatChange = true;
        }
        if (!activatedOnce) {
            activatedOnce = true;
            if (hooks.scanForDrives) hooks.scanForDrives();
            if (hooks.startUpdateCheck) hooks.startUpdateCheck();
        }
    });
}

bool isNewerVersion(const std::string& program, const std::string& available) {
    return program < available;
}

void bzrMainDownloadComplete(Context& ctx, const std::string& location, const std::string& title) {
    routine(ctx, "frmMain.bzrMain_DownloadComplete", [&](Routine& r) {
        const auto scheme = location.find("://");
        const bool noHost = scheme != std::string::npos && scheme + 3 == location.size();
        if (location.empty() || noHost || endsWith(location, "/TVK/clear.nav")) return;

        const std::string available = trim(title);
        if (!isNewerVersion(programVersionText(), available)) return;
        const Answer a =
            ctx.ui.message(Message{"VERSION " + available + " AVAILABLE",
                                   "There is a NEW version available for download." + kBl +
                                       "Do you want to download and install now?",
                                   Buttons::YesNo, Icon::Question, 1});
        if (a != Answer::Yes) return;
        const auto downloader = ctx.paths.downloader();
        r.setTask("Execute file: " + pathToUtf8(downloader));
        if (!ctx.system.startDetached(downloader)) {
            ctx.ui.message(Message{"DOWNLOAD",
                                   "The downloader could not be started:" + kLb +
                                       pathToUtf8(downloader) + kBl +
                                       "Please download the new version from the maker's web site.",
                                   Buttons::Ok, Icon::Exclamation, 1});
        }
    });
}

void FormUnload(Context& ctx, std::optional<WindowRect> mainWindow) {
    routine(ctx, "frmMain.Form_Unload", [&](Routine&) {
        if (ctx.settings.remWinPosit && mainWindow) ctx.settings.windows[0] = *mainWindow;
        WriteIniFile(ctx, false);
    });
}

void writeInstallationRecord(System& system, const std::filesystem::path& location,
                             const std::string& version) {
    system.regSet(RegistryRoot::LocalMachine, kUninstallKey, "InstallLocation",
                  pathToUtf8(location));
    system.regSet(RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion", version);
    system.regSet(RegistryRoot::LocalMachine, kUninstallKey, "DisplayName", kProductName);
}

}  // namespace tvk
