// The MP3 information reader against files made here by lame and ffmpeg and checked
// with ffprobe, plus hand-built headers for cases no encoder writes.

#include <gtest/gtest.h>

#include <sstream>

#include "mp3/cMP3Info.h"
#include "support/SessionTest.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

struct Fixture {
    const char* name;
    const char* command;  // %s the source WAV, %o the output
    const char* version;
    int frequency;
    const char* channelMode;  // "" where the encoder chooses
    bool vbr;
    bool id3v1;
};

const Fixture kFixtures[] = {
    {"cbr", "lame --quiet -b 128 -m s %s %o", "1.0", 44100, "Stereo", false, false},
    {"vbr", "lame --quiet -V 4 -m j %s %o", "1.0", 44100, "Joint Stereo", true, false},
    {"mpeg2", "lame --quiet -m m --resample 22.05 -b 32 %s %o", "2.0", 22050, "Single Channel",
     false, false},
    {"mpeg25", "lame --quiet -m m --resample 8 -b 16 %s %o", "2.5", 8000, "Single Channel", false,
     false},
    {"tagged",
     "lame --quiet -b 128 -m j --tt Title --ta Artist --add-id3v2 --pad-id3v2-size 60000 %s %o",
     "1.0", 44100, "Joint Stereo", false, true},
    {"ffmpeg",
     "ffmpeg -v error -y -i %s -c:a libmp3lame -b:a 96k -metadata title=Tune "
     "-id3v2_version 3 -write_id3v1 1 %o",
     "1.0", 44100, "", false, true},
};

std::string fill(std::string command, const std::string& wav, const std::string& out) {
    command.replace(command.find("%s"), 2, "'" + wav + "'");
    command.replace(command.find("%o"), 2, "'" + out + "'");
    return command;
}

// Made once per test run: a few seconds of tone, encoded every way above.
struct Media {
    test::TempTree tree;
    bool ok = false;
    std::string why;
    Media() {
        for (const char* tool : {"lame", "ffmpeg", "ffprobe"})
            if (!test::haveTool(tool)) {
                why = std::string(tool) + " missing";
                return;
            }
        const std::string wav = tree.path("tone.wav").string();
        if (test::runCommand(
                "ffmpeg -v error -y -f lavfi -i 'sine=frequency=440:duration=5' -ac 2 '" + wav +
                "'") != 0) {
            why = "ffmpeg could not make the tone";
            return;
        }
        for (const auto& f : kFixtures) {
            if (test::runCommand(fill(f.command, wav, path(f.name).string())) != 0) {
                why = std::string("encoding failed: ") + f.name;
                return;
            }
        }
        ok = true;
    }
    std::filesystem::path path(const std::string& name) const { return tree.path(name + ".mp3"); }
};

const Media& media() {
    static Media m;
    return m;
}

std::map<std::string, std::string> probe(const std::filesystem::path& file) {
    std::string out;
    test::runCommand(
        "ffprobe -v error -select_streams a:0 -show_entries "
        "stream=codec_name,sample_rate,channels,duration -of default=nw=1 '" +
            file.string() + "'",
        &out);
    std::map<std::string, std::string> values;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        if (const auto eq = line.find('='); eq != std::string::npos)
            values[line.substr(0, eq)] = line.substr(eq + 1);
    return values;
}

struct Mp3Info : test::SessionTest {
    void SetUp() override {
        TVK_LINUX_ONLY("MP3 files are made with lame and ffmpeg");
        if (!media().ok) GTEST_SKIP() << media().why;
    }
};

