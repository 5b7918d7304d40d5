// Writing to a stick never damages it, whatever goes wrong: one scenario table on real
// FAT images, run with the console tool (two processes at once and killed processes
// cannot be had otherwise). Every row checks the bytes of every file on the stick and in
// the library, and `fsck.fat -n` on the image.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <set>

#include "app/Text.h"
#include "drive/StickLock.h"
#include "support/DriveImages.h"
#include "support/FakeVolumes.h"
#include "support/OrganBytes.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

// Short enough to read in a failure message, exact enough to tell files apart.
std::string digest(std::string_view bytes) {
    std::uint64_t h = 14695981039346656037ull;
    for (const unsigned char c : bytes) h = (h ^ c) * 1099511628211ull;
    return std::to_string(bytes.size()) + ":" + hexUpper(h);
}

using Digests = std::map<std::string, std::string>;  // file name -> digest

Digests folderDigests(const fs::path& folder) {
    Digests all;
    std::error_code ec;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ec))
        if (entry.is_regular_file())
            all[pathToUtf8(entry.path().lexically_relative(folder))] =
                digest(test::readFile(entry.path()));
    return all;
}

struct StickFile {
    std::string name;    // on the stick
    std::string inside;  // the name inside the preset
    int size = -1;       // cut to this many bytes; whole when negative
};

struct Scenario {
    test::TempTree home;
    fs::path lib = home.mkdir("Documents/Tavrin File Manager");
    fs::path image;
    std::string out;
    std::map<std::string, std::string> made;  // inside name -> digest of the preset

    std::string preset(const std::string& inside, int size = -1) {
        std::string bytes = test::generatedOrganFile(Series::SU, FileKind::Preset, inside,
                                                     static_cast<std::uint32_t>(inside.size()));
        if (size >= 0) bytes.resize(static_cast<std::size_t>(size));
        made[inside] = digest(bytes);
        return bytes;
    }
    void plug(const test::ImageRecipe& recipe, const std::vector<StickFile>& files) {
        image = test::makeImage(home, "stick.img", recipe);
        test::fillTavrin(home, image, {});
        for (const auto& f : files) {
            const auto file = home.write("in/" + f.name, preset(f.inside, f.size));
            ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -i '" + pathToUtf8(image) +
                                       "' '" + pathToUtf8(file) + "' ::TAVRIN/" + f.name),
                      0);
        }
    }
    Digests stick() {
        const auto copy = home.path("out");
        fs::remove_all(copy);
        fs::create_directories(copy);
        test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -n -i '" + pathToUtf8(image) +
                         "' '::TAVRIN/*' '" + pathToUtf8(copy) + "/' 2>/dev/null");
        return folderDigests(copy);
    }
    bool fsckClean(std::string* report) {
        return test::runCommand("fsck.fat -n '" + pathToUtf8(image) + "'", report) == 0;
    }
    // `script` is run by sh in the library folder, with $TVK the console tool on the
    // stick (the user's home only), $IMG the image and $DRIVES where tvk mounts images.
    int run(const std::string& script) {
        // Split by the shell where $TVK is used, so no quotes: the test tree's path has
        // no spaces.
        const std::string tvk = std::string("env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=") +
                                pathToUtf8(home.root()) + " " + TVK_CLI_PATH;
        return test::runCommand(
            "cd '" + pathToUtf8(lib) + "' && TVK=\"" + tvk + "\" IMG='" + pathToUtf8(image) +
                "' DRIVES=/tmp/tavrin-file-manager-$(id -u)/drives sh -c '" + script + "' 2>&1",
            &out);
    }
};

// `wait_for PATTERN`: waits until the tvk started in the background as $pid has a file
// matching PATTERN on the stick's mount.
const std::string kWaitFor =
    "wait_for() { for i in $(seq 400); do for f in $DRIVES/$pid-1/TAVRIN/$1; do "
    "[ -e \"$f\" ] && return 0; done; sleep 0.02; done; return 1; }; ";

struct Row {
    const char* name;
    test::ImageRecipe recipe;
    std::vector<StickFile> stick;
    int libraryPresets;                     // in "Source", to copy onto the stick
    std::function<void(Scenario&)> before;  // after plugging, before `script`
    std::string script;
    std::string said;                          // in the output
    bool stickUnchanged;                       // every file as before the script
    std::map<std::string, std::string> after;  // stick file -> the inside name it holds
    bool fsckClean;
    std::vector<std::string> mirror = {};  // the stick's mirror folder afterwards, when given
};

// A copy of a 24 MB file onto the stick, killed while `pattern` is being written, then
// the next scan.
std::string killedCopy(const std::string& pattern) {
    return kWaitFor +
           "$TVK copy Big STICK --drive-image \"$IMG\" </dev/null & pid=$!; "
           "wait_for \"" +
           pattern +
           "\" && kill -9 $pid; wait; "
           "$TVK scan --verbose --drive-image \"$IMG\" </dev/null";
}

