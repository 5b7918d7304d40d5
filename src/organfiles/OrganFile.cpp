#include "organfiles/OrganFile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "organfiles/Cp1252.h"

namespace tvk {

namespace {

constexpr std::size_t kFirstBlock = 512;
constexpr std::size_t kMoreBlock = 16384;

// The runtime's Str of a single: seven significant digits, no leading zero before
// the point ("0.5" is ".5").
std::string singleText(float value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.7g", static_cast<double>(value));
    std::string text(buffer);
    if (startsWith(text, "0.")) text.erase(0, 1);
    if (startsWith(text, "-0.")) text.erase(1, 1);
    return text;
}

struct Family {
    std::int32_t length, firstPreset, firstRecording;
    bool countsFromOne;
};

bool familyOf(std::string_view letter, Family& out) {
    if (letter == "S")
        out = {596, 1027, 2220, true};
    else if (letter == "A")
        out = {610, 1027, 2247, false};
    else if (letter == "E")
        out = {624, 1027, 2275, false};
    else
        return false;
    return true;
}

}  // namespace

std::string readFirstLine(const std::filesystem::path& file) {
    FileReader in(file);
    std::string bytes = in.readAt(0, kFirstBlock);
    if (bytes.empty()) throw RuntimeError(kErrInputPastEndOfFile, pathToUtf8(file));
    for (std::size_t searched = 0;;) {
        const std::size_t end = bytes.find_first_of("\r\n", searched);
        if (end != std::string::npos) return bytes.substr(0, end);
        searched = bytes.size();
        const std::string more = in.readAt(bytes.size(), kMoreBlock);
        if (more.empty()) return bytes;
        bytes += more;
    }
}

std::string versionFromLine(std::string_view line) {
    const std::size_t mark = line.find(kBrandMark);
    // Searching from position 0 is an invalid call for the runtime's InStr.
    if (mark == std::string_view::npos)
        throw RuntimeError(kErrInvalidProcedureCall, "no TAVRN mark");
    const std::size_t ver = line.find("Ver", mark);
    if (ver == std::string_view::npos) throw RuntimeError(kErrTypeMismatch, "no version");
    const std::string field = trim(cp1252ToUtf8(line.substr(std::min(line.size(), ver + 3), 3)));
    if (field.empty()) throw RuntimeError(kErrTypeMismatch, "empty version");
    char* end = nullptr;
    const double value = std::strtod(field.c_str(), &end);
    if (end != field.c_str() + field.size() || !std::isfinite(value))
        throw RuntimeError(kErrTypeMismatch, "version '" + field + "'");
    return singleText(static_cast<float>(value));
}

std::string nameFromLine(std::string_view line) {
    const std::size_t mark = line.find(kBrandMark);
    const std::size_t start = mark == std::string_view::npos ? 0 : std::min(line.size(), mark + 16);
    return trim(cp1252ToUtf8(line.substr(start, kNameWidth)));
}

std::string readFileVersion(const std::filesystem::path& file) {
    return versionFromLine(readFirstLine(file));
}

bool isDamagedOrganFile(const std::filesystem::path& file) {
    const FileKind kind = fileKind(fileNameUtf8(file));
    if (kind != FileKind::Preset && kind != FileKind::Recording) return false;
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(file, ec);
    if (ec) throw RuntimeError::fromErrorCode(ec, pathToUtf8(file));
    return size < kOrganHeaderSize;
}

std::optional<Series> familyOfFile(const std::filesystem::path& file) {
    const std::string name = fileNameUtf8(file);
    if (isDamagedOrganFile(file)) return std::nullopt;
    if (const auto family = seriesOf(name)) return family;
    if (!isGenericExtension(extensionOf(name))) return std::nullopt;
    try {
        return seriesOfVersion(readFileVersion(file));
    } catch (const RuntimeError& e) {
        // An empty file or one without a version in its header is no organ file;
        // a file that cannot be read is the caller's error.
        const int n = e.number();
        if (n == kErrInputPastEndOfFile || n == kErrInvalidProcedureCall || n == kErrTypeMismatch)
            return std::nullopt;
        throw;
    }
}

std::string readPresetName(const std::filesystem::path& file) {
    return nameFromLine(readFirstLine(file));
}

std::string fieldAt(std::string_view bytes, std::int32_t position, std::size_t width) {
    if (position < 1 || static_cast<std::size_t>(position) > bytes.size()) return {};
    return cp1252ToUtf8(bytes.substr(static_cast<std::size_t>(position - 1), width));
}

std::string fieldBytes(std::string_view name, std::size_t width) {
    std::string bytes = utf8ToCp1252(utf8Left(name, width));
    bytes.resize(width, ' ');
    return bytes;
}

std::int32_t calcAddress(std::string_view family, std::string_view kind, std::string_view button) {
    Family f{};
    if (!familyOf(family, f)) return 0;
    std::int32_t first = 0;
    if (kind == "PRESET")
        first = f.firstPreset;
    else if (kind == "RECORDING")
        first = f.firstRecording;
    else
        return 0;
    if (button == "0") return kNamePosition;
    if (button.empty()) return 0;
    const char bank = button.front();
    if (bank < 'A' || bank > 'E') return 0;
    const double n = std::trunc(valueOf(button.substr(1)));
    if (std::abs(n) > 1e6) return 0;  // no button is numbered like that
    const std::int32_t b = bank - 'A';
    const std::int32_t index = f.countsFromOne ? b * 10 + static_cast<std::int32_t>(n) - 1
                                               : b * 11 + static_cast<std::int32_t>(n);
    return first + index * f.length;
}

const char* familyLetter(Series family) {
    // Indexed by the series code: ALL has no letter of its own.
    static constexpr const char* kLetters[] = {"", "S", "A", "E"};
    const auto i = static_cast<std::size_t>(family);
    return i < std::size(kLetters) ? kLetters[i] : "";
}

std::int32_t calcAddress(Series family, FileKind kind, std::string_view button) {
    const char* kindText = kind == FileKind::Preset      ? "PRESET"
                           : kind == FileKind::Recording ? "RECORDING"
                                                         : "";
    return calcAddress(familyLetter(family), kindText, button);
}

std::string organHeader(Series family) {
    const char* version = family == Series::SU ? "2.0" : family == Series::A ? "3.0" : "4.0";
    return std::string("\x5A\xA5\x16\x5F") + "    " + "S\\" + "      " + std::string(kBrandMark) +
           " SEQ " + "Ver" + version;
}

std::int32_t recordLength(Series family) {
    Family f{};
    return familyOf(familyLetter(family), f) ? f.length : 0;
}

}  // namespace tvk
