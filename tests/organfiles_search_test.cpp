// The content search: the comparison rules, which buttons of which files it reads, the
// boxes it shows and how "Continue?" and Count Only change them.

#include <gtest/gtest.h>

#include "organfiles/ContentSearch.h"
#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

TEST(SearchMatcher, CaseAndWholeWordRules) {
    struct Case {
        const char* field;  // UTF-8, as the file holds it after conversion
        const char* text;
        bool wholeWord, matchCase, matches;
    };
    const Case cases[] = {
        {"PIANO 1         ", "piano", false, false, true},
        {"PIANO 1         ", "piano", false, true, false},
        {"PIANO 1         ", "PIANO", false, true, true},
        {"PIANO 1         ", "PIANO", true, false, false},
        {"PIANO           ", "PIANO", true, false, true},
        {"PIANO           ", "piano", true, false, true},
        {"PIANO           ", "piano", true, true, false},
        {"  Piano         ", " Piano ", true, true, true},   // both sides trimmed
        {"JAZZ            ", "JAZZ  ", false, false, true},  // padding is part of the name
        {"JAZZ ORGAN      ", "z o", false, false, true},
        {"Caf\u00E9 Bar       ", "CAF\u00C9", false, false, true},
        {"Caf\u00E9 Bar       ", "CAF\u00C9", false, true, false},
        {"WHAT?           ", "WHAT\u2192", false, false, false},  // never read as "?"
        {"", "A", false, false, false},                           // past the end of the file
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.field) + " / " + c.text);
        EXPECT_EQ(NameMatcher(c.text, c.wholeWord, c.matchCase).matches(utf8ToCp1252(c.field)),
                  c.matches);
    }
}

// A file holding only the given names, blank elsewhere.
std::string organBytes(Series family, FileKind kind, const std::string& ownName,
                       const std::vector<std::pair<std::int32_t, std::string>>& names) {
    std::string bytes = organHeader(family) + ownName;
    bytes.resize(calcAddress(family, kind, "E10") + 700, ' ');
    for (const auto& [position, name] : names)
        bytes.replace(static_cast<std::size_t>(position - 1), name.size(), name);
    return bytes;
}

struct ContentSearch : test::SessionTest {
    void SetUp() override {
        const auto su = [](const char* code) { return calcAddress("S", "PRESET", code); };
        tree.write("stick/SUPSET01.LPG",
                   organBytes(Series::SU, FileKind::Preset, "My Preset",
                              {{su("A1"), "PIANO 1"}, {431, "Piano Zero"}, {su("D7"), "Flute"}}));
        tree.write("stick/APSET001.APG",
                   organBytes(Series::A, FileKind::Preset, "Jazz Set",
                              {{calcAddress("A", "PRESET", "C5"), "Jazz Piano"}}));
        tree.write("stick/ESONG001.EMR",
                   organBytes(Series::E, FileKind::Recording, "A Song",
                              {{calcAddress("E", "RECORDING", "B2"), "piano"}}));
        tree.write("stick/MYSET.LPG", organBytes(Series::SU, FileKind::Preset, "Piano", {}));
        tree.write("stick/NOTES.TXT", "piano piano");
        tree.write("stick/ANOHEAD.APG", std::string(40, 'x'));
    }
    SearchRequest request(const char* text) {
        SearchRequest r;
        r.folder = tree.path("stick");
        r.text = text;
        r.presets = r.recordings = r.countOnly = true;
        return r;
    }
};

TEST_F(ContentSearch, CountsMatchesOfEachRule) {
    struct Case {
        const char* what;
        const char* text;
        bool presets, recordings, wholeWord, matchCase;
        int matches;
    };
    const Case cases[] = {
        {"any case", "piano", true, true, false, false, 4},  // SU button 0 among them
        {"match case", "Piano", true, true, false, true, 2},
        {"whole word", "piano", true, true, true, false, 1},
        {"presets only", "piano", true, false, false, false, 3},
        {"recordings only", "piano", false, true, false, false, 1},
        {"neither box", "piano", false, false, false, false, 0},
        {"nowhere", "tuba", true, true, false, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        SearchRequest r = request(c.text);
        r.presets = c.presets;
        r.recordings = c.recordings;
        r.wholeWord = c.wholeWord;
        r.matchCase = c.matchCase;
        ui.shown.clear();
        ui.expect(c.matches ? "MATCHES FOUND" : "NO MATCHES");
        EXPECT_EQ(btnSearch_Click(ctx, r).matches, c.matches);
        ASSERT_TRUE(ui.done());
        ASSERT_EQ(ui.shown.size(), 1u);  // Count Only: the summary alone
        EXPECT_EQ(ui.shown[0].icon, c.matches ? Icon::Information : Icon::Critical);
    }
}

TEST_F(ContentSearch, ShowsEachMatchAndCountsItInTheSummary) {
    SearchRequest r = request("Zero");
    r.countOnly = false;
    ui.expect("MATCH FOUND", Answer::Yes).expect("MATCHES FOUND");
    EXPECT_EQ(btnSearch_Click(ctx, r).matches, 1);
    ASSERT_TRUE(ui.done());
    // SU button 0 of bank A is the record before A1.
    EXPECT_EQ(ui.shown[0].text,
              "\"Zero\" found in file SUPSET01.LPG\r\rPreset Filename: My Preset       \r"
              "Preset: A0\rName: \"Piano Zero      \"\rOffset: 431\r\rContinue?");
    EXPECT_EQ(ui.shown[0].buttons, Buttons::YesNo);
    EXPECT_EQ(ui.shown[1].text, "\"Zero\" was found 1 times.");
}

TEST_F(ContentSearch, NoToContinueEndsTheSearchThere) {
    SearchRequest r = request("piano");
    r.countOnly = false;
    ui.expect("MATCH FOUND", Answer::Yes).expect("MATCH FOUND", Answer::No);
    const SearchReport report = btnSearch_Click(ctx, r);
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.matches, 2);
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(ui.shown.size(), 2u);  // no summary after No
    EXPECT_FALSE(ui.progressVisible);
}

TEST_F(ContentSearch, EmptyTextIsRefused) {
    ui.expect("SEARCH");
    EXPECT_EQ(btnSearch_Click(ctx, request("")).filesSearched, 0);
    EXPECT_TRUE(ui.done());
}

}  // namespace
}  // namespace tvk
