// The fixed fields inside preset and recording files: version, name, record positions,
// folder listings, and readers fed odd and broken files.

#include <gtest/gtest.h>

#include "app/RuntimeError.h"
#include "organfiles/FileLayout.h"
#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"
#include "support/SessionTest.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

std::string header(const char* version = "2.0") {
    return std::string("\x5A\xA5\x16\x5F") + "    S\\      TAVRN SEQ Ver" + version;
}
std::string padded(std::string text, std::size_t width = 16) {
    text.resize(width, ' ');
    return text;
}

struct OrganLayoutRoutines : test::SessionTest {};

TEST_F(OrganLayoutRoutines, CalcAddress) {
    struct Case {
        const char* family;
        const char* kind;
        const char* button;
        std::int32_t position;
    };
    const Case cases[] = {
        {"S", "PRESET", "A1", 1027},
        {"S", "PRESET", "B1", 1027 + 10 * 596},
        {"S", "PRESET", "A0", 431},             // one record before A1
        {"S", "PRESET", "B0", 1027 + 9 * 596},  // the same record as A10
        {"S", "PRESET", "E10", 1027 + 49 * 596},
        {"S", "RECORDING", "A1", 2220},
        {"A", "PRESET", "A1", 1027 + 610},
        {"A", "PRESET", "A0", 1027},
        {"A", "RECORDING", "C5", 2247 + 27 * 610},
        {"E", "RECORDING", "B2", 10387},
        {"E", "PRESET", "E10", 1027 + 54 * 624},
        {"S", "PRESET", "0", 33},
        {"A", "RECORDING", "0", 33},
        {"E", "PRESET", "0", 33},
        {"X", "PRESET", "A1", 0},
        {"SU", "PRESET", "A1", 0},
        {"S", "MIDI", "A1", 0},
        {"S", "PRESET", "F1", 0},
        {"S", "PRESET", "a1", 0},
        {"S", "PRESET", "", 0},
        {"A", "PRESET", "B", 1027 + 11 * 610},  // no number reads as 0
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.family) + " " + c.kind + " " + c.button);
        EXPECT_EQ(calcAddress(c.family, c.kind, c.button), c.position);
        EXPECT_EQ(CalcAddress(ctx, c.family, c.kind, c.button), c.position);
    }
    EXPECT_EQ(calcAddress(Series::E, FileKind::Recording, "B2"), 10387);
}

struct ReaderCase {
    const char* what;
    std::string bytes;
    std::string version;  // "" when reading it is an error
    int versionError;
    std::string name;
    int nameError;
};

TEST(OrganLayout, ReadsVersionAndNameFromOddFiles) {
    const std::string standard = header() + padded("MY PRESET") + "Preset    \r\n";
    const ReaderCase cases[] = {
        {"standard SU", standard, "2", 0, "MY PRESET", 0},
        {"A family", header("3.0") + padded("Jazz") + "\r\n", "3", 0, "Jazz", 0},
        {"point five", header("2.5") + padded("x"), "2.5", 0, "x", 0},
        {"mark moved", "xx" + header("4.0") + padded(" Lead in") + "\n", "4", 0, "Lead in", 0},
        {"no mark", "Hello World 123456789\r\nTAVRN", "", 5, "Hello World 1234", 0},
        {"not a number", header("abc") + padded("n"), "", 13, "n", 0},
        {"no Ver", std::string("TAVRN SEQ Xyz2.0") + padded("n"), "", 13, "n", 0},
        {"short name", header() + "MY PR", "2", 0, "MY PR", 0},
        {"ends at version", header().substr(0, 28), "", 13, "", 0},
        {"CR inside name", header() + "AB\rCD", "2", 0, "AB", 0},
        {"Windows-1252", header() + padded("Caf\xE9 \x80"), "2", 0, "Caf\u00E9 \u20AC", 0},
        {"empty", "", "", 62, "", 62},
        {"one CR", "\r", "", 5, "", 0},
    };
    test::TempTree tree;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto file = tree.write("odd.SPG", c.bytes);
        auto errorOf = [&](auto read) {
            try {
                read(file);
            } catch (const RuntimeError& e) {
                return e.number();
            }
            return 0;
        };
        EXPECT_EQ(errorOf(readFileVersion), c.versionError);
        if (!c.versionError) {
            EXPECT_EQ(readFileVersion(file), c.version);
        }
        EXPECT_EQ(errorOf(readPresetName), c.nameError);
        if (!c.nameError) {
            EXPECT_EQ(readPresetName(file), c.name);
        }
    }
    EXPECT_EQ(
        readPresetName(tree.write("long.SPG", header() + padded("N") + std::string(40000, 'x'))),
        "N");
}

