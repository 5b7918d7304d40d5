#include "organfiles/Cp1252.h"
#include "app/Text.h"

#include <array>
#include <cstdint>

namespace tvk {

namespace {

// Code points of bytes 0x80..0x9F; the rest of the page equals Latin-1.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The byte of a character, or -1 when the page has none.
int byteOrNone(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
    for (std::size_t i = 0; i < kHigh.size(); ++i)
        if (kHigh[i] == c) return static_cast<int>(0x80 + i);
    return -1;
}

int byteFor(char32_t c) {
    const int b = byteOrNone(c);
    return b < 0 ? '?' : b;
}

// Decodes one UTF-8 sequence at `i`; a malformed byte stands for itself as Latin-1, so
// text that was never valid UTF-8 still comes through one byte per character.
char32_t decodeAt(std::string_view s, std::size_t& i) {
    const auto b = static_cast<unsigned char>(s[i]);
    int extra = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : 0;
    if (b < 0x80 || extra == 0 || i + extra >= s.size()) {
        ++i;
        return b;
    }
    char32_t c = b & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
        const auto n = static_cast<unsigned char>(s[i + k]);
        if ((n & 0xC0) != 0x80) {
            ++i;
            return b;
        }
        c = (c << 6) | (n & 0x3F);
    }
    i += extra + 1;
    return c;
}

}  // namespace

std::string cp1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        appendUtf8(out, b >= 0x80 && b < 0xA0 ? kHigh[b - 0x80] : char32_t{b});
    }
    return out;
}

std::string utf8ToCp1252(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) out += static_cast<char>(byteFor(decodeAt(utf8, i)));
    return out;
}

bool fitsCp1252(std::string_view utf8) {
    for (std::size_t i = 0; i < utf8.size();)
        if (byteOrNone(decodeAt(utf8, i)) < 0) return false;
    return true;
}

char cp1252Upper(char byte) {
    const auto b = static_cast<unsigned char>(byte);
    const bool small = (b >= 'a' && b <= 'z') || (b >= 0xE0 && b <= 0xFE && b != 0xF7);
    return small ? static_cast<char>(b - 0x20) : byte;
}

std::string cp1252Upper(std::string_view bytes) {
    std::string out(bytes);
    for (char& ch : out) ch = cp1252Upper(ch);
    return out;
}

}  // namespace tvk