TEST_F(Mp3Info, AgreesWithFfprobe) {
    for (const auto& f : kFixtures) {
        SCOPED_TRACE(f.name);
        const auto file = media().path(f.name);
        auto p = probe(file);
        ASSERT_EQ(p["codec_name"], "mp3");
        cMP3Info m(ctx);
        m.LetFilename(file);
        ASSERT_TRUE(m.ValidMP3());
        EXPECT_EQ(m.Layers(), 3);
        EXPECT_EQ(m.MPEGLayer(), std::string("MPEG ") + f.version + " Layer 3");
        EXPECT_EQ(m.Frequency(), std::stol(p["sample_rate"]));
        EXPECT_EQ(m.Frequency(), f.frequency);
        EXPECT_EQ(m.ChannelMode() == "Single Channel", p["channels"] == "1");
        if (*f.channelMode) {
            EXPECT_EQ(m.ChannelMode(), f.channelMode);
        }
        EXPECT_NEAR(m.SongLength(), std::stod(p["duration"]), 1.0);
        EXPECT_EQ(m.isVBR(), f.vbr);
        const auto size = std::filesystem::file_size(file);
        EXPECT_EQ(m.FileSize(), f.id3v1 ? size - 128 : size);
        const std::string bytes = test::readFile(file);
        const std::uint64_t tagEnd = cMP3Info::GetReadPos(bytes);
        EXPECT_GE(m.HeaderOffset(), tagEnd);
        EXPECT_LT(m.HeaderOffset(), tagEnd + 1024);
        EXPECT_EQ(bytes.substr(m.HeaderOffset(), 1), "\xFF");
        if (std::string(f.name) == "tagged") {
            EXPECT_GT(m.HeaderOffset(), 60000u);
        }
        if (!f.vbr) {
            EXPECT_GT(m.BitRate(), 0);
        }

        // The in-memory reader finds the same frame; its whole-number divisions may
        // differ by a rounding.
        cMP3Info b(ctx);
        b.ReadMp3Binary(b.ReadFileBinary(file));
        EXPECT_EQ(b.HeaderOffset(), m.HeaderOffset());
        EXPECT_EQ(b.Frequency(), m.Frequency());
        EXPECT_EQ(b.ChannelMode(), m.ChannelMode());
        EXPECT_EQ(b.FileSize(), m.FileSize());
        EXPECT_NEAR(b.SongLength(), m.SongLength(), 1.0);
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(Mp3Info, RemovesTagsAndTheFileStillPlays) {
    const auto file = tree.path("t.mp3");
    std::filesystem::copy_file(media().path("tagged"), file);
    cMP3Info m(ctx);
    m.LetFilename(file);
    const long seconds = m.SongLength();
    EXPECT_TRUE(m.RemoveV1Tag());
    EXPECT_FALSE(m.RemoveV1Tag());
    EXPECT_TRUE(m.RemovePreHeader());
    EXPECT_FALSE(m.RemovePreHeader());
    EXPECT_EQ(m.HeaderOffset(), 0u);
    EXPECT_EQ(m.FileSize(), std::filesystem::file_size(file));
    EXPECT_EQ(m.SongLength(), seconds);
    EXPECT_NEAR(std::stod(probe(file)["duration"]), seconds, 1.0);
}

// Four header bytes followed by zeros, `size` bytes in all.
std::string frames(std::string head, std::size_t size, std::string lead = {}) {
    std::string bytes = lead + head;
    bytes.resize(std::max(size, bytes.size()), '\0');
    return bytes;
}

struct Mp3Headers : test::SessionTest {
    cMP3Info read(const std::string& bytes) {
        cMP3Info m(ctx);
        m.LetFilename(tree.write("h.mp3", bytes));
        cMP3Info b(ctx);
        b.ReadMp3Binary(bytes);
        EXPECT_EQ(b.ValidMP3(), m.ValidMP3());
        EXPECT_EQ(b.HeaderOffset(), m.HeaderOffset());
        return m;
    }
};

TEST_F(Mp3Headers, HandBuiltCases) {
    // MPEG 2 Layer III, 64 kbit/s, sample-rate index 2, mono: 26000 as the program shows.
    cMP3Info m = read(frames("\xFF\xF3\x88\xC0", 4000));
    EXPECT_EQ(m.Frequency(), 26000);
    EXPECT_EQ(m.MPEGVer(), "2.0");
    EXPECT_EQ(m.ChannelMode(), "Single Channel");

    // An ID3v2 size byte with its high bit set: not a tag, the search starts at byte 0.
    m = read(frames("\xFF\xFB\x90\x0C", 4000, std::string("ID3\x03\x00\x00\x80\x00\x00\x00", 10)));
    EXPECT_TRUE(m.ValidMP3());
    EXPECT_EQ(m.HeaderOffset(), 10u);
    EXPECT_EQ(m.ChannelMode(), "Stereo");
    EXPECT_EQ(m.Emphasis(), "None");
    EXPECT_TRUE(m.CopyRighted());
    EXPECT_TRUE(m.Original());

    // A tag that claims to run past the end finds nothing and does not crash.
    m = read(frames("\xFF\xFB\x90\x00", 400, std::string("ID3\x03\x00\x00\x7F\x7F\x7F\x7F", 10)));
    EXPECT_FALSE(m.ValidMP3());
    EXPECT_EQ(m.BitRate(), 0);

    for (const std::string& junk : {std::string(), std::string("\xFF\xFB"), std::string(5000, 'x'),
                                    std::string("\xFF\xFF\xFF\xFF\xFF\xFF", 6)}) {
        m = read(junk);
        EXPECT_FALSE(m.ValidMP3());
        EXPECT_EQ(m.SongLength(), 0);
        EXPECT_EQ(m.FormattedTime(), "00:00");
        EXPECT_EQ(m.FileSize(), junk.size());
    }
}

TEST_F(Mp3Headers, PlayingTimeDropsHours) {
    // MPEG 2 Layer III at 8 kbit/s: 1,000 bytes a second.
    const std::pair<std::size_t, const char*> cases[] = {{3700u * 1000, "01:40"},
                                                         {3660u * 1000, "01:00"},
                                                         {59u * 1000, "00:59"},
                                                         {754u * 1000, "12:34"}};
    for (const auto& [size, text] : cases) {
        const cMP3Info m = read(frames("\xFF\xF3\x10\xC0", size));
        EXPECT_EQ(m.SongLength(), static_cast<long>(size / 1000));
        EXPECT_EQ(m.FormattedTime(), text);
    }
}

TEST(Mp3Frame, XingSitsAfterTheSideInformation) {
    struct Case {
        const char* header;
        std::size_t offset;
    };
    const Case cases[] = {
        {"\xFF\xFB\x90\x00", 36},  // MPEG 1 stereo
        {"\xFF\xFB\x90\xC0", 21},  // MPEG 1 mono
        {"\xFF\xF3\x90\x00", 21},  // MPEG 2 stereo
        {"\xFF\xF3\x90\xC0", 13},  // MPEG 2 mono
        {"\xFF\xE3\x90\xC0", 13},  // MPEG 2.5 mono
        {"\xFF\xFA\x90\x00", 38},  // MPEG 1 stereo with CRC
    };
    for (const auto& c : cases) {
        mp3::FrameFields f;
        ASSERT_TRUE(mp3::decodeHeader(reinterpret_cast<const unsigned char*>(c.header), f));
        EXPECT_EQ(mp3::xingOffset(f), c.offset);
        std::string frame = std::string(c.header, 4) + std::string(c.offset - 4, '\0') + "Xing" +
                            std::string("\x00\x00\x00\x01\x00\x00\x01\x2D", 8);
        const mp3::XingInfo x = mp3::readXing(frame, f);
        EXPECT_TRUE(x.vbr);
        EXPECT_EQ(x.frames, 301u);
        frame.replace(c.offset, 4, "Info");
        EXPECT_FALSE(mp3::readXing(frame, f).vbr);
        EXPECT_FALSE(mp3::readXing(frame.substr(0, c.offset + 6), f).frames.has_value());
    }
    EXPECT_EQ(cMP3Info::StringToSizeBin(std::string("\x00\x00\x02\x01", 4)), 257u);
}

// Random bytes are the MP3 fuzz harness's.
TEST_F(Mp3Headers, SurvivesTruncatedFiles) {
    std::string real;
    if (media().ok) real = test::readFile(media().path("tagged"));
    for (std::size_t n = 0; n < real.size(); n += 4999) {
        const cMP3Info m = read(real.substr(0, n));
        if (m.ValidMP3()) {
            EXPECT_GT(m.Frequency(), 0);
            EXPECT_LT(m.HeaderOffset(), n);
        }
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(Mp3Headers, MissingFileGoesToTheErrorHandler) {
    ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    cMP3Info m(ctx);
    m.LetFilename(tree.path("none.mp3"));
    EXPECT_TRUE(ui.done());
    EXPECT_NE(ui.shown[0].text.find("cMP3Info.ReadMp3"), std::string::npos);
    EXPECT_FALSE(m.ValidMP3());
    EXPECT_FALSE(m.FileExists());
}

}  // namespace
}  // namespace tvk