TEST_F(OrganLayoutRoutines, FailuresGoThroughTheErrorHandler) {
    const auto noMark = tree.write("nomark.LPG", "Just some text\r\n");
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore)
        .expect("TVK: RUNTIME ERROR", Answer::Ignore)
        .expect("TVK: RUNTIME ERROR", Answer::Retry)
        .expect("TVK: RUNTIME ERROR", Answer::Ignore);
    EXPECT_EQ(GetFileVersion(ctx, noMark), "");
    EXPECT_EQ(GetPresetName(ctx, noMark), "Just some text");  // no mark is no error here
    EXPECT_EQ(GetPresetName(ctx, tree.path("missing.LPG")), "");
    EXPECT_EQ(GetFileVersion(ctx, tree.path("missing.LPG")), "");
    ASSERT_TRUE(ui.done());
    EXPECT_NE(ui.shown[0].text.find("Err#5"), std::string::npos);
    EXPECT_NE(ui.shown[0].text.find("frmMain.GetFileVersion"), std::string::npos);
    EXPECT_NE(ui.shown[1].text.find("Err#53"), std::string::npos);
    EXPECT_NE(ui.shown[1].text.find("frmMain.GetPresetName"), std::string::npos);
}

TEST_F(OrganLayoutRoutines, ListsPresetAndRecordingFilesSorted) {
    for (const char* f : {"b.EPG", "a.APG", "C.spg", "SUPSET01.LPG", ".h.SPG", "x.SMR", "y.EMR",
                          "z.AMR", "ASONG001.LMR", "tune.mp3", "APG"})
        tree.write(std::string("TAVRIN/") + f, "x");
    tree.mkdir("TAVRIN/folder.SPG");
    using Names = std::vector<std::string>;
    EXPECT_EQ(ReadPresetNames(ctx, tree.path("TAVRIN")),
              (Names{"C.spg", "a.APG", "b.EPG"}));  // plain byte order
    EXPECT_EQ(ReadRecordingsNames(ctx, tree.path("TAVRIN")), (Names{"x.SMR", "y.EMR", "z.AMR"}));
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(OrganLayoutRoutines, MoreThan750FilesIsAnIndexError) {
    for (int i = 0; i < 751; ++i) tree.write("many/P" + std::to_string(1000 + i) + ".EPG", "");
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    const auto names = ReadPresetNames(ctx, tree.path("many"));
    ASSERT_TRUE(ui.done());
    EXPECT_NE(ui.shown[0].text.find("Err#9"), std::string::npos);
    ASSERT_EQ(names->size(), 750u);
    EXPECT_EQ(names->front(), "P1000.EPG");
    EXPECT_TRUE(std::is_sorted(names->begin(), names->end()));
    tree.write("many/P2000.EPG", "");
    std::filesystem::remove(tree.path("many/P1000.EPG"));
    std::filesystem::remove(tree.path("many/P1001.EPG"));
    EXPECT_EQ(ReadPresetNames(ctx, tree.path("many"))->size(), 750u);  // exactly full is fine
}

// Every truncation of a real file: readers answer or refuse with the numbers a bad
// header gives, never another error, a crash or a read past the end (run under ASan to
// see the latter); once the first line is whole they read it right. Random bytes and
// button codes are the organ-file fuzz harness's.
TEST(OrganLayout, SurvivesTruncatedFiles) {
    RandomSource names(7);
    const std::string good = buildTestFile(Series::E, FileKind::Recording, "Fuzz Song", names);
    const std::size_t firstLine = good.find_first_of("\r\n");
    ASSERT_NE(firstLine, std::string::npos);
    test::TempTree tree;
    auto probe = [&](const std::string& bytes) {
        SCOPED_TRACE(testing::Message() << bytes.size() << " bytes");
        const auto file = tree.write("f.EMR", bytes);
        const bool wholeLine =
            bytes.size() > firstLine && good.compare(0, bytes.size(), bytes) == 0;
        try {
            const std::string version = readFileVersion(file);
            EXPECT_FALSE(version.empty());
            if (wholeLine) {
                EXPECT_EQ(version, "4");
            }
        } catch (const RuntimeError& e) {
            const int n = e.number();
            EXPECT_TRUE(n == kErrInputPastEndOfFile || n == kErrInvalidProcedureCall ||
                        n == kErrTypeMismatch)
                << e.what();
            EXPECT_FALSE(wholeLine);
        }
        try {
            const std::string name = readPresetName(file);
            EXPECT_LE(utf8Length(name), 16u);
            if (wholeLine) {
                EXPECT_EQ(name, "Fuzz Song");
            }
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), kErrInputPastEndOfFile);
            EXPECT_TRUE(bytes.empty());
        }
        for (std::int32_t pos : {1, 33, 2275, 10387, 40000, 0, -5})
            EXPECT_LE(fieldAt(bytes, pos).size(), 16u * 3);
    };
    for (std::size_t n = 0; n <= 64; ++n) probe(good.substr(0, n));
    for (std::size_t n = 64; n < good.size(); n += 997) probe(good.substr(0, n));
}

}  // namespace
}  // namespace tvk
