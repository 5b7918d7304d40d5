#include "mp3/cMP3Info.h"

#include "app/FileIO.h"

#include <cmath>

#include "app/Routine.h"
#include "app/Text.h"

namespace tvk {

namespace {

constexpr std::size_t kSearchBlock = 65536;
constexpr std::uint64_t kV1TagSize = 128;

// The runtime's conversion to a whole number: halves go to the even neighbour.
long wholeNumber(double value) {
    return static_cast<long>(std::nearbyint(value));
}

const unsigned char* bytesOf(std::string_view s, std::size_t at = 0) {
    return reinterpret_cast<const unsigned char*>(s.data()) + at;
}

// The first qualifying header at or after `start`, searched a block at a time; blocks
// overlap by three bytes so no header is split.
bool findHeader(FileReader& in, std::uint64_t start, std::uint64_t length, mp3::FrameFields& fields,
                std::uint64_t& found) {
    for (std::uint64_t pos = start; pos + 4 <= length;) {
        const auto want =
            static_cast<std::size_t>(std::min<std::uint64_t>(kSearchBlock + 3, length - pos));
        const std::string block = in.readAt(pos, want);
        if (block.size() < 4) return false;
        for (std::size_t i = 0; i + 4 <= block.size(); ++i) {
            if (mp3::decodeHeader(bytesOf(block, i), fields)) {
                found = pos + i;
                return true;
            }
        }
        pos += block.size() - 3;
    }
    return false;
}

bool findHeaderIn(std::string_view bytes, std::uint64_t start, mp3::FrameFields& fields,
                  std::uint64_t& found) {
    for (std::uint64_t i = start; i + 4 <= bytes.size(); ++i) {
        if (mp3::decodeHeader(bytesOf(bytes, static_cast<std::size_t>(i)), fields)) {
            found = i;
            return true;
        }
    }
    return false;
}

}  // namespace

cMP3Info::cMP3Info(Context& ctx) : ctx_(&ctx) {}

void cMP3Info::LetFilename(const std::filesystem::path& file) {
    file_ = file;
    ReadMp3();
}

bool cMP3Info::FileExists() const {
    std::error_code ec;
    return !file_.empty() && std::filesystem::is_regular_file(file_, ec);
}

void cMP3Info::ClearInfo() {
    f_ = {};
    valid_ = vbr_ = false;
    fileSize_ = headerOffset_ = 0;
    bitRate_ = frequency_ = frameLength_ = numFrames_ = songLength_ = 0;
}

void cMP3Info::ReadMp3() {
    routine(*ctx_, "cMP3Info.ReadMp3", [&](Routine& r) {
        ClearInfo();
        r.step("Read " + pathToUtf8(file_), [&] {
            ClearInfo();
            FileReader in(file_);
            const std::uint64_t length = in.size();
            const std::string first10 = in.readAt(0, 10);
            const std::uint64_t start = mp3::id3v2End(first10).value_or(0);
            std::uint64_t at = 0;
            mp3::FrameFields fields;
            const bool v1Tag = length >= kV1TagSize && in.readAt(length - kV1TagSize, 3) == "TAG";
            fileSize_ = v1Tag ? length - kV1TagSize : length;
            if (!findHeader(in, start, length, fields, at)) return;
            f_ = fields;
            headerOffset_ = at;
            const std::string frame = in.readAt(at, mp3::xingOffset(fields) + mp3::kXingBlock);
            derive(length, v1Tag, mp3::readXing(frame, fields), false);
        });
    });
}

void cMP3Info::derive(std::uint64_t length, bool v1Tag, const mp3::XingInfo& xing,
                      bool wholeNumbers) {
    valid_ = true;
    fileSize_ = v1Tag ? length - kV1TagSize : length;
    const long kbps = mp3::bitRateKbps(f_);
    frequency_ = mp3::sampleRate(f_);
    const long spf = mp3::samplesPerFrame(f_);
    const long pad = f_.padding;
    const bool layerOne = mp3::layerNumber(f_) == 1;
    const std::uint64_t audio = fileSize_ > headerOffset_ ? fileSize_ - headerOffset_ : 0;
    vbr_ = xing.vbr;

    if (wholeNumbers) {
        frameLength_ = layerOne ? (12 * kbps * 1000 / frequency_ + pad) * 4
                                : 144 * kbps * 1000 / frequency_ + pad;
        if (vbr_ && xing.frames) {
            numFrames_ = static_cast<long>(*xing.frames) - 1;
            songLength_ = numFrames_ * spf / frequency_;
            bitRate_ = songLength_ > 0 ? static_cast<long>(fileSize_ * 8 / 1000 / songLength_) : 0;
        } else {
            bitRate_ = kbps;
            songLength_ = static_cast<long>(audio * 8 / (kbps * 1000));
            numFrames_ = frameLength_ > 0 ? static_cast<long>(audio / frameLength_) : 0;
        }
        return;
    }
    const double frameBytes = layerOne ? (12.0 * kbps * 1000 / frequency_ + pad) * 4
                                       : 144.0 * kbps * 1000 / frequency_ + pad;
    frameLength_ = wholeNumber(frameBytes);
    if (vbr_ && xing.frames) {
        numFrames_ = static_cast<long>(*xing.frames) - 1;
        const double seconds = static_cast<double>(numFrames_) * spf / frequency_;
        songLength_ = wholeNumber(seconds);
        bitRate_ =
            seconds > 0 ? wholeNumber(static_cast<double>(fileSize_) * 8 / 1000 / seconds) : 0;
    } else {
        bitRate_ = kbps;
        const double seconds = static_cast<double>(audio) * 8 / (kbps * 1000.0);
        songLength_ = wholeNumber(seconds);
        numFrames_ = wholeNumber(seconds * frequency_ / spf);
    }
}

std::string cMP3Info::FormattedTime() const {
    const long minutes = (songLength_ / 60) % 60;
    const long seconds = songLength_ % 60;
    return zeroPad(minutes, 2) + ":" + zeroPad(seconds, 2);
}

std::string cMP3Info::MPEGVer() const {
    if (!valid_) return {};
    return f_.version == 3 ? "1.0" : f_.version == 2 ? "2.0" : "2.5";
}

int cMP3Info::Layers() const {
    return valid_ ? mp3::layerNumber(f_) : 0;
}

std::string cMP3Info::MPEGLayer() const {
    if (!valid_) return {};
    return "MPEG " + MPEGVer() + " Layer " + std::to_string(Layers());
}

std::string cMP3Info::ChannelMode() const {
    if (!valid_) return {};
    static const char* const kModes[] = {"Stereo", "Joint Stereo", "Dual Channel",
                                         "Single Channel"};
    return kModes[f_.channelMode & 3];
}

std::string cMP3Info::Emphasis() const {
    if (!valid_) return {};
    static const char* const kEmphasis[] = {"None", "50/15 ms", "Reserved", "CCIT J.17"};
    return kEmphasis[f_.emphasis & 3];
}

std::string cMP3Info::ReadFileBinary(const std::filesystem::path& file) {
    std::string bytes;
    routine(*ctx_, "cMP3Info.ReadFileBinary", [&](Routine& r) {
        r.step("Read " + pathToUtf8(file), [&] {
            FileReader in(file);
            bytes = in.readAt(0, static_cast<std::size_t>(in.size()));
        });
    });
    return bytes;
}

void cMP3Info::ReadMp3Binary(std::string_view bytes) {
    routine(*ctx_, "cMP3Info.ReadMp3Binary", [&](Routine& r) {
        ClearInfo();
        const std::uint64_t length = bytes.size();
        const bool v1Tag = length >= kV1TagSize && bytes.substr(length - kV1TagSize, 3) == "TAG";
        fileSize_ = v1Tag ? length - kV1TagSize : length;
        std::uint64_t at = 0;
        mp3::FrameFields fields;
        if (!findHeaderIn(bytes, GetReadPos(bytes), fields, at)) return;
        f_ = fields;
        headerOffset_ = at;
        derive(length, v1Tag, mp3::readXing(bytes.substr(static_cast<std::size_t>(at)), fields),
               true);
    });
}

std::uint64_t cMP3Info::GetReadPos(std::string_view bytes) {
    return mp3::id3v2End(bytes.substr(0, std::min<std::size_t>(bytes.size(), 10))).value_or(0);
}

std::uint32_t cMP3Info::StringToSizeBin(std::string_view four) {
    if (four.size() < 4) return 0;
    return mp3::syncSafeSize(bytesOf(four));
}

bool cMP3Info::RemovePreHeader() {
    bool removed = false;
    routine(*ctx_, "cMP3Info.RemovePreHeader", [&](Routine& r) {
        if (!valid_ || headerOffset_ == 0) return;
        r.step("Remove the bytes before the first frame of " + pathToUtf8(file_), [&] {
            std::string rest;
            {
                FileReader in(file_);  // closed before the file is replaced (Windows)
                rest = in.readAt(headerOffset_, static_cast<std::size_t>(in.size()));
            }
            writeFileReplacing(file_, rest);
            removed = true;
        });
    });
    if (removed) ReadMp3();
    return removed;
}

bool cMP3Info::RemoveV1Tag() {
    bool removed = false;
    routine(*ctx_, "cMP3Info.RemoveV1Tag", [&](Routine& r) {
        r.step("Remove the ID3v1 tag of " + pathToUtf8(file_), [&] {
            std::uint64_t length = 0;
            {
                FileReader in(file_);  // closed before the file is cut (Windows)
                length = in.size();
                if (length < kV1TagSize || in.readAt(length - kV1TagSize, 3) != "TAG") return;
            }
            std::filesystem::resize_file(file_, length - kV1TagSize);
            removed = true;
        });
    });
    if (removed) ReadMp3();
    return removed;
}

}  // namespace tvk
