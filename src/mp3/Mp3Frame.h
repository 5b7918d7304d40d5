#pragma once
// MPEG audio frame headers, ID3 tag sizes and the Xing block, decoded from bytes with no
// file access: the reading object (cMP3Info) and the tests share this.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tvk::mp3 {

// The twelve header fields, each as its raw bits.
struct FrameFields {
    std::uint8_t version = 0;     // 3 MPEG 1, 2 MPEG 2, 0 MPEG 2.5, 1 reserved
    std::uint8_t layer = 0;       // 1 Layer III, 2 Layer II, 3 Layer I
    std::uint8_t protection = 0;  // 0: a CRC follows the header
    std::uint8_t bitRateIndex = 0;
    std::uint8_t sampleRateIndex = 0;
    std::uint8_t padding = 0;
    std::uint8_t privateBit = 0;
    std::uint8_t channelMode = 0;  // 3 single channel
    std::uint8_t modeExtension = 0;
    std::uint8_t copyright = 0;
    std::uint8_t original = 0;
    std::uint8_t emphasis = 0;
};

// The eleven sync bits.
bool isHeader(const unsigned char* b);
// Decodes four bytes; false for reserved version or layer, free-format or bad bit rate,
// reserved sample rate.
bool decodeHeader(const unsigned char* b, FrameFields& out);

int bitRateKbps(const FrameFields& f);
// Samples per second. MPEG 2 index 2 gives 26000: the program has always shown that.
int sampleRate(const FrameFields& f);
int layerNumber(const FrameFields& f);  // 1, 2, 3
int samplesPerFrame(const FrameFields& f);

// 7 bits a byte, most significant first (the ID3v2 size).
std::uint32_t syncSafeSize(const unsigned char* b);
// Where the audio search starts after an ID3v2 tag at the start of `first10`, or nullopt
// when there is no valid tag (a size byte with its high bit set disqualifies it).
std::optional<std::uint64_t> id3v2End(std::string_view first10);

// The bytes from the frame header to the "Xing"/"Info" mark: header, CRC when present,
// side information (32 or 17 for MPEG 1 stereo or mono, 17 or 9 for MPEG 2 and 2.5).
std::size_t xingOffset(const FrameFields& f);
// The Xing block's length: mark, flags, frame count, byte count, table, quality.
inline constexpr std::size_t kXingBlock = 120;

struct XingInfo {
    bool vbr = false;  // "Xing"; "Info" marks a constant bit rate file
    bool found = false;
    std::optional<std::uint32_t> frames;
};
// `frame` starts at the frame header and may be short.
XingInfo readXing(std::string_view frame, const FrameFields& f);

}  // namespace tvk::mp3
