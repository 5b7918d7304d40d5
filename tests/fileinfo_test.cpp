// The file information panel: its exact lines for presets, recordings, MP3 and other
// files, the units and date form it uses, and tvk info printing the same lines.

#include <gtest/gtest.h>

#include <chrono>

#include "organfiles/DisplayFileInfo.h"
#include "support/SessionTest.h"

namespace tvk {
namespace {

std::tm localTm(int year, int month, int day, int hour, int minute, int second) {
    std::tm t{};
    t.tm_year = year - 1900;
    t.tm_mon = month - 1;
    t.tm_mday = day;
    t.tm_hour = hour;
    t.tm_min = minute;
    t.tm_sec = second;
    t.tm_isdst = -1;
    return t;
}

TEST(FileInfoText, DatesAndSizes) {
    const std::pair<std::tm, const char*> dates[] = {
        {localTm(2026, 11, 21, 5, 31, 11), "11/21/2026 5:31:11 AM"},
        {localTm(2026, 1, 2, 0, 5, 0), "1/2/2026 12:05:00 AM"},
        {localTm(2026, 12, 31, 12, 0, 9), "12/31/2026 12:00:09 PM"},
        {localTm(2027, 7, 4, 23, 59, 59), "7/4/2027 11:59:59 PM"},
    };
    for (const auto& [tm, text] : dates) EXPECT_EQ(usDateTime(tm), text);

    const std::pair<std::uintmax_t, const char*> kb[] = {
        {0, "0KB"}, {999, "0KB"}, {1500, "1KB"}, {1024000, "1024KB"}};
    for (const auto& [bytes, text] : kb) EXPECT_EQ(kilobytesText(bytes), text);
    const std::pair<std::uintmax_t, const char*> mb[] = {{0, "0.00MB"},
                                                         {1572864, "1.50MB"},
                                                         {1048576, "1.00MB"},
                                                         {5242, "0.00MB"},
                                                         {5243, "0.01MB"},
                                                         {1047527, "1.00MB"},
                                                         {10 * 1048576 + 1042, "10.00MB"}};
    for (const auto& [bytes, text] : mb) EXPECT_EQ(megabytesText(bytes), text) << bytes;
}

struct FileInfo : test::SessionTest {
    std::filesystem::path make(const std::string& name, std::string bytes, std::size_t size) {
        bytes.resize(std::max(size, bytes.size()), '\0');
        const auto file = tree.write(name, bytes);
        std::tm when = localTm(2026, 11, 21, 5, 31, 11);
        const auto sys = std::chrono::system_clock::from_time_t(std::mktime(&when));
        std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(sys));
        return file;
    }
};

const std::string kHeaderA =
    std::string("\x5A\xA5\x16\x5F") + "    S\\      TAVRN SEQ Ver3.0" + "MY PRESET       ";

TEST_F(FileInfo, PanelLinesByKind) {
    struct Case {
        const char* name;
        std::string bytes;
        std::size_t size;
        const char* text;
    };
    const Case cases[] = {
        {"APSET001.LPG", kHeaderA, 1500,
         "File Version: 3\rPreset Name: MY PRESET\rModified: 11/21/2026 5:31:11 AM\r"
         "File Size: 1KB"},
        {"song.amr", kHeaderA, 35000,
         "File Version: 3\rSong Name: MY PRESET\rModified: 11/21/2026 5:31:11 AM\r"
         "File Size: 35KB"},
        // MPEG 1 Layer III, 128 kbit/s, 44.1 kHz, stereo: 98.3 seconds of frames.
        {"tune.Mp3", "\xFF\xFB\x90\x00", 1572864,
         "Modified: 11/21/2026 5:31:11 AM\rLength: 01:38\rBitrate: 128\rFile Size: 1.50MB\r"
         "Stereo"},
        {"empty.mp3", "", 0,
         "Modified: 11/21/2026 5:31:11 AM\rLength: 00:00\rBitrate: 0\rFile Size: 0.00MB\r"},
        // A damaged preset, or a picture whose extension ends in "pg": no error box.
        {"PLAIN.EPG", "A plain text file, no mark at all", 100,
         "File Version: unknown (no TAVRN header)\rPreset Name: A plain text fil\r"
         "Modified: 11/21/2026 5:31:11 AM\rFile Size: 0KB"},
        {"holiday.jpg", "A plain text file, no mark at all", 100,
         "File Version: unknown (no TAVRN header)\rPreset Name: A plain text fil\r"
         "Modified: 11/21/2026 5:31:11 AM\rFile Size: 0KB"},
        {"notes.txt", "hello", 1500, "Modified: 11/21/2026 5:31:11 AM\rFile Size: 1KB"},
        {"tune.MID", "MThd", 999, "Modified: 11/21/2026 5:31:11 AM\rFile Size: 0KB"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = make(c.name, c.bytes, c.size);
        EXPECT_EQ(DisplayFileInfo(ctx, file), c.text);
        EXPECT_EQ(ctx.state.fileInfoText, c.text);
    }
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_EQ(DisplayFileInfo(ctx, std::filesystem::path()), "");
    EXPECT_EQ(ctx.state.fileInfoText, "");
}

TEST_F(FileInfo, TvkInfoPrintsThePanelLines) {
    const auto preset = make("APSET001.LPG", kHeaderA, 1500);
    const auto other = make("notes.txt", "x", 2500);
    const auto run = test::runTvk({"info", pathToUtf8(preset), pathToUtf8(other)});
    ASSERT_EQ(run.exitCode, 0) << run.output;
    EXPECT_EQ(run.output,
              "File Version: 3\nPreset Name: MY PRESET\nModified: 11/21/2026 5:31:11 AM\n"
              "File Size: 1KB\n\nModified: 11/21/2026 5:31:11 AM\nFile Size: 2KB\n");
}

}  // namespace
}  // namespace tvk
