// The test-file generator: names, numbering past taken files, and files whose header and
// registration records read back through the same routines the program uses.

#include <gtest/gtest.h>

#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

struct OrganMakeFiles : test::SessionTest {};

TEST(OrganMakeFilesNames, RandomTextsAreSeededAndFit) {
    RandomSource a(42), b(42);
    for (int i = 0; i < 200; ++i) {
        const std::string name = MakeRandomName(a);
        EXPECT_EQ(name, MakeRandomName(b));
        EXPECT_LE(name.size(), 16u);
        EXPECT_NE(name.find("'s "), std::string::npos) << name;
        const std::string serial = RandomSN(a);
        EXPECT_EQ(serial, RandomSN(b));
        ASSERT_EQ(serial.size(), 8u);
        for (char c : serial) EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(c))) << serial;
        EXPECT_LE(makeRegistrationName(a).size(), 15u);
        makeRegistrationName(b);
    }
}

TEST_F(OrganMakeFiles, WritesEachFamilyPastTakenNumbers) {
    tree.write("FAKEPRFILES - T1/SUPSET01.LPG", "mine");
    tree.write("FAKEPRFILES - T1/APSET002.LPG", "mine");
    RandomSource random(5);
    const MakeFilesResult result =
        MakeFiles(ctx, {tree.root(), "T1", /*presets*/ 3, /*songs*/ 2}, random);
    EXPECT_EQ(result.folder, tree.path("FAKEPRFILES - T1"));
    EXPECT_EQ(result.written,
              (std::vector<std::string>{
                  "SUPSET02.LPG", "SUPSET03.LPG", "SUPSET04.LPG", "APSET001.LPG", "APSET003.LPG",
                  "APSET004.LPG", "EPSET001.EPG", "EPSET002.EPG", "EPSET003.EPG", "SUSONG01.LMR",
                  "SUSONG02.LMR", "ASONG001.LMR", "ASONG002.LMR", "ESONG001.EMR", "ESONG002.EMR"}));
    EXPECT_EQ(tree.read("FAKEPRFILES - T1/SUPSET01.LPG"), "mine");  // never overwritten
    EXPECT_FALSE(ui.progressVisible);
    EXPECT_EQ(ui.progressValue, 15);
    EXPECT_EQ(ui.status[StatusPanel::Progress], "15 test files written");
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(OrganMakeFiles, FilesReadBackWithRecordsAtEveryButton) {
    RandomSource random(9);
    const MakeFilesResult result = MakeFiles(ctx, {tree.root(), "", 1, 1}, random);
    ASSERT_EQ(result.written.size(), 6u);
    EXPECT_TRUE(startsWith(fileNameUtf8(result.folder), "FAKEPRFILES - "));
    for (const auto& name : result.written) {
        SCOPED_TRACE(name);
        const auto file = result.folder / name;
        const NameInfo info = classifyName(name);
        const Series family = *seriesOf(name);
        EXPECT_EQ(info.number, 1);
        EXPECT_EQ(readFileVersion(file), family == Series::SU  ? "2"
                                         : family == Series::A ? "3"
                                                               : "4");
        const std::string bytes = readWholeFile(file);
        const std::string ownName = readPresetName(file);
        EXPECT_NE(ownName.find("'s "), std::string::npos);
        EXPECT_EQ(trim(fieldAt(bytes, 33)), ownName);
        const std::string kindWord =
            info.kind == FileKind::Preset ? "Preset    \r\n" : "Song      \r\n";
        EXPECT_EQ(bytes.substr(48, 12), kindWord);

        const int firstButton = family == Series::SU ? 1 : 0;
        std::int32_t last = 0;
        for (char bank = 'A'; bank <= 'E'; ++bank) {
            for (int n = firstButton; n <= 10; ++n) {
                const std::string code = bank + std::to_string(n);
                const std::int32_t pos = calcAddress(family, info.kind, code);
                const std::string field = fieldAt(bytes, pos);
                ASSERT_EQ(field.size(), 16u) << code;
                EXPECT_NE(trim(field), "") << code;
                last = std::max(last, pos);
            }
        }
        if (family == Series::SU) {
            EXPECT_NE(trim(fieldAt(bytes, calcAddress(family, info.kind, "A0"))), "");
        }
        EXPECT_EQ(bytes.size(), static_cast<std::size_t>(last - 1 + recordLength(family)));
    }
}

TEST_F(OrganMakeFiles, StopsAtTheOrgansNumberRange) {
    RandomSource random(1);
    const MakeFilesResult result = MakeFiles(ctx, {tree.root(), "R", 0, 41}, random);
    EXPECT_EQ(result.written.size(), 120u);
    EXPECT_EQ(result.notWritten, 3);
    EXPECT_TRUE(tree.exists("FAKEPRFILES - R/SUSONG40.LMR"));
    EXPECT_FALSE(tree.exists("FAKEPRFILES - R/SUSONG41.LMR"));
}

TEST_F(OrganMakeFiles, WritesOnlyTheChosenFamilies) {
    RandomSource random(1);
    MakeFilesRequest request{tree.root(), "F", 2, 1};
    request.families = {Series::E};
    EXPECT_EQ(MakeFiles(ctx, request, random).written,
              (std::vector<std::string>{"EPSET001.EPG", "EPSET002.EPG", "ESONG001.EMR"}));
}

TEST_F(OrganMakeFiles, UnwritableFolderGoesToTheErrorHandler) {
    tree.write("FAKEPRFILES - F", "a file where the folder should be");
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    RandomSource random(1);
    const MakeFilesResult result = MakeFiles(ctx, {tree.root(), "F", 1, 1}, random);
    EXPECT_TRUE(ui.done());
    EXPECT_TRUE(result.written.empty());
}

}  // namespace
}  // namespace tvk
