#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "app/CommonRoutines.h"
#include "app/Paths.h"
#include "app/RegistryFile.h"
#include "app/Text.h"
#include "app/Trash.h"
#include "support/ScriptedInteraction.h"
#include "support/TestContext.h"

namespace tvk {
namespace {

using test::TestContext;

TEST(CommonRoutines, ExistenceTestsFollowTheFileSearchRulesAndTrace) {
    TestContext t;
    t.traceToFile();
    Context ctx = t.ctx();
    t.tree.write("d/plain.SPG", "x");
    t.tree.write("d/.hidden", "x");
    t.tree.write("d/\u00A0Preset Pool/x.spg", "x");
    const struct {
        const char* path;
        bool file, folder;
    } cases[] = {
        {"d/plain.SPG", true, true},  // a file counts as a folder too
        {"d/.hidden", false, false},  // hidden files are absent
        {"d/\u00A0Preset Pool", false, true},
        {"d/missing", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileExists(ctx, t.tree.path(c.path)), c.file) << c.path;
        EXPECT_EQ(FolderExists(ctx, t.tree.path(c.path)), c.folder) << c.path;
    }
    const std::string p = pathToUtf8(t.tree.path("d/missing"));
    EXPECT_NE(t.traceText().find("- |CodeModule.FileExists - ENTER\r\nChecking " + p +
                                 "\r\nCheck existing file: " + p + "\r\nResult = FALSE\r\n"),
              std::string::npos);
}

TEST(CommonRoutines, DriveEmptyCountsFilesAndFolders) {
    TestContext t;
    Context ctx = t.ctx();
    t.tree.mkdir("empty");
    t.tree.mkdir("folderonly/TAVRIN");
    t.tree.write("fileonly/x.mp3", "x");
    t.tree.write("labelonly/DEMO STICK", "");
    t.tree.write("hiddenonly/.Trash-0", "");
    EXPECT_TRUE(DriveEmpty(ctx, t.tree.path("empty")));
    EXPECT_FALSE(DriveEmpty(ctx, t.tree.path("folderonly")));
    EXPECT_FALSE(DriveEmpty(ctx, t.tree.path("fileonly")));
    EXPECT_TRUE(DriveEmpty(ctx, t.tree.path("labelonly"), {"DEMO STICK"}));
    EXPECT_TRUE(DriveEmpty(ctx, t.tree.path("hiddenonly")));

    // A drive that is gone is an error for the handler, not "empty".
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Abort);
    t.trace.debug = true;  // traced: Abort ends only the routine
    EXPECT_FALSE(DriveEmpty(ctx, t.tree.path("unplugged")));
}

TEST(CommonRoutines, RecycleModeOneGoesToTheTrashAndCanBeRestored) {
    TVK_LINUX_ONLY("the freedesktop trash");
    TestContext t(makePlatformSystem());
    test::ScopedEnv data("XDG_DATA_HOME", pathToUtf8(t.tree.path("data")));
    Context ctx = t.ctx();
    const auto file = t.tree.write("lib/My Preset_#007.SPG", "registration");
    ASSERT_TRUE(Recycle(ctx, file, 1));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(t.tree.read("data/Trash/files/My Preset_#007.SPG"), "registration");
    const std::string info = t.tree.read("data/Trash/info/My Preset_#007.SPG.trashinfo");
    EXPECT_NE(info.find("Path=" + pathToUtf8(t.tree.path("lib")) + "/My%20Preset_%23007.SPG\n"),
              std::string::npos)
        << info;

    // A second file of the same name does not overwrite the first in the trash.
    const auto again = t.tree.write("lib/My Preset_#007.SPG", "second");
    ASSERT_TRUE(Recycle(ctx, again, 1));
    EXPECT_EQ(t.tree.read("data/Trash/files/My Preset_#007.SPG.2"), "second");
    EXPECT_FALSE(Recycle(ctx, t.tree.path("lib/gone.SPG"), 1));
}

TEST(CommonRoutines, RecycleOtherModesAskThenDeleteForGood) {
    TestContext t;
    Context ctx = t.ctx();
    const auto file = t.tree.write("lib/a.mp3", "x");
    t.ui.expect("Delete File", Answer::No);
    EXPECT_FALSE(Recycle(ctx, file, 0));
    EXPECT_TRUE(std::filesystem::exists(file));
    t.ui.expect("Delete File", Answer::Yes);
    EXPECT_TRUE(Recycle(ctx, file, 0));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(t.fake->recycled.empty());
}

TEST(CommonRoutines, ExecCmdWaitsForTheProgramWhileEventsRun) {
    TVK_LINUX_ONLY("runs a POSIX shell command");
    TestContext t(makePlatformSystem());
    Context ctx = t.ctx();
    const auto marker = t.tree.path("done");
    ExecCmd(ctx, "sleep 0.2; echo ok > '" + pathToUtf8(marker) + "'");
    EXPECT_EQ(t.tree.read("done"), "ok\n");
    EXPECT_GT(t.ui.eventsPumped, 3);
}

TEST(Registry, FileKeepsKeysAndValuesAcrossWrites) {
    test::TempTree tree;
    RegistryFile reg(tree.path("cfg/registry.ini"));
    const std::string key =
        "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tavrin File Manager";
    EXPECT_FALSE(reg.query(RegistryRoot::LocalMachine, key, "DisplayVersion"));
    reg.set(RegistryRoot::LocalMachine, key, "InstallLocation", std::string("/opt/tvk=1"));
    reg.set(RegistryRoot::LocalMachine, key, "DisplayVersion", std::string("2021.0922.1101"));
    reg.set(RegistryRoot::CurrentUser, "Software\\TVK", "Runs", std::uint32_t{42});
    EXPECT_EQ(std::get<std::string>(*reg.query(RegistryRoot::LocalMachine, key, "InstallLocation")),
              "/opt/tvk=1");
    EXPECT_EQ(
        std::get<std::uint32_t>(*reg.query(RegistryRoot::CurrentUser, "Software\\TVK", "Runs")),
        42u);
    EXPECT_NE(tree.read("cfg/registry.ini")
                  .find("[HKEY_LOCAL_MACHINE\\" + key + "]\nDisplayVersion=2021.0922.1101\n"),
              std::string::npos);
}

TEST(LinuxSystem, SingleInstanceLockIsHeldUntilTheHolderEnds) {
    test::TempTree tree;
    test::ScopedEnv cfg("XDG_CONFIG_HOME", pathToUtf8(tree.path("cfg")));
    auto first = makePlatformSystem();
    ASSERT_TRUE(first->acquireSingleInstance());
    EXPECT_FALSE(makePlatformSystem()->acquireSingleInstance());
    first.reset();  // as a crashed instance's lock goes with its process
    EXPECT_TRUE(makePlatformSystem()->acquireSingleInstance());
}

// The package ships a machine-wide record under $XDG_CONFIG_DIRS; the user's own record
// wins value by value, and the start-up's writes go to the user's record alone.
TEST(LinuxSystem, InstallationRecordIsTheUsersOverEachMachineFolder) {
    TVK_LINUX_ONLY("registry files under the XDG folders");
    test::TempTree tree;
    const std::string section = "[HKEY_LOCAL_MACHINE\\" + std::string(kUninstallKey) + "]\n";
    tree.write("etc1/tavrin-file-manager/registry.ini",
               section + "InstallLocation=/usr/share/tavrin-file-manager\nDisplayVersion=2021\n");
    tree.write("etc2/tavrin-file-manager/registry.ini",
               section + "InstallLocation=/opt/other\nDisplayName=Second\n");
    tree.write("user/Tavrin File Manager/registry.ini", section + "DisplayVersion=2020\n");
    const std::string etc1 = pathToUtf8(tree.path("etc1")), etc2 = pathToUtf8(tree.path("etc2"));
    test::ScopedEnv user("XDG_CONFIG_HOME", pathToUtf8(tree.path("user")));

    const struct {
        std::string dirs, name;
        std::optional<std::string> value;
    } cases[] = {
        {etc1 + ":" + etc2, "InstallLocation", "/usr/share/tavrin-file-manager"},
        {etc2 + ":" + etc1, "InstallLocation", "/opt/other"},
        {etc1 + ":" + etc2, "DisplayName", "Second"},  // every folder is looked in
        {"etc2::" + etc1, "InstallLocation", "/usr/share/tavrin-file-manager"},  // relative: no
        {etc1, "DisplayVersion", "2020"},  // the user's record first
        {pathToUtf8(tree.path("none")), "InstallLocation", std::nullopt},
    };
    for (const auto& c : cases) {
        test::ScopedEnv dirs("XDG_CONFIG_DIRS", c.dirs);
        const auto v =
            makePlatformSystem()->regQuery(RegistryRoot::LocalMachine, kUninstallKey, c.name);
        EXPECT_EQ(v ? std::optional(registryValueText(*v)) : std::nullopt, c.value)
            << c.dirs << " " << c.name;
    }

    test::ScopedEnv dirs("XDG_CONFIG_DIRS", etc1);
    const std::string machine = tree.read("etc1/tavrin-file-manager/registry.ini");
    makePlatformSystem()->regSet(RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion",
                                 std::string("2022"));
    EXPECT_EQ(tree.read("etc1/tavrin-file-manager/registry.ini"), machine);
    EXPECT_EQ(tree.read("user/Tavrin File Manager/registry.ini"),
              section + "DisplayVersion=2022\n");
}

// The scripted boxes are checked when the test ends: one that never appeared fails it.
TEST(ScriptedBoxes, AnExpectedBoxOrPromptThatNeverAppearsFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedInteraction ui;
            ui.expect("NO TAVRIN FOLDER", Answer::Yes);
        },
        "expected box [NO TAVRIN FOLDER] never appeared");
    EXPECT_NONFATAL_FAILURE(
        {
            test::ScriptedInteraction ui;
            ui.expectPrompt("RENAME VOLUME", "ORGAN");
        },
        "expected prompt [RENAME VOLUME] never appeared");
}

}  // namespace
}  // namespace tvk
