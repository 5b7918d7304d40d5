#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/resource.h>
#endif

#include <csignal>
#include <sstream>

#include "app/FileIO.h"
#include "app/IniFile.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "support/TestContext.h"

namespace tvk {
namespace {

using test::TestContext;

Settings remembered() {
    Settings s;
    s.organSeries = 2;
    s.allTextSelect = true;
    s.numberSeq = 1;
    s.remWinPosit = true;
    s.formatChange = true;
    s.compFilesFC = 0xFF;
    s.windows = {WindowRect{10, 20, 800, 600}, WindowRect{}, WindowRect{5, 6, 7, 8},
                 WindowRect{-1, -2, 300, 200}};
    return s;
}

std::string golden() {
    return test::readFile(std::string(TVK_SOURCE_DIR) + "/tests/data/TVK-remembered.ini");
}

TEST(IniFile, WritesTheGoldenFileByteForByteAndReadsItBack) {
    TestContext t;
    Context ctx = t.ctx();
    t.settings = remembered();
    WriteIniFile(ctx, false);
    EXPECT_EQ(test::readFile(t.paths.settingsFile()), golden());

    t.settings = Settings{};
    ReadIniFile(ctx);
    EXPECT_EQ(t.settings, remembered());
    EXPECT_TRUE(t.ui.shown.empty());
}

TEST(IniFile, DefaultsKeepFormatChangeAndWriteNoWindowSection) {
    TestContext t;
    Context ctx = t.ctx();
    t.settings = remembered();
    WriteIniFile(ctx, true);
    const std::string text = test::readFile(t.paths.settingsFile());
    EXPECT_NE(text.find("Organ Series=0\r\n"), std::string::npos);
    EXPECT_NE(text.find("Format Change=True\r\n"), std::string::npos);
    EXPECT_NE(text.find("Comp Folder BC=&HFFFFE0\r\n"), std::string::npos);
    EXPECT_EQ(text.find("[WINDOW POSITIONS]"), std::string::npos);
    EXPECT_TRUE(endsWith(text, "USB Files BC=&HE0FFFF\r\nEOF\r\n"));
}

const char* const kBadConfig = "CONGIFURATION ERROR";
const char* const kBadValue = "ERROR READING FILE";
const char* const kError = "TVK: RUNTIME ERROR";

struct ReadCase {
    const char* name;
    const char* text;
    const char* box;      // the one box shown, if any
    std::string lines;    // '|' between lines the settings hold when written; '!' first: do not
    int errorNumber = 0;  // the number the error box reports, when one is expected
};

class IniFileRead : public ::testing::TestWithParam<ReadCase> {};

TEST_P(IniFileRead, ReadsOrRepairs) {
    const ReadCase& c = GetParam();
    TestContext t;
    Context ctx = t.ctx();
    t.settings.formatChange = true;
    t.settings.windows[1] = WindowRect{1, 2, 3, 4};
    test::writeFile(t.paths.settingsFile(), c.text);
    if (c.box) t.ui.expect(c.box, std::string(c.box) == kError ? Answer::Ignore : Answer::Ok);
    ReadIniFile(ctx);
    EXPECT_TRUE(t.ui.done());
    Settings read = t.settings;
    read.remWinPosit = true;  // so the window table is written too
    const std::string written = formatIniFile(read, std::tm{});
    std::istringstream lines(c.lines);
    for (std::string line; std::getline(lines, line, '|');) {
        if (line[0] == '!')
            EXPECT_EQ(written.find(line.substr(1) + "\r\n"), std::string::npos) << written;
        else
            EXPECT_NE(written.find(line + "\r\n"), std::string::npos) << line << "\n" << written;
    }
    if (c.errorNumber) {
        EXPECT_NE(t.ui.shown.back().text.find("Err#" + std::to_string(c.errorNumber)),
                  std::string::npos);
    }
}

const ReadCase kReadCases[] = {
    {"NoEofIsFine", "Organ Series=3\r\nAuto Backup=True\r\n", nullptr,
     "Organ Series=3|Auto Backup=True"},
    {"CommaSplitsALineInTwo", "Organ Series=1,Auto Backup=True\r\nEOF\r\n", nullptr,
     "Organ Series=1|Auto Backup=True"},
    {"TopKeyInsideColourSection",
     "[LIST COLORS]\r\nOrgan Series=2\r\nComp Files BC=&HFFFFFF\r\nUSB Files BC=&H0\r\n", nullptr,
     "Organ Series=2|Comp Files BC=&HFFFFFF|USB Files BC=&H0"},
    {"NothingAfterEofIsRead", "Organ Series=1\r\nEOF\r\nOrgan Series=3\r\nTheme=1\r\n", nullptr,
     "Organ Series=1"},
    {"MissingWindowSectionKeepsTheTable", "Rem Win Posit=True\r\n", nullptr,
     "Win Index=2\r\nWin Left=1\r\nWin Top=2\r\nWin Width=3\r\nWin Height=4"},
    {"IntegerPartOfAFraction", "Organ Series=2.9\r\nNumber Seq=1.5\r\n", nullptr,
     "Organ Series=2|Number Seq=1"},
    // Values read before the bad entry are lost; Format Change survives the reset.
    {"UnknownKeyInColoursIsMalformed", "Organ Series=3\r\n[LIST COLORS]\r\nTheme=1\r\n", kBadConfig,
     "Organ Series=0|Format Change=True"},
    {"UnknownKeyOutsideSectionsIsMalformed", "Colour=Blue\r\n", kBadConfig,
     "Comp Folder BC=&HFFFFE0"},
    {"WindowKeyInColourSectionIsMalformed", "[LIST COLORS]\r\nWin Left=5\r\n", kBadConfig, ""},
    {"UnconvertibleBoolean", "Organ Series=3\r\nAuto Backup=maybe\r\n", kBadValue,
     "Organ Series=0"},
    {"UnconvertibleColour", "[LIST COLORS]\r\nComp Files FC=&Hxyz\r\n", kBadValue, ""},
    // Ignore goes on with the next entry.
    {"OverflowGoesToTheCentralHandler", "Number Seq=300\r\nOrgan Series=2\r\n", kError,
     "Number Seq=0|Organ Series=2"},
    {"WinIndexOutsideTheTable",
     "[WINDOW POSITIONS]\r\nWin Index=5\r\nWin Left=7\r\nWin Index=1\r\nWin Left=9\r\n", kError,
     "Win Index=1\r\nWin Left=9", 9},
    {"WinIndexAtTheLowestLong", "[WINDOW POSITIONS]\r\nWin Index=-2147483648\r\nWin Left=10\r\n",
     kError, "!Win Left=10", 9},
    {"WinIndexAtTheLowestLongInHex",
     "[WINDOW POSITIONS]\r\nWin Index=&H80000000\r\nWin Left=10\r\n", kError, "!Win Left=10", 9},
    {"BinaryJunkWithoutKeysIsSkipped", "\x01\x02\xff\xfe junk\r\n\r\n\x7f", nullptr, ""},
};

INSTANTIATE_TEST_SUITE_P(All, IniFileRead, ::testing::ValuesIn(kReadCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(IniFile, RepairWritesAFreshDefaultFile) {
    TestContext t;
    Context ctx = t.ctx();
    test::writeFile(t.paths.settingsFile(), "[LIST COLORS]\r\nTheme=1\r\n");
    t.ui.expect("CONGIFURATION ERROR");
    ReadIniFile(ctx);
    const std::string text = test::readFile(t.paths.settingsFile());
    EXPECT_TRUE(startsWith(text, "Tavrin File Manager - Initialization File\r\n"));
    EXPECT_EQ(text.find("Theme"), std::string::npos);
    ASSERT_EQ(t.ui.shown.size(), 1u);
    EXPECT_EQ(t.ui.shown[0].text,
              "The \"TVK.ini\" file is constructed incorrectly.\rA new one will be created with "
              "default settings");
}

TEST(IniFile, AFailedWriteReportsAndKeepsTheOldFile) {
#ifdef _WIN32
    TVK_LINUX_ONLY("a file-size limit (setrlimit)");
#else
    TestContext t;
    Context ctx = t.ctx();
    test::writeFile(t.paths.settingsFile(), "Organ Series=2\r\n");
    // A file-size limit fails the write part way for any user, root included.
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = old;
    tiny.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    WriteIniFile(ctx, false);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(test::readFile(t.paths.settingsFile()), "Organ Series=2\r\n");
    for (const auto& entry : std::filesystem::directory_iterator(t.paths.libraryRoot))
        EXPECT_FALSE(isTemporaryName(fileNameUtf8(entry.path()))) << "left behind";
#endif
}

TEST(IniFile, FieldInputAndConversions) {
    EXPECT_EQ(splitIniFields("a=1,b=2\r\n\"x,y\"\r\n  c = 3 \r\n"),
              (std::vector<std::string>{"a=1", "b=2", "x,y", "c = 3"}));
    EXPECT_EQ(toLong("&HFFFFE0"), 16777184);
    EXPECT_EQ(toLong("&HFFFFFFFF"), -1);
    EXPECT_EQ(toInteger("-1.5"), -2);
    EXPECT_TRUE(toBoolean("true"));
    EXPECT_TRUE(toBoolean("-1"));
    EXPECT_FALSE(toBoolean("0"));
    EXPECT_THROW(toBoolean(""), RuntimeError);
    EXPECT_THROW(toLong("&H123456789"), RuntimeError);
    EXPECT_THROW(toInteger("inf"), RuntimeError);
}

}  // namespace
}  // namespace tvk
