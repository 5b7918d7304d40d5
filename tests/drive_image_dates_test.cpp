// Image drives show and keep the dates their FAT entries hold, as mtools reads them.

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>

#include "app/Clock.h"
#include "app/FileIO.h"
#include "app/FileTimes.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "library/ListFiles.h"
#include "library/SortFiles.h"
#include "support/DriveImages.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;
using test::TempTree;

std::string minuteText(FileTime t) {
    const std::tm tm = localTime(std::chrono::system_clock::to_time_t(t));
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &tm);
    return text;
}

FileTime parseMinute(const std::string& text) {
    std::tm tm{};
    std::istringstream(text) >> std::get_time(&tm, "%Y-%m-%d %H:%M");
    tm.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&tm));
}

void setTime(const fs::path& file, FileTime t) {
    fs::last_write_time(file, std::chrono::file_clock::from_sys(t));
}

// The date and time mdir lists for STEM.TXT in the image's root, by its short name or,
// for an entry written under another name first, by its long name.
std::string mdirTime(const fs::path& image, const std::string& stem) {
    std::string out;
    EXPECT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mdir -i '" + pathToUtf8(image) + "' ::", &out),
              0)
        << out;
    static const std::regex entry(
        R"(^(\S+)\s+(\S*)\s+\d+ (\d{4}-\d\d-\d\d)\s+(\d+):(\d\d)\s*(\S*))");
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        if (!std::regex_search(line, m, entry)) continue;
        if ((m[1] == stem && m[2] == "TXT") || m[6] == stem + ".TXT")
            return m[3].str() + " " + (m[4].length() == 1 ? "0" : "") + m[4].str() + ":" +
                   m[5].str();
    }
    return "not listed";
}

struct DateCase {
    const char* stem;
    const char* when;
    bool storable;  // the driver cannot be given December, nor a day the next month lacks
};
const DateCase kDates[] = {{"MID", "2021-03-15 10:20", true},
                           {"DEC", "2021-12-15 11:30", false},
                           {"LEAP", "2020-02-29 12:00", true},
                           {"JAN", "2021-01-28 13:45", true},
                           {"NOV", "2019-11-01 09:05", true}};

TEST(ImageDriveDates, EntriesReadAndWrittenThroughFusefatMatchMdir) {
    TVK_REQUIRE_FUSE();
    if (!test::haveTool("mdir")) GTEST_SKIP() << "mtools is not installed";
    TempTree tree;
    const auto image = test::makeImage(tree, "dates.img", {"fat16", 32, "DATES", ""});
    for (const auto& c : kDates) {
        const auto file = tree.write(std::string("src/") + c.stem + ".TXT", "x");
        setTime(file, parseMinute(c.when));
        std::string out;
        ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -m -i '" + pathToUtf8(image) + "' '" +
                                       pathToUtf8(file) + "' ::",
                                   &out),
                  0)
            << out;
        ASSERT_EQ(mdirTime(image, c.stem), c.when);
    }
    {
        test::ImageDriveContext drives({image});
        const fs::path root = drives.root();
        for (const auto& c : kDates) {
            const fs::path onStick = root / (std::string(c.stem) + ".TXT");
            EXPECT_EQ(minuteText(modificationTime(onStick)), c.when) << c.stem;
            // A copy to the computer keeps the entry's date ...
            const fs::path copied = tree.path(std::string("out/") + c.stem + ".TXT");
            fs::create_directories(copied.parent_path());
            copyFileSafely(onStick, copied);
            EXPECT_EQ(minuteText(modificationTime(copied)), c.when) << c.stem;
            // ... and a copy back to the stick gets it into the new entry.
            if (c.storable) copyFileSafely(copied, root / (std::string("W") + c.stem + ".TXT"));
        }
    }
    for (const auto& c : kDates) {
        if (c.storable) {
            EXPECT_EQ(mdirTime(image, std::string("W") + c.stem), c.when) << c.stem;
        }
    }
}

// The driver stamps what it renames with the time of the rename; every file keeps its own
// date through the copy onto the stick, the sort's renames and a rename of its own.
TEST(ImageDriveDates, CopySortAndRenameKeepEachFilesDate) {
    TVK_REQUIRE_FUSE();
    const struct {
        const char *name, *preset, *when;  // the sort puts the three in the opposite order
    } files[] = {{"SUPSET01.LPG", "Zebra", "2021-03-15 10:20"},
                 {"SUPSET02.LPG", "Piano", "2020-02-14 12:00"},
                 {"SUPSET03.LPG", "Flute", "2019-11-01 09:05"}};
    test::ImageStick stick({"fat16", 32, "DATES", ""}, std::vector<std::string>{});
    const fs::path folder = stick.root() / "TAVRIN";
    std::map<std::string, std::string> dateOf;  // by contents, which the renames keep
    for (const auto& f : files) {
        const std::string bytes = test::organHead(Series::SU, f.preset);
        const auto source = stick.tree.write(std::string("src/") + f.name, bytes);
        setTime(source, parseMinute(f.when));
        copyFileSafely(source, folder / f.name);
        dateOf[bytes] = f.when;
    }
    Context ctx = stick.ctx();
    ScanForUSBs(ctx);
    stick.ui.expect("SORT PRESET AND RECORDING NAMES", Answer::Yes)
        .expect("SORT PRESET AND RECORDING NAMES");
    ASSERT_TRUE(btnSort_Click(ctx).completed);
    moveFile(folder / "SUPSET02.LPG", folder / "MY PIANO.LPG");
    int seen = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        ++seen;
        EXPECT_EQ(minuteText(modificationTime(entry.path())), dateOf[readWholeFile(entry.path())])
            << fileNameUtf8(entry.path());
    }
    EXPECT_EQ(seen, 3);
}

TEST(ImageDriveDates, MonthShiftsKeepTheLocalTimeAcrossYears) {
    const struct {
        const char *from, *to;
        int months;
    } cases[] = {{"2022-01-15 10:20", "2021-12-15 10:20", -1},
                 {"2021-12-15 10:20", "2022-01-15 10:20", 1},
                 {"2021-06-30 23:59", "2021-05-30 23:59", -1},
                 {"2021-03-01 00:00", "2020-03-01 00:00", -12}};
    for (const auto& c : cases)
        EXPECT_EQ(minuteText(shiftMonths(parseMinute(c.from), c.months)), c.to) << c.from;
    // Only folders an image driver serves are corrected.
    markMonthOneTooHigh("/media/stick");
    EXPECT_TRUE(monthOneTooHigh("/media/stick/TAVRIN/A.LPG"));
    EXPECT_FALSE(monthOneTooHigh("/media/sticks/A.LPG"));
    forgetMonthOneTooHigh("/media/stick");
    EXPECT_FALSE(monthOneTooHigh("/media/stick/TAVRIN/A.LPG"));
}

}  // namespace
}  // namespace tvk