void bigFile(Scenario& s) {
    s.home.write("Documents/Tavrin File Manager/Big/BIG.MID", std::string(24 << 20, 'm'));
}

// SUPSET01.LPG's cluster chain made to run into SUPSET02.LPG's last cluster, as a damaged
// FAT does: SUPSET01.LPG then reads shorter than its size, without any error.
void crossLink(Scenario& s) {
    std::string chains;
    ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mshowfat -i '" + pathToUtf8(s.image) +
                                   "' ::TAVRIN/SUPSET01.LPG ::TAVRIN/SUPSET02.LPG",
                               &chains),
              0);
    // "::/TAVRIN/SUPSET01.LPG <3-19>" for each file.
    std::vector<std::pair<int, int>> runs;
    for (std::size_t at = chains.find('<'); at != std::string::npos; at = chains.find('<', at + 1))
        runs.emplace_back(std::stoi(chains.substr(at + 1)),
                          std::stoi(chains.substr(chains.find('-', at) + 1)));
    ASSERT_EQ(runs.size(), 2u) << chains;
    std::string boot = test::readFile(s.image).substr(0, 64);
    const auto u16 = [&](std::size_t at) {
        return static_cast<unsigned>(static_cast<unsigned char>(boot[at])) |
               static_cast<unsigned>(static_cast<unsigned char>(boot[at + 1])) << 8;
    };
    const unsigned sector = u16(11), reserved = u16(14),
                   fats = static_cast<unsigned char>(boot[16]), fatSectors = u16(22);
    std::fstream img(s.image, std::ios::in | std::ios::out | std::ios::binary);
    const int entry = runs[0].second - 3;  // three clusters before its end
    for (unsigned f = 0; f < fats; ++f) {
        img.seekp((reserved + f * fatSectors) * sector + entry * 2);
        const char to[2] = {static_cast<char>(runs[1].second & 0xFF),
                            static_cast<char>(runs[1].second >> 8)};
        img.write(to, 2);
    }
}

