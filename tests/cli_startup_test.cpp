#include <gtest/gtest.h>

#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

// tvk in an empty home: refused until the installation record is written as the run
// command writes it, then a traced start-up builds the library and the log.
TEST(TvkStartup, TracedStartInAnEmptyHomeBuildsTheLibraryAndTheLog) {
    test::TempTree home;
    const std::string tvk =
        "env -i PATH=/usr/bin:/bin HOME='" + pathToUtf8(home.root()) + "' " + TVK_CLI_PATH;
    std::string out;
    // Without the installation record start-up refuses and makes nothing.
    EXPECT_EQ(test::runCommand(tvk + " startup </dev/null", &out), 1);
    EXPECT_NE(out.find("[NO REGISTRY ENTRY] Can't get VERSION of Tavrin File Manager."),
              std::string::npos)
        << out;
    EXPECT_FALSE(home.exists("Documents"));

    ASSERT_EQ(test::runCommand(
                  tvk + " register --location '" + pathToUtf8(home.mkdir("prog")) + "'", &out),
              0)
        << out;
    ASSERT_EQ(test::runCommand(tvk + " --yes startup +DEBUG </dev/null", &out), 0) << out;

    EXPECT_EQ(home.list("Documents/Tavrin File Manager"),
              (std::vector<std::string>{"TVK.ini", "\u00A0Downloaded", "\u00A0Music Recordings",
                                        "\u00A0Preset Pool", "\u00A0Recycle Bin"}));
    const std::string log = home.read("prog/TVK_ErrorLog.txt");
    EXPECT_TRUE(
        startsWith(log, "Tavrin File Manager - Debugging Log\r\nVersion: 2021.0922.1101\r\n" +
                            std::string(42, '-') + "\r\n"));
    EXPECT_NE(log.find("- |frmMain.Form_Load - ENTER\r\n"), std::string::npos) << log;
    EXPECT_NE(log.find("- ||CodeModule.WriteIniFile - ENTER\r\nRemoving TVK.ini file\r\nClosing "
                       "all files\r\n"),
              std::string::npos);
    // After the settings write the log's handle is closed: the console shows the error.
    EXPECT_NE(out.find("[TVK: RUNTIME ERROR] Encountered Err#52"), std::string::npos) << out;

    // A second, untraced start reads the settings and leaves the log as it was.
    ASSERT_EQ(test::runCommand(tvk + " startup </dev/null", &out), 0) << out;
    EXPECT_EQ(home.read("prog/TVK_ErrorLog.txt"), log);
}

TEST(TvkVersion, PrintsTheProgramVersion) {
    std::string out;
    ASSERT_EQ(test::runCommand(std::string(TVK_CLI_PATH) + " --version", &out), 0);
    EXPECT_EQ(out, "2021.0922.1101\n");
}

}  // namespace
}  // namespace tvk
