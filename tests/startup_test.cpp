#include <gtest/gtest.h>

#include "app/Paths.h"
#include "app/Startup.h"
#include "app/Text.h"
#include "app/Version.h"
#include "support/TestContext.h"

namespace tvk {
namespace {

using test::TestContext;

void install(test::FakeSystem& sys, const std::filesystem::path& folder,
             const std::string& version) {
    sys.registry[{RegistryRoot::LocalMachine, kUninstallKey, "InstallLocation"}] =
        pathToUtf8(folder);
    sys.registry[{RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion"}] = version;
}

TEST(Switches, LaterTestsWinAndCaseDoesNotMatter) {
    const struct {
        const char* line;
        bool debug, trap;
    } cases[] = {
        {"", false, true},
        {"+debug", true, true},
        {"-DEBUG +DEBUG", true, true},
        {"+DEBUG -DEBUG", true, true},
        {"-ERROR", false, false},
        {"-error +Error", false, true},
        {"/x-debugger", false, true},
    };
    for (const auto& c : cases) {
        const Switches s = parseSwitches(c.line);
        EXPECT_EQ(s.debug, c.debug) << c.line;
        EXPECT_EQ(s.errorTrap, c.trap) << c.line;
    }
}

struct RefusalCase {
    const char* name;
    bool admin, otherInstance, installed;
    const char* title;
    StartupOutcome outcome;
    const char* text;       // nullptr: not checked here
    const char* traceLine;  // nullptr: not checked here
    int style;              // 0: not checked here
};

class StartupRefusals : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(StartupRefusals, ShowTheirBoxAndStop) {
    const RefusalCase& c = GetParam();
    TestContext t;
    t.fake->administrator = c.admin;
    t.fake->otherInstanceRunning = c.otherInstance;
    t.fake->commandLineText = "+DEBUG";
    t.fake->current = t.paths.programFolder;  // without InstallLocation: the current folder
    if (c.installed) install(*t.fake, t.paths.programFolder, programVersionText());
    t.ui.expect(c.title);
    Context ctx = t.ctx();
    EXPECT_EQ(FormLoad(ctx), c.outcome);
    EXPECT_TRUE(t.ui.done());
    if (c.text) {
        EXPECT_EQ(t.ui.shown.at(0).text, c.text);
    }
    if (c.style) {
        EXPECT_EQ(t.ui.shown.at(0).style(), c.style);
    }
    if (c.traceLine) {
        EXPECT_NE(t.traceText().find(c.traceLine), std::string::npos);
    }
    EXPECT_FALSE(std::filesystem::exists(t.fake->documents / kProductName / "TVK.ini"))
        << "nothing created";
    EXPECT_FALSE(std::filesystem::exists(t.paths.downloaded()));
}

INSTANTIATE_TEST_SUITE_P(
    All, StartupRefusals,
    ::testing::Values(
        RefusalCase{"NotAdministrator", false, false, true, "Tavrin File Manager",
                    StartupOutcome::NotAdministrator,
                    "This program needs Administrator privilages.\r\rRight-click on the file or "
                    "shortcut and select \r\n\"Run as administrator\"",
                    nullptr, 16},
        RefusalCase{"SecondInstance", true, true, true, "DUPLICATE INSTANCES PROHIBITED",
                    StartupOutcome::AlreadyRunning, nullptr, nullptr, 0},
        RefusalCase{"NoInstallationRecord", true, false, false, "NO REGISTRY ENTRY",
                    StartupOutcome::NoRegistryEntry,
                    "Can't get VERSION of Tavrin File Manager.\rIt doesn't appear in the "
                    "Registry.\r\rThis program will terminate.",
                    "NO VERSION IN REGISTRY\r\n* Terminating *\r\n", 0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Startup, CreatesTheLibraryTreeAndTheNextStartReadsIt) {
    TestContext t;
    install(*t.fake, t.paths.programFolder, programVersionText());
    std::filesystem::remove_all(t.paths.libraryRoot);
    Context ctx = t.ctx();
    ASSERT_EQ(FormLoad(ctx), StartupOutcome::Running);
    const auto root = t.fake->documents / kProductName;
    EXPECT_EQ(t.paths.libraryRoot, root);
    EXPECT_EQ(t.tree.list("home/Documents/Tavrin File Manager"),
              (std::vector<std::string>{"TVK.ini", "\u00A0Downloaded", "\u00A0Music Recordings",
                                        "\u00A0Preset Pool", "\u00A0Recycle Bin"}));
    EXPECT_FALSE(t.state.isEnabled("btnUSB_Docs_0"));
    EXPECT_FALSE(t.state.isEnabled("btnSort"));
    EXPECT_EQ(t.state.docsFolder, root);
    EXPECT_TRUE(t.ui.shown.empty());

    // The next start reads the settings and picks their series; a deleted pool comes back,
    // with its no-break space.
    std::filesystem::remove_all(t.paths.presetPool());
    test::writeFile(root / "TVK.ini", "Organ Series=3\r\nFormat Change=True\r\nEOF\r\n");
    TestContext again;
    again.fake->documents = t.fake->documents;
    install(*again.fake, again.paths.programFolder, programVersionText());
    Context ctx2 = again.ctx();
    ASSERT_EQ(FormLoad(ctx2), StartupOutcome::Running);
    EXPECT_TRUE(std::filesystem::is_directory(root / pathFromUtf8("\u00A0Preset Pool")));
    EXPECT_EQ(again.state.series, Series::E);
    EXPECT_TRUE(again.settings.formatChange);
}

TEST(Startup, DifferentInstalledVersionIsUpdated) {
    for (const char* installed : {"2020.0101.0001", "2099.0101.0001"}) {
        TestContext t;
        install(*t.fake, t.paths.programFolder, installed);
        t.ui.expect("TVK: UPDATE");
        Context ctx = t.ctx();
        ASSERT_EQ(FormLoad(ctx), StartupOutcome::Running);
        EXPECT_EQ(t.ui.shown.at(0).text, "Update to 2021.0922.1101 successful");
        EXPECT_EQ(
            std::get<std::string>(
                t.fake->registry[{RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion"}]),
            "2021.0922.1101");
    }
}

// An installed program folder is read-only to users: the trace goes to their state
// folder instead, and only when that fails too is the trace given up, with a box.
TEST(Startup, UnwritableProgramFolderSendsTheTraceToTheStateFolder) {
    const struct {
        const char* state;  // "" = the platform has no state folder
        bool traced;
    } cases[] = {
        {"state/tavrin-file-manager", true},
        {"blocker/tavrin-file-manager", false},  // a file stands where the folder would be
        {"", false},
    };
    for (const auto& c : cases) {
        TestContext t;
        install(*t.fake, t.tree.path("prog/missing/deeper"), programVersionText());
        t.tree.write("blocker", "a file");
        if (*c.state) t.fake->state = t.tree.path(c.state);
        t.fake->commandLineText = "+DEBUG";
        t.ui.lenient = true;  // a traced run's settings write closes the log (error 52)
        Context ctx = t.ctx();
        EXPECT_EQ(FormLoad(ctx), StartupOutcome::Running) << c.state;
        EXPECT_EQ(t.trace.debug, c.traced) << c.state;
        EXPECT_EQ(!t.ui.shown.empty() && t.ui.shown[0].title == "TRACE FILE", !c.traced) << c.state;
        if (c.traced) {
            const std::string log = t.tree.read(std::string(c.state) + "/TVK_ErrorLog.txt");
            EXPECT_NE(log.find("- |frmMain.Form_Load - ENTER\r\n"), std::string::npos) << log;
        }
    }
}

TEST(Startup, LibraryRootThatCannotBeMadeIsReported) {
    TestContext t;
    install(*t.fake, t.paths.programFolder, programVersionText());
    t.fake->documents = t.tree.write("blocked", "a file where Documents should be") / "Documents";
    t.ui.lenient = true;  // every later step fails the same way; Ignore is not the default
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Abort);
    t.fake->commandLineText = "+DEBUG";  // traced: Abort ends start-up's routine, not the program
    Context ctx = t.ctx();
    EXPECT_EQ(FormLoad(ctx), StartupOutcome::Running);
    ASSERT_FALSE(t.ui.shown.empty());
    EXPECT_NE(t.ui.shown[0].text.find("Encountered Err#76\rPath not found"), std::string::npos);
    EXPECT_NE(t.ui.shown[0].text.find("Task: MkDir "), std::string::npos);
    EXPECT_EQ(t.tree.read("blocked"), "a file where Documents should be");
}

TEST(Startup, FormatNoticeOnceAndTheFirstActivationScans) {
    TestContext t;
    Context ctx = t.ctx();
    int scans = 0, checks = 0;
    const ActivateHooks hooks{[&] { ++scans; }, [&] { ++checks; }};
    bool once = false;
    t.ui.expect("FORMAT CHANGE");
    FormActivate(ctx, once, hooks);
    FormActivate(ctx, once, hooks);
    EXPECT_EQ(scans, 1);
    EXPECT_EQ(checks, 1);
    EXPECT_TRUE(t.settings.formatChange);
    EXPECT_EQ(
        t.ui.shown.at(0).text,
        "With this version of TVK, there has been a change in the Presetname, file naming "
        "format.\r\rThe format \"Preset Name_#123.EPG\" is no longer used.\r\rYou will need to go "
        "through your folders on your computer and Convert them using the menu option:\r\rFile "
        "-> Convert");
}

TEST(UpdateCheck, OffersOnlyANewerVersion) {
    const struct {
        const char* location;
        const char* title;
        bool offered;
    } cases[] = {
        {"http://example.test/TVK/TVK.ver", " 2022.0101.0001 ", true},
        {"http://example.test/TVK/TVK.ver", "2021.0922.1101", false},
        {"http://example.test/TVK/TVK.ver", "2021.0101.0001", false},
        {"http://example.test/TVK/TVK.ver", "", false},
        {"http://example.test/TVK/clear.nav", "2099.0101.0001", false},
        {"http://", "2099.0101.0001", false},
        {"", "2099.0101.0001", false},
    };
    for (const auto& c : cases) {
        TestContext t;
        if (c.offered)
            t.ui.expect(std::string("VERSION ") + trim(c.title) + " AVAILABLE", Answer::Yes);
        Context ctx = t.ctx();
        bzrMainDownloadComplete(ctx, c.location, c.title);
        EXPECT_TRUE(t.ui.done()) << c.title;
        EXPECT_EQ(t.fake->started.size(), c.offered ? 1u : 0u) << c.title;
    }
}

TEST(Unload, RemembersRowZeroOnlyWhenAsked) {
    for (const bool remember : {false, true}) {
        TestContext t;
        t.settings.remWinPosit = remember;
        Context ctx = t.ctx();
        FormUnload(ctx, WindowRect{1, 2, 3, 4});
        EXPECT_EQ(t.settings.windows[0] == (WindowRect{1, 2, 3, 4}), remember);
        const std::string text = test::readFile(t.paths.settingsFile());
        EXPECT_EQ(text.find("Win Left=1\r\n") != std::string::npos, remember);
    }
}

}  // namespace
}  // namespace tvk
