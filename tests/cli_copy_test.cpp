// tvk copy: the copy engine from the console, with the user's settings and the STICK word.
#include <gtest/gtest.h>

#include <ctime>

#include "app/IniFile.h"
#include "app/Text.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

using test::put;

bool has(const std::string& out, const std::string& line) {
    return out.find(line + "\n") != std::string::npos;
}

TEST(TvkCopy, CopiesBothWaysWithTheUsersSettings) {
    TVK_REQUIRE_FUSE();
    test::TempTree home;
    const auto lib = home.mkdir("Documents/Tavrin File Manager");
    // "Number Seq" on: a numbered file goes on after its own number.
    Settings settings;
    settings.numberSeq = 1;
    test::writeFile(lib / "TVK.ini", formatIniFile(settings, std::tm{}));
    put(lib / "Mine",
        {{"SUPSET05.LPG", test::generatedOrganFile(Series::SU, FileKind::Preset, "Bells", 5)},
         {"Piano.SPG", "p"}});
    home.mkdir("Documents/Tavrin File Manager/Back");
    const auto image = test::makeImage(home, "stick.img", {"fat16", 32, "STICK", ""});
    test::fillTavrin(home, image, {"SUPSET01.LPG"});

    const std::string tvk = "cd '" + pathToUtf8(lib) + "' && env -i PATH=/usr/bin:/bin HOME='" +
                            pathToUtf8(home.root()) + "' " + TVK_CLI_PATH + " ";
    const std::string onStick = " --drive-image '" + pathToUtf8(image) + "' ";
    std::string out;
    ASSERT_EQ(test::runCommand(tvk + "copy" + onStick + "Mine STICK </dev/null", &out), 0) << out;
    EXPECT_TRUE(has(out, "Piano.SPG -> SUPSET02.LPG")) << out;
    EXPECT_TRUE(has(out, "SUPSET05.LPG -> SUPSET06.LPG")) << out;

    ASSERT_EQ(test::runCommand(tvk + "copy" + onStick + "STICK Back SUPSET06.LPG </dev/null", &out),
              0)
        << out;
    EXPECT_TRUE(has(out, "SUPSET06.LPG -> Bells.SPG")) << out;

    // The same folder makes duplicates after a question; the cautious answer copies nothing.
    ASSERT_EQ(test::runCommand(tvk + "copy Back Back </dev/null", &out), 0) << out;
    EXPECT_NE(out.find("[DUPLICATE FILE] Do you want to make a duplicate file in the"),
              std::string::npos)
        << out;
    EXPECT_TRUE(has(out, "0 copied, 1 skipped, 0 failed, 0 duplicate names tried")) << out;

    EXPECT_EQ(test::runCommand(tvk + "copy --mode SIDEWAYS Back Mine", &out), 2) << out;
    EXPECT_EQ(test::runCommand(tvk + "copy Back STICK </dev/null", &out), 1) << out;
    EXPECT_NE(out.find("STICK needs an attached stick"), std::string::npos) << out;
}

}  // namespace
}  // namespace tvk
