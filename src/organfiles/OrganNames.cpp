#include "organfiles/OrganNames.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include "app/Routine.h"
#include "app/Text.h"

namespace tvk {

namespace {

// The characters of `text` from 1-based character `start`, at most `count` of them.
std::string midChars(std::string_view text, std::size_t start, std::size_t count) {
    const std::string tail =
        utf8Right(text, utf8Length(text) >= start ? utf8Length(text) - start + 1 : 0);
    return utf8Left(tail, count);
}

std::optional<Series> seriesOfOwnExtension(std::string_view ext) {
    if (ext == "SPG" || ext == "SMR") return Series::SU;
    if (ext == "APG" || ext == "AMR") return Series::A;
    if (ext == "EPG" || ext == "EMR") return Series::E;
    return std::nullopt;
}

std::optional<Series> seriesOfPrefix(std::string_view name) {
    if (startsWith(name, "SUPSET") || startsWith(name, "SUSONG")) return Series::SU;
    if (startsWith(name, "APSET") || startsWith(name, "ASONG")) return Series::A;
    if (startsWith(name, "EPSET") || startsWith(name, "ESONG")) return Series::E;
    return std::nullopt;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

struct Substitute {
    char from;
    const char* to;  // UTF-8
};
// Order matters only for the trace; each is a one-for-one character swap.
constexpr Substitute kSubstitutes[] = {
    {'\\', "\xC3\x91"}, {'/', "\xC3\x98"}, {':', "\xC2\xA8"}, {'*', "\xC2\xA4"}, {'?', "\xC2\xBF"},
    {'"', "\xC2\xBA"},  {'<', "\xC2\xAB"}, {'>', "\xC2\xBB"}, {'|', "\xC2\xA6"},
};

}  // namespace

const char* nameTypeText(NameType type) {
    switch (type) {
        case NameType::PSET:
            return "PSET";
        case NameType::SONG:
            return "SONG";
        case NameType::NAME:
            return "NAME";
        case NameType::OTHER:
            break;
    }
    return "OTHER";
}

const char* fileKindText(FileKind kind) {
    switch (kind) {
        case FileKind::Preset:
            return "preset";
        case FileKind::Recording:
            return "recording";
        case FileKind::Midi:
            return "MIDI";
        case FileKind::Mp3:
            return "MP3";
        case FileKind::Other:
            break;
    }
    return "other";
}

const char* seriesCode(Series series) {
    switch (series) {
        case Series::SU:
            return "SU";
        case Series::A:
            return "A";
        case Series::E:
            return "E";
        case Series::All:
            break;
    }
    return "ALL";
}

std::string extensionOf(std::string_view name) {
    return utf8ToUpper(utf8Right(name, 3));
}

FileKind fileKind(std::string_view name) {
    const std::string ext = extensionOf(name);
    if (ext == "SPG" || ext == "APG" || ext == "EPG" || ext == "LPG") return FileKind::Preset;
    if (ext == "SMR" || ext == "AMR" || ext == "EMR" || ext == "LMR") return FileKind::Recording;
    if (ext == "MID") return FileKind::Midi;
    if (ext == "MP3") return FileKind::Mp3;
    return FileKind::Other;
}

bool isGenericExtension(std::string_view upperExtension) {
    return upperExtension == "LPG" || upperExtension == "LMR";
}

bool isStickOrganExtension(std::string_view upperExtension) {
    return isGenericExtension(upperExtension) || upperExtension == "EPG" || upperExtension == "EMR";
}

std::optional<Series> seriesOf(std::string_view name) {
    const std::string ext = extensionOf(name);
    if (const auto own = seriesOfOwnExtension(ext)) return own;
    if (isGenericExtension(ext)) return seriesOfPrefix(name);
    return std::nullopt;
}

std::optional<Series> seriesOfVersion(std::string_view version) {
    if (version == "2") return Series::SU;
    if (version == "3") return Series::A;
    if (version == "4") return Series::E;
    return std::nullopt;
}

NameType nameType(std::string_view name) {
    NameType type = NameType::OTHER;
    bool matched = false;
    if (contains(name, "PSET")) {
        type = NameType::PSET;
        matched = true;
    }
    // Runs after the PSET test and wins over it.
    if (contains(name, "SUSONG") || contains(name, "ASONG") || contains(name, "ESONG")) {
        type = NameType::SONG;
        matched = true;
    }
    if (!matched) type = seriesOfOwnExtension(extensionOf(name)) ? NameType::NAME : NameType::OTHER;
    return type;
}

double valueOf(std::string_view text) {
    // Val skips blanks anywhere; collect the characters that form the number.
    std::string number;
    bool digits = false, dot = false;
    std::size_t i = 0;
    auto blank = [&](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    auto next = [&]() -> int {
        while (i < text.size() && blank(text[i])) ++i;
        return i < text.size() ? static_cast<unsigned char>(text[i]) : -1;
    };
    if (int c = next(); c == '+' || c == '-') {
        number += static_cast<char>(c);
        ++i;
    }
    for (int c = next(); c != -1; c = next()) {
        if (std::isdigit(c)) {
            number += static_cast<char>(c);
            digits = true;
        } else if (c == '.' && !dot) {
            number += '.';
            dot = true;
        } else {
            break;
        }
        ++i;
    }
    if (!digits) return 0.0;
    // An exponent counts only when digits follow it ("1E2" is 100, "1E." is 1).
    if (int c = next(); c == 'E' || c == 'e' || c == 'D' || c == 'd') {
        std::string exponent = "e";
        ++i;
        if (int s = next(); s == '+' || s == '-') {
            exponent += static_cast<char>(s);
            ++i;
        }
        bool expDigits = false;
        for (int d = next(); d != -1 && std::isdigit(d); d = next()) {
            exponent += static_cast<char>(d);
            expDigits = true;
            ++i;
        }
        if (expDigits) number += exponent;
    }
    return std::strtod(number.c_str(), nullptr);
}

NameInfo classifyName(std::string_view name) {
    NameInfo info;
    info.kind = fileKind(name);
    info.type = nameType(name);
    if (info.type == NameType::NAME) {
        info.seriesLetter = utf8Left(extensionOf(name), 1);
    } else if (info.type != NameType::OTHER) {
        info.seriesLetter = utf8Left(name, 1);
        const std::size_t start = info.seriesLetter == "S" ? 7 : 6;
        if (info.seriesLetter == "S" || info.seriesLetter == "A" || info.seriesLetter == "E") {
            const double value = std::trunc(valueOf(midChars(name, start, 3)));
            info.number = static_cast<int>(std::clamp(value, double{INT_MIN}, double{INT_MAX}));
        }
    }
    return info;
}

std::string organFileName(Series family, FileKind kind, int number, int digits) {
    const bool preset = kind == FileKind::Preset;
    if (!preset && kind != FileKind::Recording) return {};
    const std::string digitsText = zeroPad(number, digits);
    switch (family) {
        case Series::SU:
            return (preset ? "SUPSET" : "SUSONG") + digitsText + (preset ? ".LPG" : ".LMR");
        case Series::A:
            return (preset ? "APSET" : "ASONG") + digitsText + (preset ? ".LPG" : ".LMR");
        case Series::E:
            return (preset ? "EPSET" : "ESONG") + digitsText + (preset ? ".EPG" : ".EMR");
        case Series::All:
            break;
    }
    return {};
}

std::string organFileName(Series family, FileKind kind, int number) {
    return organFileName(family, kind, number, family == Series::SU ? 2 : 3);
}

std::string sortedOrganFileName(Series family, FileKind kind, int number) {
    const bool twoDigits = family == Series::SU && kind == FileKind::Preset;
    return organFileName(family, kind, number, twoDigits ? 2 : 3);
}

std::string renamedOrganFileName(Series family, FileKind kind, int number) {
    return organFileName(family, kind, number, 3);
}

std::string duplicateName(std::string_view name, int counter) {
    const std::string suffix = " (" + std::to_string(counter) + ")";
    const std::size_t length = utf8Length(name);
    if (length >= 4 && midChars(name, length - 3, 1) == ".") {
        return utf8Left(name, length - 4) + suffix + "." + utf8Right(name, 3);
    }
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return std::string(name) + suffix;
    return std::string(name.substr(0, dot)) + suffix + std::string(name.substr(dot));
}

std::string freeDuplicateName(const std::filesystem::path& folder, std::string_view name,
                              int firstCounter) {
    for (int counter = firstCounter;; ++counter) {
        std::string candidate = duplicateName(name, counter);
        std::error_code ec;
        if (!std::filesystem::exists(folder / pathFromUtf8(candidate), ec)) return candidate;
    }
}

std::string checkName(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 8);
    for (const char c : text) {
        const char* to = nullptr;
        for (const auto& s : kSubstitutes)
            if (s.from == c) to = s.to;
        if (to)
            out += to;
        else
            out += c;
    }
    return out;
}

std::string CheckName(Context& ctx, std::string_view text) {
    std::string result(text);
    routine(ctx, "frmMain.CheckName", [&](Routine& r) {
        r.step("Replace illegal file name characters", [&] { result = checkName(text); });
    });
    return result;
}

}  // namespace tvk
