// The file-I/O layer on real folders: what is left on disk when a write or a copy fails,
// and the classic error numbers users see. Full and pulled sticks: library_copy_test.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

using test::TempTree;

int errorNumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RuntimeError& e) {
        return e.number();
    }
    return 0;
}

TEST(FileIO, WindowsErrorCodesMapToTheClassicNumbers) {
    const struct {
        unsigned long code;
        int number;
    } cases[] = {
        {2, 53},    {3, 76},    {5, 70},   {19, 70}, {21, 71},  {32, 70},
        {33, 70},   {39, 61},   {112, 61}, {80, 58}, {183, 58}, {123, 52},
        {1006, 71}, {1117, 57}, {55, 68},  {17, 74}, {87, 75},
    };
    for (const auto& c : cases)
        EXPECT_EQ(classicNumberForWindowsError(c.code), c.number) << "code " << c.code;
}

TEST(FileIO, WritersReplaceOrRefuseAndLeaveNoTemporaryFile) {
    TempTree tree;
    const auto file = tree.write("d/TVK.ini", "old");
    writeFileReplacing(file, "new contents");
    EXPECT_EQ(tree.read("d/TVK.ini"), "new contents");

    EXPECT_EQ(errorNumberOf([&] { writeNewFile(file, "other"); }), kErrFileAlreadyExists);
    EXPECT_EQ(tree.read("d/TVK.ini"), "new contents");
    writeNewFile(tree.path("d/Caf\u00E9 \u00D1.LPG"), "abc");
    EXPECT_EQ(tree.read("d/Caf\u00E9 \u00D1.LPG"), "abc");

    // Windows tells a missing folder from a missing file; errno says "no such file" for both.
    EXPECT_EQ(errorNumberOf([&] { writeFileReplacing(tree.path("none/x"), "y"); }),
              test::kOnWindows ? kErrPathNotFound : kErrFileNotFound);
    EXPECT_EQ(tree.list("d"), (std::vector<std::string>{"Caf\u00E9 \u00D1.LPG", "TVK.ini"}));
}

TEST(FileIO, ReadersReportMissingFoldersAndOversizedFiles) {
    TempTree tree;
    const auto file = tree.write("p.SPG", std::string(100, 'x'));
    EXPECT_EQ(readWholeFile(file).size(), 100u);
    EXPECT_EQ(readFileHead(file, 32), std::string(32, 'x'));
    EXPECT_EQ(readFileHead(file, 500).size(), 100u);
    EXPECT_EQ(errorNumberOf([&] { readWholeFile(file, 99); }), kErrOutOfMemory);
    EXPECT_EQ(errorNumberOf([&] { readWholeFile(tree.path("gone.SPG")); }), kErrFileNotFound);
    EXPECT_EQ(errorNumberOf([&] { readWholeFile(tree.mkdir("folder")); }), kErrPathFileAccess);
    EXPECT_EQ(errorNumberOf([&] { FileReader{tree.path("gone.SPG")}; }), kErrFileNotFound);
}

// Positioned reads, out of order as an MP3 scan makes them: each reads where it is told,
// stops at the end and never past it.
TEST(FileIO, PositionedReadsStopAtTheEnd) {
    TempTree tree;
    std::string bytes(300, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7);
    FileReader reader(tree.write("f.MP3", bytes));
    EXPECT_EQ(reader.size(), 300u);
    const struct {
        std::uint64_t at;
        std::size_t count, got;
    } reads[] = {{296, 10, 4}, {0, 4, 4}, {300, 1, 0}, {5000, 8, 0}, {10, 0, 0}, {1, 299, 299}};
    for (const auto& r : reads) {
        const std::size_t from = static_cast<std::size_t>(std::min<std::uint64_t>(r.at, 300));
        EXPECT_EQ(reader.readAt(r.at, r.count), bytes.substr(from, r.got)) << r.at;
    }
}

TEST(FileIO, CopyKeepsBytesAndTimeAndNeverReplacesAFile) {
    TempTree tree;
    std::string bytes;
    for (int i = 0; i < 3'000'000; ++i) bytes += static_cast<char>(i * 7);
    const auto source = tree.write("src/SUPSET01.LPG", bytes);
    const auto old = std::filesystem::last_write_time(source) - std::chrono::hours(50);
    std::filesystem::last_write_time(source, old);

    tree.mkdir("dst");
    std::uintmax_t lastDone = 0, calls = 0;
    copyFileSafely(source, tree.path("dst/Piano.LPG"),
                   [&](std::uintmax_t done, std::uintmax_t total) {
                       EXPECT_EQ(total, bytes.size());
                       EXPECT_GT(done, lastDone);
                       lastDone = done;
                       ++calls;
                   });
    EXPECT_EQ(tree.read("dst/Piano.LPG"), bytes);
    EXPECT_EQ(lastDone, bytes.size());
    EXPECT_GE(calls, 2u);
    EXPECT_EQ(std::filesystem::last_write_time(tree.path("dst/Piano.LPG")), old);

    tree.write("dst/Taken.LPG", "keep me");
    EXPECT_EQ(errorNumberOf([&] { copyFileSafely(source, tree.path("dst/Taken.LPG")); }),
              kErrFileAlreadyExists);
    EXPECT_EQ(tree.read("dst/Taken.LPG"), "keep me");
    EXPECT_EQ(errorNumberOf([&] { copyFileSafely(tree.path("src/none"), tree.path("dst/n")); }),
              kErrFileNotFound);
    EXPECT_EQ(tree.list("dst"), (std::vector<std::string>{"Piano.LPG", "Taken.LPG"}));

    renameNoReplace(tree.path("dst/Piano.LPG"), tree.path("dst/Organ.LPG"));
    EXPECT_EQ(errorNumberOf(
                  [&] { renameNoReplace(tree.path("dst/Organ.LPG"), tree.path("dst/Taken.LPG")); }),
              kErrFileAlreadyExists);
    EXPECT_EQ(tree.list("dst"), (std::vector<std::string>{"Organ.LPG", "Taken.LPG"}));
}

}  // namespace
}  // namespace tvk
