// File names as the organ-file rules read them, the names the program builds, and the
// content count of a thumbdrive folder (on a real FAT image where FUSE is at hand).

#include <gtest/gtest.h>

#include "organfiles/AnalyzeContent.h"
#include "organfiles/OrganNames.h"
#include "support/DriveImages.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

struct NameCase {
    const char* name;
    FileKind kind;
    const char* letter;
    NameType type;
    std::optional<int> number;
    std::optional<Series> series;
};

TEST(OrganNames, ClassifiesNames) {
    const NameCase cases[] = {
        {"SUPSET07.LPG", FileKind::Preset, "S", NameType::PSET, 7, Series::SU},
        {"APSET123.LPG", FileKind::Preset, "A", NameType::PSET, 123, Series::A},
        {"SUPSET123.LPG", FileKind::Preset, "S", NameType::PSET, 123, Series::SU},
        {"SUPSET007.LPG", FileKind::Preset, "S", NameType::PSET, 7, Series::SU},
        {"EPSET250.EPG", FileKind::Preset, "E", NameType::PSET, 250, Series::E},
        {"APSET1234.LPG", FileKind::Preset, "A", NameType::PSET, 123, Series::A},   // 3 digits
        {"SUPSET1E2.LPG", FileKind::Preset, "S", NameType::PSET, 100, Series::SU},  // Val
        {"APSETx1.LPG", FileKind::Preset, "A", NameType::PSET, 0, Series::A},
        {"ESONG004.EMR", FileKind::Recording, "E", NameType::SONG, 4, Series::E},
        {"SUSONG01.LMR", FileKind::Recording, "S", NameType::SONG, 1, Series::SU},
        {"ASONG040.lmr", FileKind::Recording, "A", NameType::SONG, 40, Series::A},
        // Case-sensitive prefix: a NAME file, series from the extension.
        {"epset012.epg", FileKind::Preset, "E", NameType::NAME, std::nullopt, Series::E},
        {"supset07.lpg", FileKind::Preset, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"Piano.SPG", FileKind::Preset, "S", NameType::NAME, std::nullopt, Series::SU},
        {"TUNE.smr", FileKind::Recording, "S", NameType::NAME, std::nullopt, Series::SU},
        {"Waltz.AMR", FileKind::Recording, "A", NameType::NAME, std::nullopt, Series::A},
        {"MYSET.LPG", FileKind::Preset, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"mix.LMR", FileKind::Recording, "", NameType::OTHER, std::nullopt, std::nullopt},
        // SONG wins over PSET; the letter is the name's first character.
        {"APSET_ASONG.LPG", FileKind::Preset, "A", NameType::SONG, 0, Series::A},
        {"XPSET01.LPG", FileKind::Preset, "X", NameType::PSET, std::nullopt, std::nullopt},
        {"tune.mp3", FileKind::Mp3, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"tune.MID", FileKind::Midi, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"README", FileKind::Other, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"a.b.spg", FileKind::Preset, "S", NameType::NAME, std::nullopt, Series::SU},
        {"PG", FileKind::Other, "", NameType::OTHER, std::nullopt, std::nullopt},
        {"", FileKind::Other, "", NameType::OTHER, std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const NameInfo info = classifyName(c.name);
        EXPECT_EQ(info.kind, c.kind);
        EXPECT_EQ(info.seriesLetter, c.letter);
        EXPECT_STREQ(nameTypeText(info.type), nameTypeText(c.type));
        EXPECT_EQ(info.number, c.number);
        EXPECT_EQ(seriesOf(c.name), c.series);
    }
}

TEST(OrganNames, ValueReadsLikeTheRuntime) {
    const std::pair<const char*, double> cases[] = {
        {"01.", 1},   {"7", 7},     {" 1 2", 12}, {"abc", 0}, {"-3", -3},
        {"1.9", 1.9}, {"1E2", 100}, {"1E.", 1},   {"", 0},    {"..5", 0}};
    for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(valueOf(text), value) << text;
}

TEST(OrganNames, BuildsOrganNamesThatReadBack) {
    struct Case {
        Series family;
        FileKind kind;
        const char* seven;
        const char* renamed;
    };
    const Case cases[] = {
        {Series::SU, FileKind::Preset, "SUPSET07.LPG", "SUPSET007.LPG"},
        {Series::A, FileKind::Preset, "APSET007.LPG", "APSET007.LPG"},
        {Series::E, FileKind::Preset, "EPSET007.EPG", "EPSET007.EPG"},
        {Series::SU, FileKind::Recording, "SUSONG07.LMR", "SUSONG007.LMR"},
        {Series::A, FileKind::Recording, "ASONG007.LMR", "ASONG007.LMR"},
        {Series::E, FileKind::Recording, "ESONG007.EMR", "ESONG007.EMR"},
    };
    // That every built name reads back is the names fuzz harness's property.
    for (const auto& c : cases) {
        EXPECT_EQ(organFileName(c.family, c.kind, 7), c.seven);
        EXPECT_EQ(renamedOrganFileName(c.family, c.kind, 7), c.renamed);
    }
    EXPECT_EQ(organFileName(Series::SU, FileKind::Preset, 123), "SUPSET123.LPG");
    EXPECT_EQ(organFileName(Series::A, FileKind::Mp3, 1), "");
}

TEST(OrganNames, DuplicateNames) {
    EXPECT_EQ(duplicateName("ESONG004.EMR", 1), "ESONG004 (1).EMR");
    EXPECT_EQ(duplicateName("ESONG004.EMR", 2), "ESONG004 (2).EMR");
    EXPECT_EQ(duplicateName("README", 1), "README (1)");
    EXPECT_EQ(duplicateName("song.old.mpeg", 3), "song.old (3).mpeg");
    EXPECT_EQ(duplicateName("Grüße.SPG", 1), "Grüße (1).SPG");

    test::TempTree tree;
    tree.write("ESONG004.EMR", "x");
    tree.write("ESONG004 (1).EMR", "x");
    EXPECT_EQ(freeDuplicateName(tree.root(), "ESONG004.EMR"), "ESONG004 (2).EMR");
    EXPECT_EQ(freeDuplicateName(tree.root(), "ESONG004.EMR", 5), "ESONG004 (5).EMR");
}

using OrganNamesCtx = test::SessionTest;

TEST_F(OrganNamesCtx, CheckNameSwapsTheNineCharacters) {
    const std::pair<const char*, const char*> cases[] = {
        {"A/B:C?", "A\u00D8B\u00A8C\u00BF"},
        {"\\/:*?\"<>|", "\u00D1\u00D8\u00A8\u00A4\u00BF\u00BA\u00AB\u00BB\u00A6"},
        {"a//b", "a\u00D8\u00D8b"},
        {"Jazz Combo 1", "Jazz Combo 1"},
        {"tab\there", "tab\there"},
        {"", ""},
    };
    for (const auto& [in, out] : cases) {
        EXPECT_EQ(checkName(in), out) << in;
        EXPECT_EQ(CheckName(ctx, in), out) << in;
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST(OrganNames, WindowsSafeNameAfterCheckName) {
    const std::pair<std::string, std::string> cases[] = {
        {"CON", "CON_"},
        {"aux", "aux_"},
        {"NUL.txt.", "NUL_.txt"},
        {"Com7.old", "Com7_.old"},
        {"LPT9 .x", "LPT9_ .x"},
        {"COM0", "COM0"},        // no such device
        {"CONSOLE", "CONSOLE"},  // only the whole stem is a device
        {"My CON", "My CON"},
        {std::string("a\0b\1c", 5), "a_b_c"},
        {"Piano. . ", "Piano"},
        {" . ", ""},
        {"Grand Piano", "Grand Piano"},
    };
    for (const auto& [in, out] : cases) EXPECT_EQ(windowsSafeName(in), out) << in;
}

struct OrganAnalyzeContent : test::SessionTest {
    OrganAnalyzeContent() { ctx.state.drive.fileSystem = "FAT32"; }
};

std::string summary(const ContentCounts& c) {
    return "FILESYS: FAT32\rPRESET FILES: " + std::to_string(c.presets) +
           "\rMUSIC FILES: " + std::to_string(c.music) + "\rMP3 FILES: " + std::to_string(c.mp3) +
           "\rMIDI FILES: " + std::to_string(c.midi) + "\rOTHER FILES: " + std::to_string(c.other);
}
auto fields(const ContentCounts& c) {
    return std::tie(c.presets, c.music, c.mp3, c.midi, c.other, c.all);
}

TEST_F(OrganAnalyzeContent, CountsByExtension) {
    struct Case {
        std::vector<std::string> files;
        ContentCounts counts;  // presets, music, mp3, midi, other, all
    };
    const Case cases[] = {
        {{}, {0, 0, 0, 0, 0, 0}},
        {{"PIANO.SPG", "TUNE.SMR"}, {0, 0, 0, 0, 2, 2}},
        {{"epset012.epg", "MYSET.LPG", "x.APG", "ESONG001.EMR", "SUSONG01.LMR", "s.AMR", "a.mp3",
          "b.MP3", "c.mid", "notes.txt", "README"},
         {2, 2, 2, 1, 4, 11}},
    };
    int round = 0;
    for (const auto& c : cases) {
        const std::string folder = "stick" + std::to_string(round++) + "/TAVRIN";
        tree.mkdir(folder);
        for (const auto& f : c.files) tree.write(folder + "/" + f, "x");
        tree.write(folder + "/.hidden.EPG", "x");  // hidden files and folders never count
        tree.mkdir(folder + "/Sub.EPG");
        ui.setStatus(StatusPanel::Progress, "old");
        ui.setStatus(StatusPanel::Second, "old");
        AnalyzeContent(ctx, tree.path(folder));
        EXPECT_EQ(fields(ctx.state.counts), fields(c.counts));
        EXPECT_EQ(ctx.state.driveInfoText, summary(c.counts));
        EXPECT_EQ(ui.status[StatusPanel::Progress], "");
        EXPECT_EQ(ui.status[StatusPanel::Second], "");
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(OrganAnalyzeContent, MissingFolderGoesToTheErrorHandler) {
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    AnalyzeContent(ctx, tree.path("gone/TAVRIN"));
    ASSERT_TRUE(ui.done());
    EXPECT_NE(ui.shown[0].text.find("frmMain.AnalyzeContent"), std::string::npos);
    EXPECT_EQ(ctx.state.driveInfoText, summary({}));
}

TEST_F(OrganAnalyzeContent, CountsOnAFatImage) {
    TVK_REQUIRE_FUSE();
    test::ImageStick stick({"fat16", 16, "ORGAN", ""}, {{"EPSET001.EPG", "SUPSET01.LPG",
                                                         "ESONG001.EMR", "PIANO.SPG", "A.MP3"}});
    AnalyzeContent(ctx, stick.root() / "TAVRIN");
    EXPECT_EQ(ctx.state.driveInfoText, summary({2, 1, 1, 0, 1, 5}));
}

}  // namespace
}  // namespace tvk