TEST(StickSafety, WritingToAStickNeverDamagesIt) {
    TVK_REQUIRE_FUSE();
    const test::ImageRecipe fat16{"fat16", 32, "ORGAN", "1234ABCD"};
    const test::ImageRecipe fat32{"fat32", 64, "ORGAN", "1234ABCD"};
    const test::ImageRecipe small16{"fat16", 4, "ORGAN", "1234ABCD", 1};
    const std::vector<StickFile> two = {{"SUPSET01.LPG", "Zebra"}, {"SUPSET02.LPG", "Apple"}};
    const std::string busy =
        "[THUMBDRIVE BUSY] The thumbdrive is busy with another command of this program.\n\n"
        "Nothing was changed. Try again when it has finished.";
    const std::string cleaned = "Removed 1 unfinished copies left by a stopped command";
    // clang-format off
    const Row rows[] = {
        {"a cross-linked file fails with 57 and the computer's copy stays", fat16, two, 0,
         [](Scenario& s) {
             ASSERT_EQ(s.run("$TVK add-all --drive-image \"$IMG\" </dev/null"), 0) << s.out;
             crossLink(s);
         },
         "$TVK update --yes --drive-image \"$IMG\"", "failed: SUPSET01.LPG (error 57)",
         true, {}, false},
        {"a copy and a sort started together: one waits with THUMBDRIVE BUSY", fat16, two, 60, {},
         kWaitFor + "$TVK copy --mode RIGHT Source STICK --drive-image \"$IMG\" </dev/null "
         "> copy.txt & pid=$!; wait_for SUPSET03.LPG; $TVK sort --yes --drive-image \"$IMG\"; "
         "wait; cat copy.txt",
         busy, false, {}, true},
        {"a copy killed on FAT32 leaves a temporary file the next scan removes", fat32, two, 0,
         bigFile, killedCopy(".tvk-*.part"), cleaned, true, {}, true},
        {"a copy killed on FAT16 leaves a half file the next mount removes", fat16, two, 0,
         bigFile, killedCopy("BIG.MID"), cleaned, true, {}, true},
        {"a 4 MB FAT16 stick filled by copies stays consistent", small16, {}, 140, {},
         "$TVK copy --mode RIGHT Source STICK --drive-image \"$IMG\" </dev/null", "Err#61",
         false, {}, true},
        {"a zero-length preset is left where it is and never sorted", fat16,
         {{"SUPSET01.LPG", "Zebra"}, {"SUPSET02.LPG", "Apple"}, {"SUPSET03.LPG", "Empty", 0}}, 0,
         {}, "$TVK sort --yes --drive-image \"$IMG\"", "Left as it is: SUPSET03.LPG", false,
         {{"SUPSET01.LPG", "Apple"}, {"SUPSET02.LPG", "Zebra"}, {"SUPSET03.LPG", "Empty"}}, true},
        {"a non-ASCII name is refused as 52 before anything changes", fat16,
         {{"TUNE.MP3", "Tune"}}, 0, {},
         "printf \"Caf\\303\\251 Tune\\n\" | $TVK rename flbUSB STICK TUNE.MP3 "
         "--drive-image \"$IMG\"", "Bad file name", true, {}, true},
        {"inside names Windows cannot open are copied under safe names", fat16,
         {{"SUPSET01.LPG", "CON"}, {"SUPSET02.LPG", "AUX"}, {"SUPSET03.LPG", "NUL.txt."},
          {"SUPSET04.LPG", std::string("a\0b", 3)}}, 0, {},
         "$TVK add-all --drive-image \"$IMG\" </dev/null", "4 copied, 0 removed, 0 failed", true,
         {}, true, {"AUX_.LPG", "CON_.LPG", "NUL_.txt.LPG", "a_b.LPG"}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Scenario s;  // a fresh home, library and stick for each row
        s.plug(row.recipe, row.stick);
        for (int i = 1; i <= row.libraryPresets; ++i)
            s.home.write(
                "Documents/Tavrin File Manager/Source/Preset " + std::to_string(i) + ".SPG",
                s.preset("Preset " + std::to_string(i)));
        if (row.before) row.before(s);
        const Digests stickBefore = s.stick(), libraryBefore = folderDigests(s.lib);
        s.run(row.script);
        EXPECT_NE(s.out.find(row.said), std::string::npos) << row.said << "\n" << s.out;
        const Digests stickAfter = s.stick();
        if (row.stickUnchanged) {
            EXPECT_EQ(stickAfter, stickBefore) << s.out;
        }
        for (const auto& [name, inside] : row.after)
            EXPECT_EQ(stickAfter.at(name), s.made.at(inside)) << name;
        // Whatever is on the stick is a whole file the program was given.
        std::set<std::string> whole;
        for (const auto& [inside, d] : s.made) whole.insert(d);
        for (const auto& [name, d] : stickBefore) whole.insert(d);
        for (const auto& [name, d] : stickAfter) EXPECT_TRUE(whole.count(d)) << name << " is cut";
        // No command here changes a file the library held.
        const Digests libraryAfter = folderDigests(s.lib);
        for (const auto& [name, d] : libraryBefore) {
            const auto now = libraryAfter.find(name);
            EXPECT_TRUE(now != libraryAfter.end() && now->second == d) << name << " changed";
        }
        if (!row.mirror.empty()) {
            std::vector<std::string> names;
            for (const auto& [name, d] : folderDigests(s.lib / "ORGAN - 1234ABCD"))
                names.push_back(name);
            EXPECT_EQ(names, row.mirror) << s.out;
        }
        std::string report;
        if (row.fsckClean) {
            EXPECT_TRUE(s.fsckClean(&report)) << report;
        }
    }
}

// A real stick's lock, keyed by its serial number: readers share it, a writer has it
// alone, and one that cannot get it hears why and gets nothing.
struct StickLockTest : test::SessionTest {
    test::FakeVolumes volumes;
    StickLockTest() {
        volumes.letters["E"].info.serialNumber = 0x5EA1F00D;
        ctx.volumes = &volumes;
        ctx.state.drive.letter = "E";
        ctx.state.drive.serialHex = "5EA1F00D";
    }
};

TEST_F(StickLockTest, SharedForReadersAloneForAWriter) {
    const struct {
        StickUse held, wanted;
        bool busy;
    } cases[] = {
        {StickUse::Read, StickUse::Read, false},
        {StickUse::Read, StickUse::Write, true},
        {StickUse::Write, StickUse::Read, true},
        {StickUse::Write, StickUse::Write, true},
    };
    for (const auto& c : cases) {
        // Another process's lock: flock and LockFileEx keep apart two handles of one
        // process just as they keep apart two processes.
        auto other = StickLock::tryTake("volume-5EA1F00D", c.held);
        ASSERT_TRUE(other);
        if (c.busy) ui.expect("THUMBDRIVE BUSY");
        EXPECT_EQ(lockStick(ctx, c.wanted).has_value(), !c.busy);
        EXPECT_TRUE(ui.done());
        other.reset();
        EXPECT_TRUE(lockStick(ctx, c.wanted).has_value()) << "released with its holder";
    }
    ASSERT_EQ(ui.shown.size(), 3u);
    EXPECT_EQ(ui.shown[0].text,
              "The thumbdrive is busy with another command of this program.\r\r"
              "Nothing was changed. Try again when it has finished.");
    EXPECT_EQ(ui.shown[0].icon, Icon::Exclamation);
}

}  // namespace
}  // namespace tvk
