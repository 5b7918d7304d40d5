// tvk names, edit-names and search: the console view of the editor, its refusals, and the
// search's console conversation and exit codes.

#include <gtest/gtest.h>

#include "app/Text.h"
#include "support/OrganBytes.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

struct TvkNames : ::testing::Test {
    test::TempTree tree;
    std::string out;
    int run(const std::vector<std::string>& args, const std::string& input = {}) {
        const auto done = test::runTvk(args, {input, std::nullopt});
        out = done.output;
        return done.exitCode;
    }
    std::string file(const char* name) { return pathToUtf8(tree.path(name)); }
};

TEST_F(TvkNames, EditNamesCommitsAndPrintsTheView) {
    tree.write("APSET001.LPG", test::generatedOrganFile(Series::A, FileKind::Preset, "Old", 2));
    ASSERT_EQ(run({"edit-names", file("APSET001.LPG"), "--file-name", "New Name", "A0=Tuba",
                   "E10=Sixteen chars ok"}),
              0)
        << out;
    EXPECT_TRUE(startsWith(out, "0\tNew Name\nA0\tTuba\nA1\t")) << out;
    EXPECT_TRUE(endsWith(out, "\nE10\tSixteen chars ok\n")) << out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 56);
    ASSERT_EQ(run({"names", file("APSET001.LPG")}), 0);

    const std::string edited = tree.read("APSET001.LPG");
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        const char* says;
    };
    const Case refused[] = {
        {{"A0=Seventeen chars!!"}, 2, "longer than 16"},
        {{"A0=Piano \xE2\x86\x92"}, 2, "cannot show"},
        {{"Z9=x"}, 2, "not CODE=NAME"},
        {{"--file-name", "Sixteen chars ok"}, 2, "longer than 15"},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.args.back());
        std::vector<std::string> args{"edit-names", file("APSET001.LPG")};
        args.insert(args.end(), c.args.begin(), c.args.end());
        EXPECT_EQ(run(args), c.exitCode);
        EXPECT_NE(out.find(c.says), std::string::npos) << out;
        EXPECT_TRUE(tree.read("APSET001.LPG") == edited);
    }
}

TEST_F(TvkNames, SearchAnswersOnTheConsole) {
    tree.write("s/EPSET001.EPG", test::generatedOrganFile(Series::E, FileKind::Preset, "Mine", 2));
    // Every generated name is shorter than its field, so each holds a space: Yes, then
    // No ends the search with two boxes and no summary.
    ASSERT_EQ(run({"search", " ", "--presets", "--folder", file("s")}, "Yes\nNo\n"), 0) << out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '['), 2) << out;
    EXPECT_EQ(run({"search", "Mine", "--whole-word", "--count-only", "--folder", file("s")}), 1)
        << out;
}

}  // namespace
}  // namespace tvk
