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

// The names each family's files carry. The stick's numbered SU and A files share the
// generic extensions instead (stickExtension).
struct FamilyNames {
    Series family;
    const char* letter;
    const char* presetExtension;
    const char* recordingExtension;
    const char* presetPrefix;
    const char* songPrefix;
};
constexpr FamilyNames kFamilies[] = {
    {Series::SU, "S", "SPG", "SMR", "SUPSET", "SUSONG"},
    {Series::A, "A", "APG", "AMR", "APSET", "ASONG"},
    {Series::E, "E", "EPG", "EMR", "EPSET", "ESONG"},
};

const FamilyNames* namesOf(Series family) {
    for (const auto& f : kFamilies)
        if (f.family == family) return &f;
    return nullptr;
}

std::optional<Series> seriesOfPrefix(std::string_view name) {
    for (const auto& f : kFamilies)
        if (startsWith(name, f.presetPrefix) || startsWith(name, f.songPrefix)) return f.family;
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

std::optional<Series> seriesOfExtension(std::string_view upperExtension) {
    for (const auto& f : kFamilies)
        if (upperExtension == f.presetExtension || upperExtension == f.recordingExtension)
            return f.family;
    return std::nullopt;
}

std::vector<std::string> familyExtensions(FileKind kind) {
    std::vector<std::string> extensions;
    for (const auto& f : kFamilies)
        extensions.emplace_back(kind == FileKind::Recording ? f.recordingExtension
                                                            : f.presetExtension);
    return extensions;
}

std::optional<Series> seriesOf(std::string_view name) {
    const std::string ext = extensionOf(name);
    if (const auto own = seriesOfExtension(ext)) return own;
    if (isGenericExtension(ext)) return seriesOfPrefix(name);
    return std::nullopt;
}

std::optional<Series> seriesFromLetter(std::string_view letter) {
    for (const auto& f : kFamilies)
        if (letter == f.letter) return f.family;
    return std::nullopt;
}

FileKind kindByEnding(std::string_view name) {
    const std::string ending = utf8ToUpper(utf8Right(name, 2));
    if (ending == "PG") return FileKind::Preset;
    if (ending == "MR") return FileKind::Recording;
    return fileKind(name);
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
    for (const auto& f : kFamilies) {
        if (contains(name, f.songPrefix)) {
            type = NameType::SONG;
            matched = true;
        }
    }
    if (!matched) type = seriesOfExtension(extensionOf(name)) ? NameType::NAME : NameType::OTHER;
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

std::string organPrefix(Series family, bool song) {
    const FamilyNames* f = namesOf(family);
    return f ? (song ? f->songPrefix : f->presetPrefix) : "";
}

int organNumberWidth(Series family) {
    return family == Series::SU ? 2 : 3;
}

std::string seriesExtension(Series family, bool song) {
    const FamilyNames* f = namesOf(family);
    return f ? std::string(".") + (song ? f->recordingExtension : f->presetExtension) : "";
}

std::string stickExtension(Series family, bool song) {
    if (family == Series::E) return seriesExtension(family, song);
    return song ? ".LMR" : ".LPG";
}

std::string organFileName(Series family, FileKind kind, int number, int digits) {
    const bool preset = kind == FileKind::Preset;
    if ((!preset && kind != FileKind::Recording) || !namesOf(family)) return {};
    return organPrefix(family, !preset) + zeroPad(number, digits) + stickExtension(family, !preset);
}

std::string organFileName(Series family, FileKind kind, int number) {
    return organFileName(family, kind, number, organNumberWidth(family));
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

namespace {

bool isDeviceName(std::string_view stem) {
    std::string upper;
    for (const char c : stem)
        upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const char* device : {"CON", "PRN", "AUX", "NUL"})
        if (upper == device) return true;
    return upper.size() == 4 && (upper.rfind("COM", 0) == 0 || upper.rfind("LPT", 0) == 0) &&
           upper[3] >= '1' && upper[3] <= '9';
}

}  // namespace

std::string windowsSafeName(std::string_view name) {
    std::string safe;
    for (const char c : name) safe += static_cast<unsigned char>(c) < 0x20 ? '_' : c;
    while (!safe.empty() && (safe.back() == '.' || safe.back() == ' ')) safe.pop_back();
    // Windows takes "CON.txt" and "CON .txt" for the device as well.
    const std::size_t stemEnd = std::min(safe.find('.'), safe.size());
    std::size_t deviceEnd = stemEnd;
    while (deviceEnd > 0 && safe[deviceEnd - 1] == ' ') --deviceEnd;
    if (isDeviceName(std::string_view(safe).substr(0, deviceEnd))) safe.insert(deviceEnd, "_");
    return safe;
}

std::string CheckName(Context& ctx, std::string_view text) {
    std::string result(text);
    routine(ctx, "frmMain.CheckName", [&](Routine& r) {
        r.step("Replace illegal file name characters", [&] { result = checkName(text); });
    });
    return result;
}

}  // namespace tvk
