#include "mp3/Mp3Frame.h"

namespace tvk::mp3 {

namespace {

// Kilobits per second by bit-rate index (ISO/IEC 11172-3 and 13818-3).
constexpr int kMpeg1[3][16] = {
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0},  // Layer I
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0},     // Layer II
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},      // Layer III
};
constexpr int kMpeg2[2][16] = {
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0},  // Layer I
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},       // Layers II, III
};
constexpr int kRates[3][4] = {
    {44100, 48000, 32000, 0},  // MPEG 1
    {22050, 24000, 26000, 0},  // MPEG 2
    {11025, 12000, 8000, 0},   // MPEG 2.5
};

std::uint32_t bigEndian(std::string_view s, std::size_t at) {
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < 4; ++i) v = (v << 8) | static_cast<unsigned char>(s[at + i]);
    return v;
}

}  // namespace

bool isHeader(const unsigned char* b) {
    return b[0] == 0xFF && (b[1] & 0xE0) == 0xE0;
}

bool decodeHeader(const unsigned char* b, FrameFields& f) {
    if (!isHeader(b)) return false;
    f.version = (b[1] >> 3) & 3;
    f.layer = (b[1] >> 1) & 3;
    f.protection = b[1] & 1;
    f.bitRateIndex = b[2] >> 4;
    f.sampleRateIndex = (b[2] >> 2) & 3;
    f.padding = (b[2] >> 1) & 1;
    f.privateBit = b[2] & 1;
    f.channelMode = b[3] >> 6;
    f.modeExtension = (b[3] >> 4) & 3;
    f.copyright = (b[3] >> 3) & 1;
    f.original = (b[3] >> 2) & 1;
    f.emphasis = b[3] & 3;
    return f.version != 1 && f.layer != 0 && f.bitRateIndex != 0 && f.bitRateIndex != 15 &&
           f.sampleRateIndex != 3;
}

int bitRateKbps(const FrameFields& f) {
    const int layer = layerNumber(f);
    if (layer == 0 || f.bitRateIndex > 15) return 0;
    if (f.version == 3) return kMpeg1[layer - 1][f.bitRateIndex];
    return kMpeg2[layer == 1 ? 0 : 1][f.bitRateIndex];
}

int sampleRate(const FrameFields& f) {
    const int row = f.version == 3 ? 0 : f.version == 2 ? 1 : f.version == 0 ? 2 : -1;
    return row < 0 ? 0 : kRates[row][f.sampleRateIndex & 3];
}

int layerNumber(const FrameFields& f) {
    return f.layer == 0 ? 0 : 4 - f.layer;
}

int samplesPerFrame(const FrameFields& f) {
    switch (layerNumber(f)) {
        case 1:
            return 384;
        case 2:
            return 1152;
        case 3:
            return f.version == 3 ? 1152 : 576;
    }
    return 0;
}

std::uint32_t syncSafeSize(const unsigned char* b) {
    return (std::uint32_t{b[0]} << 21) | (std::uint32_t{b[1]} << 14) | (std::uint32_t{b[2]} << 7) |
           b[3];
}

std::optional<std::uint64_t> id3v2End(std::string_view first10) {
    if (first10.size() < 10 || first10.substr(0, 3) != "ID3") return std::nullopt;
    const auto* b = reinterpret_cast<const unsigned char*>(first10.data());
    if (b[3] == 255 || b[4] == 255) return std::nullopt;
    for (int i = 6; i < 10; ++i)
        if (b[i] >= 128) return std::nullopt;
    // The tag's own ten bytes come before the size it states; a footer adds ten more.
    const std::uint64_t footer = (b[5] & 0x10) ? 10 : 0;
    return 10 + std::uint64_t{syncSafeSize(b + 6)} + footer;
}

std::size_t xingOffset(const FrameFields& f) {
    const bool mono = f.channelMode == 3;
    const std::size_t side = f.version == 3 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    return 4 + (f.protection == 0 ? 2 : 0) + side;
}

XingInfo readXing(std::string_view frame, const FrameFields& f) {
    XingInfo info;
    const std::size_t at = xingOffset(f);
    if (frame.size() < at + 8) return info;
    const std::string_view mark = frame.substr(at, 4);
    if (mark != "Xing" && mark != "Info") return info;
    info.found = true;
    info.vbr = mark == "Xing";
    const std::uint32_t flags = bigEndian(frame, at + 4);
    if ((flags & 1) && frame.size() >= at + 12) info.frames = bigEndian(frame, at + 8);
    return info;
}

}  // namespace tvk::mp3
