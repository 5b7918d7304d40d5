#include "drive/MountInfo.h"

#include <charconv>

namespace tvk {

namespace {

std::vector<std::string_view> splitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t at = 0;
    while (at < line.size()) {
        while (at < line.size() && line[at] == ' ') ++at;
        const std::size_t end = std::min(line.find(' ', at), line.size());
        if (end > at) fields.push_back(line.substr(at, end - at));
        at = end;
    }
    return fields;
}

bool parseUnsigned(std::string_view text, unsigned& value) {
    const auto [p, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return ec == std::errc() && p == text.data() + text.size();
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

bool MountEntry::readOnly() const {
    return options == "ro" || options.rfind("ro,", 0) == 0;
}

std::string unescapeMountField(std::string_view field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const bool octal = field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' &&
                           field[i + 1] <= '3' && field[i + 2] >= '0' && field[i + 2] <= '7' &&
                           field[i + 3] >= '0' && field[i + 3] <= '7';
        if (octal) {
            out += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                     (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

std::optional<MountEntry> parseMountInfoLine(std::string_view line) {
    // id parent major:minor root mount-point options [optional...] - type source super
    const auto f = splitFields(line);
    std::size_t dash = 6;
    while (dash < f.size() && f[dash] != "-") ++dash;
    if (f.size() < 7 || dash + 2 >= f.size()) return std::nullopt;
    const auto colon = f[2].find(':');
    MountEntry e;
    if (colon == std::string_view::npos || !parseUnsigned(f[2].substr(0, colon), e.major) ||
        !parseUnsigned(f[2].substr(colon + 1), e.minor))
        return std::nullopt;
    e.root = unescapeMountField(f[3]);
    e.mountPoint = unescapeMountField(f[4]);
    e.options = std::string(f[5]);
    e.fsType = unescapeMountField(f[dash + 1]);
    e.source = unescapeMountField(f[dash + 2]);
    return e;
}

std::vector<MountEntry> parseMountInfo(std::string_view text) {
    std::vector<MountEntry> entries;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (auto e = parseMountInfoLine(text.substr(at, end - at))) entries.push_back(*e);
        at = end + 1;
    }
    return entries;
}

std::string decodeUdevEscapes(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x' &&
            hexDigit(text[i + 2]) >= 0 && hexDigit(text[i + 3]) >= 0) {
            out += static_cast<char>(hexDigit(text[i + 2]) * 16 + hexDigit(text[i + 3]));
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::map<std::string, std::string> parseUdevData(std::string_view text) {
    std::map<std::string, std::string> props;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = text.substr(at, end - at);
        const auto eq = line.find('=');
        if (line.rfind("E:", 0) == 0 && eq != std::string_view::npos)
            props[std::string(line.substr(2, eq - 2))] = std::string(line.substr(eq + 1));
        at = end + 1;
    }
    return props;
}

}  // namespace tvk
