#include "app/Text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace tvk {

std::filesystem::path pathFromUtf8(std::string_view utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string pathToUtf8(const std::filesystem::path& path) {
    const std::u8string s = path.u8string();
    return std::string(s.begin(), s.end());
}

std::string fileNameUtf8(const std::filesystem::path& path) {
    return pathToUtf8(path.filename());
}

std::string toUpperAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::string toLowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last - first + 1));
}

std::string trimWhitespace(std::string_view text) {
    const char* ws = " \t\r\n\f\v";
    const auto first = text.find_first_not_of(ws);
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(ws);
    return std::string(text.substr(first, last - first + 1));
}

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

bool iequals(std::string_view a, std::string_view b) {
    return a.size() == b.size() && toUpperAscii(a) == toUpperAscii(b);
}

namespace {
bool isContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

// Byte offset of the character with index `characters`, or text.size().
std::size_t offsetOfCharacter(std::string_view text, std::size_t characters) {
    std::size_t i = 0, n = 0;
    while (i < text.size() && n < characters) {
        ++i;
        while (i < text.size() && isContinuation(static_cast<unsigned char>(text[i]))) ++i;
        ++n;
    }
    return i;
}
}  // namespace

std::size_t utf8Length(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return !isContinuation(static_cast<unsigned char>(c));
    }));
}

std::string utf8Left(std::string_view text, std::size_t characters) {
    return std::string(text.substr(0, offsetOfCharacter(text, characters)));
}

std::string utf8Right(std::string_view text, std::size_t characters) {
    const std::size_t length = utf8Length(text);
    if (characters >= length) return std::string(text);
    return std::string(text.substr(offsetOfCharacter(text, length - characters)));
}

std::string utf8ToUpper(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 'a' && c <= 'z') {
            out += static_cast<char>(c - 32);
        } else if (c == 0xC3 && i + 1 < text.size()) {
            // Latin-1 small letters U+00E0..U+00FE (but not U+00F7) map 0x20 down.
            auto d = static_cast<unsigned char>(text[i + 1]);
            if (d >= 0xA0 && d <= 0xBE && d != 0xB7) d = static_cast<unsigned char>(d - 0x20);
            out += static_cast<char>(c);
            out += static_cast<char>(d);
            ++i;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

std::string zeroPad(long long value, int width) {
    char buf[32];
    if (value < 0) {
        std::snprintf(buf, sizeof buf, "-%0*lld", width, -value);
    } else {
        std::snprintf(buf, sizeof buf, "%0*lld", width, value);
    }
    return buf;
}

std::string hexUpper(unsigned long long value) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%llX", value);
    return buf;
}

std::string toDisplayLines(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            out += '\n';
            if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

namespace {
// Case-insensitive glob over bytes; '?' consumes one UTF-8 character.
bool globMatch(std::string_view name, std::string_view pat) {
    std::size_t n = 0, p = 0, starP = std::string_view::npos, starN = 0;
    auto step = [&](std::size_t i) {
        ++i;
        while (i < name.size() && isContinuation(static_cast<unsigned char>(name[i]))) ++i;
        return i;
    };
    auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; };
    while (n < name.size()) {
        if (p < pat.size() && pat[p] == '*') {
            starP = p++;
            starN = n;
        } else if (p < pat.size() && (pat[p] == '?' || lower(pat[p]) == lower(name[n]))) {
            n = pat[p] == '?' ? step(n) : n + 1;
            ++p;
        } else if (starP != std::string_view::npos) {
            p = starP + 1;
            n = starN = step(starN);
        } else {
            return false;
        }
    }
    while (p < pat.size() && pat[p] == '*') ++p;
    return p == pat.size();
}
}  // namespace

bool matchesWildcard(std::string_view name, std::string_view pattern) {
    // "*.*" matches every name, with or without a dot, as the file lists show it.
    if (pattern == "*.*" || pattern == "*") return true;
    return globMatch(name, pattern);
}

bool matchesPatternList(std::string_view name, std::string_view patterns) {
    std::size_t start = 0;
    while (start <= patterns.size()) {
        const auto end = patterns.find(';', start);
        const auto one = patterns.substr(start, end == std::string_view::npos ? end : end - start);
        if (!one.empty() && matchesWildcard(name, trim(one))) return true;
        if (end == std::string_view::npos) break;
        start = end + 1;
    }
    return false;
}

}  // namespace tvk
