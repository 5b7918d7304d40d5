// The preset name editor's load and commit: whole files compared byte for byte after a
// commit, the 15/16-character rules, and files that must be refused and left alone.

#include <gtest/gtest.h>

#include "organfiles/PresetNames.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

std::string presetBytes(Series family) {
    return test::generatedOrganFile(family, FileKind::Preset, "Grandpa's Swing!", 3);
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
        std::size_t boxes, width;
        const char* firstCode;
    };
    for (const Case c : {Case{"SUPSET07.LPG", Series::SU, 50, 15, "A1"},
                         Case{"APSET012.APG", Series::A, 55, 16, "A0"},
                         Case{"EPSET003.EPG", Series::E, 55, 16, "A0"}}) {
        SCOPED_TRACE(c.file);
        // A full first field, whose sixteenth byte must survive a 15-byte write, and an
        // untouched field with leading blanks and odd bytes that must stay as it is.
        std::string original = presetBytes(c.family);
        put(original, calcAddress(c.family, FileKind::Preset, c.firstCode), "ZZZZZZZZZZZZZZZZ");
        put(original, calcAddress(c.family, FileKind::Preset, "A3"), std::string("  Le\0d ", 7));
        const fs::path file = tree.write(c.file, original);
        const auto loaded = loadPresetNames(ctx, file);
        ASSERT_TRUE(loaded);
        ASSERT_EQ(loaded->boxes.size(), c.boxes);
        EXPECT_EQ(loaded->boxes.front().code, c.firstCode);
        EXPECT_EQ(loaded->fileName, "Grandpa's Swing!");
        for (const auto& box : loaded->boxes)
            EXPECT_EQ(box.name, trim(fieldAt(original, box.position))) << box.code;

        PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
        edit.fileName = "SIXTEEN CHARS 16";  // only 15 are kept
        edit.names[0] = "ABCDEFGHIJKLMNOP";
        edit.names[7] = "Caf\u00E9 \u20AC";  // written in Windows-1252, padded
        edit.names[c.boxes - 1] = "";
        ASSERT_TRUE(commitPresetNames(ctx, *loaded, edit));

        std::string expected = original;
        put(expected, 33, "SIXTEEN CHARS 1");
        put(expected, loaded->boxes[0].position, std::string("ABCDEFGHIJKLMNOP", c.width));
        put(expected, loaded->boxes[7].position, "Caf\xE9 \x80" + std::string(c.width - 6, ' '));
        put(expected, loaded->boxes.back().position, std::string(c.width, ' '));
        EXPECT_TRUE(test::readFile(file) == expected);
        EXPECT_EQ(tree.list(), std::vector<std::string>{c.file});  // no temporary left
        const auto again = loadPresetNames(ctx, file);
        EXPECT_EQ(again->fileName, "SIXTEEN CHARS 1!");
        EXPECT_EQ(again->boxes[0].name, c.width == 15 ? "ABCDEFGHIJKLMNOZ" : "ABCDEFGHIJKLMNOP");
        fs::remove(file);
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(PresetEditor, RefusesFilesItCannotEdit) {
    const std::string su = presetBytes(Series::SU);
    const auto lastNameEnd = static_cast<std::size_t>(calcAddress("S", "PRESET", "E10") + 15);
    struct Case {
        const char* file;
        std::string bytes;  // none: the file is not there
        const char* title;
    };
    const Case cases[] = {{"SUPSET01.LPG", su.substr(0, lastNameEnd - 1), "RENAME PRESETS"},
                          {"MYSET.LPG", su, "RENAME PRESETS"},
                          {"ASONG001.LMR", su, "RENAME PRESETS"},
                          {"SUPSET02.LPG", {}, "TVK: RUNTIME ERROR"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const fs::path file = c.bytes.empty() ? tree.path(c.file) : tree.write(c.file, c.bytes);
        ui.expect(c.title, Answer::Ignore);
        EXPECT_FALSE(loadPresetNames(ctx, file));
        EXPECT_TRUE(ui.done());
    }
    EXPECT_TRUE(loadPresetNames(ctx, tree.write("SUPSET03.LPG", su.substr(0, lastNameEnd))));
}

TEST_F(PresetEditor, CommitRefusalsLeaveTheFileAsItWas) {
    using Meddle = void (*)(const fs::path&);
    const std::pair<Meddle, const char*> cases[] = {
        {[](const fs::path& f) { fs::remove(f); }, "New"},
        {[](const fs::path& f) { fs::permissions(f, fs::perms::owner_read); }, "New"},
        {[](const fs::path& f) { test::writeFile(f, test::readFile(f) + "x"); }, "New"},
        {[](const fs::path&) {}, "Piano \u2192 Organ"},  // no Windows-1252 byte
    };
    for (const auto& [meddle, newName] : cases) {
        SCOPED_TRACE(newName);
        const fs::path file = tree.write("EPSET001.EPG", presetBytes(Series::E));
        const auto loaded = loadPresetNames(ctx, file);
        meddle(file);
        const std::string meddled = fs::exists(file) ? test::readFile(file) : "";
        PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
        edit.names[3] = newName;
        ui.expect("RENAME PRESETS");
        EXPECT_FALSE(commitPresetNames(ctx, *loaded, edit));
        EXPECT_TRUE(ui.done());
        EXPECT_TRUE((fs::exists(file) ? test::readFile(file) : "") == meddled);
        EXPECT_LE(tree.list().size(), 1u);  // no temporary left behind
        if (fs::exists(file)) fs::permissions(file, fs::perms::owner_all);
    }
}

// The stick is where the only copy lives: a commit on a real FAT volume.
TEST_F(PresetEditor, CommitsOnAFatStick) {
    TVK_REQUIRE_FUSE();
    test::ImageStick drives({"fat16", 32, "ORGAN", ""});
    Context fat = drives.ctx();
    const fs::path file = drives.root() / "SUPSET01.LPG";
    const std::string original = presetBytes(Series::SU);
    test::writeFile(file, original);
    const auto loaded = loadPresetNames(fat, file);
    PresetNamesEdit edit = PresetNamesEdit::from(*loaded);
    edit.names[49] = "Theatre Organ";
    ASSERT_TRUE(commitPresetNames(fat, *loaded, edit));
    std::string expected = original;
    put(expected, loaded->boxes[49].position, "Theatre Organ  ");
    EXPECT_TRUE(test::readFile(file) == expected);
    EXPECT_TRUE(drives.ui.shown.empty());
}

}  // namespace
}  // namespace tvk
