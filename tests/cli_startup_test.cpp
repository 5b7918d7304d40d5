#include <gtest/gtest.h>

#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

// tvk in an empty home: refused until the installation record is written as the run
// command writes it, then a traced start-up builds the library and the log.
TEST(TvkStartup, TracedStartInAnEmptyHomeBuildsTheLibraryAndTheLog) {
    test::TempTree home;
    test::forgetInstallationRecord();
    const test::ProgramOptions inHome{{}, home.root()};
    // Without the installation record start-up refuses and makes nothing.
    auto run = test::runTvk({"startup"}, inHome);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.output.find("[NO REGISTRY ENTRY] Can't get VERSION of Tavrin File Manager."),
              std::string::npos)
        << run.output;
    EXPECT_FALSE(home.exists("Documents"));

    run = test::runTvk({"register", "--location", pathToUtf8(home.mkdir("prog"))}, inHome);
    ASSERT_EQ(run.exitCode, 0) << run.output;
    run = test::runTvk({"--yes", "startup", "+DEBUG"}, inHome);
    ASSERT_EQ(run.exitCode, 0) << run.output;

    EXPECT_EQ(home.list("Documents/Tavrin File Manager"),
              (std::vector<std::string>{"TVK.ini", "\u00A0Downloaded", "\u00A0Music Recordings",
                                        "\u00A0Preset Pool", "\u00A0Recycle Bin"}));
    // +DEBUG reaches the trace; what it writes is the trace test's.
    const std::string log = home.read("prog/TVK_ErrorLog.txt");
    EXPECT_NE(log.find("- |frmMain.Form_Load - ENTER\r\n"), std::string::npos) << log;

    // A second, untraced start reads the settings and leaves the log as it was.
    run = test::runTvk({"startup"}, inHome);
    ASSERT_EQ(run.exitCode, 0) << run.output;
    EXPECT_EQ(home.read("prog/TVK_ErrorLog.txt"), log);
    test::forgetInstallationRecord();
}

}  // namespace
}  // namespace tvk
