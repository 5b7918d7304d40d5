// tvk add-all, update, restore, the pools and the Auto Backup of tvk scan, from the console.
#include <gtest/gtest.h>

#include <ctime>

#include "app/IniFile.h"
#include "app/Text.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

TEST(TvkTransfer, TheFiveCommandsAndAutoBackup) {
    TVK_REQUIRE_FUSE();
    test::TempTree home;
    const auto lib = home.mkdir("Documents/Tavrin File Manager");
    const auto image = test::makeImage(home, "stick.img", {"fat16", 32, "ORGAN", "1234ABCD"});
    test::fillTavrin(home, image, {"TUNE.MID"});
    const auto preset =
        home.write("Bells.bin", test::generatedOrganFile(Series::SU, FileKind::Preset, "Bells", 5));
    ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -i '" + pathToUtf8(image) + "' '" +
                               pathToUtf8(preset) + "' ::TAVRIN/SUPSET01.LPG"),
              0);
    const std::string tvk =
        "env -i PATH=/usr/bin:/bin HOME='" + pathToUtf8(home.root()) + "' " + TVK_CLI_PATH + " ";
    const std::string onStick = " --drive-image '" + pathToUtf8(image) + "' </dev/null";
    const auto mirror = "Documents/Tavrin File Manager/ORGAN - 1234ABCD";
    struct Step {
        std::string command;
        int exitCode;
        std::string output;  // a line the output holds
    };
    const Step steps[] = {
        {"update", 1, "[UPDATE COMPUTER] This process will UPDATE"},
        {"--yes update", 0, "SUPSET01.LPG -> Bells_#01.LPG"},
        {"add-all", 0, "SUPSET01.LPG -> Bells.LPG"},
        {"--yes pool-presets", 0, "SUPSET01.LPG -> Bells.SPG"},
        {"pool-recordings", 1, "[COPY RECORDINGS TO POOL] This will copy 0 RECORDING files"},
        {"--yes restore", 0, "Bells.LPG -> SUPSET02.LPG"},
        {"scan", 0, "Accepted: yes"},
    };
    for (const auto& s : steps) {
        SCOPED_TRACE(s.command);
        if (s.command == "scan") {
            // Auto Backup on: the stick's files are all in the mirror folder already.
            Settings settings;
            settings.autoBackup = true;
            test::writeFile(lib / "TVK.ini", formatIniFile(settings, std::tm{}));
        }
        std::string out;
        EXPECT_EQ(test::runCommand(tvk + s.command + onStick, &out), s.exitCode) << out;
        EXPECT_NE(out.find(s.output), std::string::npos) << out;
    }
    EXPECT_EQ(home.list(mirror),
              (std::vector<std::string>{"Bells.LPG", "Bells_#01.LPG", "TUNE (1).MID", "TUNE.MID"}));
}

}  // namespace
}  // namespace tvk
