// The preset name editor's load and commit: whole files compared byte for byte after a
// commit, the 15/16-character rules, and files that must be refused and left alone.

#include <gtest/gtest.h>

#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"
#include "organfiles/PresetNames.h"
#include "support/DriveImages.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

std::string presetBytes(Series family, const std::string& name = "Anna's Jazz") {
    RandomSource random(3);
    return buildTestFile(family, FileKind::Preset, name, random);
}

// Whole files compared without printing kilobytes of binary on a failure.
::testing::AssertionResult sameBytes(const std::string& actual, const std::string& expected) {
    if (actual == expected) return ::testing::AssertionSuccess();
    std::size_t at = 0;
    while (at < actual.size() && at < expected.size() && actual[at] == expected[at]) ++at;
    return ::testing::AssertionFailure() << "sizes " << actual.size() << " and " << expected.size()
                                         << ", first difference at position " << at + 1;
}

void put(std::string& bytes, std::int32_t position, std::string_view field) {
    bytes.replace(static_cast<std::size_t>(position - 1), field.size(), field);
}

struct PresetEditor : test::SessionTest {};

// Load, change a few boxes, commit: only those name bytes differ, by the family's rule.
TEST_F(PresetEditor, CommitChangesOnlyTheEditedNameBytes) {
    struct Case {
        const char* file;
        Series family;
        std::size_t boxes;
        const char* firstCode;
        std::size_t width;
    };
    for (const Case c : {Case{"SUPSET07.LPG", Series::SU, 50, "A1", 15},
                         Case{"APSET012.APG", Series::A, 55, "A0", 16},
                         Case{"EPSET003.EPG", Series::E, 55, "A0", 16}}) {
        SCOPED_TRACE(c.file);
        // Sixteen characters in the fields whose last byte must survive a 15-byte write.
        std::string original = presetBytes(c.family, "Grandpa's Swing!");
        put(original, calcAddress(c.family, FileKind::Preset, c.firstCode), "ZZZZZZZZZZZZZZZZ");
        const fs::path file = tree.write(c.file, original);
        auto loaded = loadPresetNames(ctx, file);
        ASSERT_TRUE(loaded);
        ASSERT_EQ(loaded->boxes.size(), c.boxes);
        EXPECT_EQ(loaded->boxes.front().code, c.firstCode);
        EXPECT_EQ(loaded->boxes.back().code, "E10");
        EXPECT_EQ(loaded->fileName, "Grandpa's Swing!");
        for (const auto& box : loaded->boxes)
            EXPECT_EQ(box.name, trim(fieldAt(original, box.position))) << box.code;

        PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
        edit.fileName = "SIXTEEN CHARS 16";  // only 15 are kept
        edit.names[0] = "ABCDEFGHIJKLMNOP";  // 16: SU keeps 15 and its sixteenth byte
        edit.names[7] = "Caf\u00E9 \u20AC";  // written in Windows-1252, padded
        edit.names[c.boxes - 1] = "";        // cleared to spaces
        ASSERT_TRUE(commitPresetNames(ctx, *loaded, edit));

        std::string expected = original;
        put(expected, 33, "SIXTEEN CHARS 1");
        put(expected, loaded->boxes[0].position,
            std::string("ABCDEFGHIJKLMNOP").substr(0, c.width));
        put(expected, loaded->boxes[7].position,
            std::string("Caf\xE9 \x80") + std::string(c.width - 6, ' '));
        put(expected, loaded->boxes.back().position, std::string(c.width, ' '));
        EXPECT_TRUE(sameBytes(test::readFile(file), expected));
        EXPECT_EQ(tree.list(), std::vector<std::string>{c.file});  // no temporary left

        const auto again = loadPresetNames(ctx, file, "frmPresetRename.btnReload_Click");
        ASSERT_TRUE(again);
        EXPECT_EQ(again->fileName, "SIXTEEN CHARS 1!");
        EXPECT_EQ(again->boxes[0].name, c.width == 15 ? "ABCDEFGHIJKLMNOZ" : "ABCDEFGHIJKLMNOP");
        EXPECT_EQ(again->boxes[7].name, "Caf\u00E9 \u20AC");
        EXPECT_EQ(again->boxes.back().name, "");
        fs::remove(file);
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(PresetEditor, UnchangedBoxesKeepTheirBytes) {
    std::string original = presetBytes(Series::A);
    const auto a3 = calcAddress(Series::A, FileKind::Preset, "A3");
    put(original, a3, std::string("  Lead\0in    \0\0", 16));  // leading blanks, odd bytes
    const fs::path file = tree.write("APSET001.LPG", original);
    const auto loaded = loadPresetNames(ctx, file);
    ASSERT_TRUE(loaded);
    ASSERT_TRUE(commitPresetNames(ctx, *loaded, PresetNamesEdit::from(*loaded)));
    EXPECT_TRUE(sameBytes(test::readFile(file), original));
}

TEST_F(PresetEditor, RefusesFilesItCannotEdit) {
    const std::string su = presetBytes(Series::SU);
    const auto lastName = calcAddress(Series::SU, FileKind::Preset, "E10") + 15;
    struct Case {
        const char* file;
        std::string bytes;
        const char* title;
    };
    const Case cases[] = {
        {"SUPSET01.LPG", su.substr(0, static_cast<std::size_t>(lastName) - 1), "RENAME PRESETS"},
        {"MYSET.LPG", su, "RENAME PRESETS"},
        {"ASONG001.LMR", su, "RENAME PRESETS"},
        {"SUPSET02.LPG", {}, "TVK: RUNTIME ERROR"},  // not there at all
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const fs::path file = c.bytes.empty() ? tree.path(c.file) : tree.write(c.file, c.bytes);
        ui.expect(c.title, Answer::Ignore);
        EXPECT_FALSE(loadPresetNames(ctx, file));
        EXPECT_TRUE(ui.done());
        if (!c.bytes.empty()) {
            EXPECT_TRUE(sameBytes(test::readFile(file), c.bytes));
        }
    }
    // Exactly long enough for the last name is enough.
    EXPECT_TRUE(loadPresetNames(ctx, tree.write("SUPSET03.LPG", su.substr(0, lastName))));
}

TEST_F(PresetEditor, CommitRefusalsLeaveTheFileAsItWas) {
    const std::string original = presetBytes(Series::E);
    struct Case {
        const char* what;
        std::function<void(const fs::path&)> meddle;
        std::string newName;
    };
    const Case cases[] = {
        {"vanished", [](const fs::path& f) { fs::remove(f); }, "New"},
        {"read-only",
         [](const fs::path& f) {
             fs::permissions(f, fs::perms::owner_read | fs::perms::group_read);
         },
         "New"},
        {"grew", [](const fs::path& f) { test::writeFile(f, test::readFile(f) + "x"); }, "New"},
        {"not Windows-1252", [](const fs::path&) {}, "Piano \u2192 Organ"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path file = tree.write("EPSET001.EPG", original);
        const auto loaded = loadPresetNames(ctx, file);
        ASSERT_TRUE(loaded);
        c.meddle(file);
        const std::string meddled = fs::exists(file) ? test::readFile(file) : "";
        PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
        edit.names[3] = c.newName;
        ui.expect("RENAME PRESETS");
        EXPECT_FALSE(commitPresetNames(ctx, *loaded, edit));
        EXPECT_TRUE(ui.done());
        EXPECT_TRUE(sameBytes(fs::exists(file) ? test::readFile(file) : "", meddled));
        EXPECT_LE(tree.list().size(), 1u);  // no temporary left behind
        if (fs::exists(file)) {
            fs::permissions(file, fs::perms::owner_all);
            fs::remove(file);
        }
    }
}

// The stick is where the only copy lives: a commit on a real FAT volume.
TEST_F(PresetEditor, CommitsOnAFatStick) {
    TVK_REQUIRE_FUSE();
    const auto image = test::makeImage(tree, "stick.img", {"fat16", 32, "ORGAN", ""});
    test::ImageDriveContext drives({image});
    Context fat = drives.ctx();
    const fs::path folder = drives.root() / "TAVRIN";
    fs::create_directory(folder);
    const std::string original = presetBytes(Series::SU);
    test::writeFile(folder / "SUPSET01.LPG", original);
    const auto loaded = loadPresetNames(fat, folder / "SUPSET01.LPG");
    ASSERT_TRUE(loaded);
    PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
    edit.names[49] = "Theatre Organ";
    ASSERT_TRUE(commitPresetNames(fat, *loaded, edit));
    std::string expected = original;
    put(expected, loaded->boxes[49].position, "Theatre Organ  ");
    EXPECT_TRUE(sameBytes(test::readFile(folder / "SUPSET01.LPG"), expected));
    EXPECT_TRUE(drives.ui.shown.empty());
}

}  // namespace
}  // namespace tvk
