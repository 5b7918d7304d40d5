#include "app/IniFile.h"

#include "app/FileIO.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>

#include "app/Routine.h"
#include "app/Text.h"
#include "app/Version.h"

namespace tvk {

namespace {

constexpr int kSettingsFileNumber = 1;  // the first free file number; the trace holds 256

const char* boolText(bool b) {
    return b ? "True" : "False";
}

// The runtime's reading of a number from text: blanks around it, a sign, "&H" or "&O"
// prefixes, a fraction and an exponent. nullopt when it is not a number at all.
std::optional<double> parseNumber(const std::string& text) {
    const std::string t = trimWhitespace(text);
    if (t.empty()) return std::nullopt;
    if (t.size() > 2 && t[0] == '&' && (t[1] == 'H' || t[1] == 'h' || t[1] == 'O' || t[1] == 'o')) {
        const bool hex = t[1] == 'H' || t[1] == 'h';
        const std::string digits = t.substr(2);
        if (digits.empty() || digits.size() > (hex ? 8u : 11u)) {
            if (!digits.empty() && digits.find_first_not_of(hex ? "0123456789abcdefABCDEF"
                                                                : "01234567") == std::string::npos)
                throw RuntimeError(kErrOverflow, t);
            return std::nullopt;
        }
        if (digits.find_first_not_of(hex ? "0123456789abcdefABCDEF" : "01234567") !=
            std::string::npos)
            return std::nullopt;
        const unsigned long long v = std::stoull(digits, nullptr, hex ? 16 : 8);
        if (v > 0xFFFFFFFFull) throw RuntimeError(kErrOverflow, t);
        // Eight hex digits are a 32-bit pattern: &HFFFFFFFF is -1.
        return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(v)));
    }
    std::size_t used = 0;
    double v = 0;
    try {
        v = std::stod(t, &used);
    } catch (const std::out_of_range&) {
        throw RuntimeError(kErrOverflow, t);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (used != t.size() || !std::isfinite(v)) return std::nullopt;
    // stod accepts "inf", "nan" and hexadecimal floats; the runtime does not.
    if (t.find_first_of("xXnN") != std::string::npos) return std::nullopt;
    return v;
}

double numberOrMismatch(const std::string& value) {
    const auto v = parseNumber(value);
    if (!v) throw RuntimeError(kErrTypeMismatch, value);
    return *v;
}

}  // namespace

long long toInteger(const std::string& value) {
    const double v = std::floor(numberOrMismatch(value));
    if (v < -2147483648.0 || v > 2147483647.0) throw RuntimeError(kErrOverflow, value);
    return static_cast<long long>(v);
}

bool toBoolean(const std::string& value) {
    const std::string t = trimWhitespace(value);
    if (iequals(t, "True")) return true;
    if (iequals(t, "False")) return false;
    return numberOrMismatch(t) != 0.0;
}

std::int32_t toLong(const std::string& value) {
    const double v = std::nearbyint(numberOrMismatch(value));  // rounds half to even
    if (v < -2147483648.0 || v > 2147483647.0) throw RuntimeError(kErrOverflow, value);
    return static_cast<std::int32_t>(v);
}

std::vector<std::string> splitIniFields(const std::string& text) {
    std::vector<std::string> fields;
    std::size_t i = 0;
    const std::size_t n = text.size();
    while (i < n) {
        while (i < n && (text[i] == ' ' || text[i] == '\t')) ++i;
        std::string field;
        if (i < n && text[i] == '"') {
            const std::size_t close = text.find('"', i + 1);
            const std::size_t end = close == std::string::npos ? n : close;
            field = text.substr(i + 1, end - i - 1);
            i = close == std::string::npos ? n : close + 1;
            // Whatever follows the closing quote up to the delimiter is dropped.
            while (i < n && text[i] != ',' && text[i] != '\r' && text[i] != '\n') ++i;
        } else {
            const std::size_t start = i;
            while (i < n && text[i] != ',' && text[i] != '\r' && text[i] != '\n') ++i;
            field = trim(std::string_view(text).substr(start, i - start));
        }
        fields.push_back(std::move(field));
        if (i < n) {
            if (text[i] == '\r' && i + 1 < n && text[i + 1] == '\n') ++i;
            ++i;
        }
    }
    return fields;
}

std::string formatIniFile(const Settings& s, const std::tm& t) {
    std::ostringstream out;
    auto line = [&](const std::string& text) { out << text << kCrLf; };
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%04d.%02d%02d.%02d%02d", t.tm_year + 1900, t.tm_mon + 1,
                  t.tm_mday, t.tm_hour, t.tm_min);
    line("Tavrin File Manager - Initialization File");
    line("TKV.INI Ver: 2021.0913.1100");
    line("TVK Ver: " + programVersionText());
    line(std::string("DateTime: ") + stamp);
    line(std::string(41, '-'));
    line("Organ Series=" + std::to_string(s.organSeries));
    line(std::string("All Text Select=") + boolText(s.allTextSelect));
    line(std::string("Auto Backup=") + boolText(s.autoBackup));
    line("Number Seq=" + std::to_string(s.numberSeq));
    line(std::string("Rem Win Posit=") + boolText(s.remWinPosit));
    line(std::string("Format Change=") + boolText(s.formatChange));
    line("");
    line("[LIST COLORS]");
    line("Comp Folder FC=&H" + hexUpper(s.compFolderFC));
    line("Comp Folder BC=&H" + hexUpper(s.compFolderBC));
    line("Comp Files FC=&H" + hexUpper(s.compFilesFC));
    line("Comp Files BC=&H" + hexUpper(s.compFilesBC));
    line("USB Files FC=&H" + hexUpper(s.usbFilesFC));
    line("USB Files BC=&H" + hexUpper(s.usbFilesBC));
    if (s.remWinPosit) {
        line("");
        line("[WINDOW POSITIONS]");
        for (int index = 1; index <= 4; ++index) {
            const WindowRect& w = s.windows[static_cast<std::size_t>(index - 1)];
            line("Win Index=" + std::to_string(index));
            line("Win Left=" + std::to_string(w.left));
            line("Win Top=" + std::to_string(w.top));
            line("Win Width=" + std::to_string(w.width));
            line("Win Height=" + std::to_string(w.height));
            if (index < 4) line("");
        }
    }
    line("EOF");
    return out.str();
}

void WriteIniFile(Context& ctx, bool defaults) {
    routine(ctx, "CodeModule.WriteIniFile", [&](Routine& r) {
        const auto file = ctx.paths.settingsFile();
        if (defaults) {
            r.detail("Removing TVK.ini file");
            r.step("Kill " + pathToUtf8(file), [&] {
                std::error_code ec;
                std::filesystem::remove(file, ec);
                throwIfError(ec, pathToUtf8(file));
            });
            ctx.settings.resetToDefaults();
        }
        r.detail("Closing all files");
        ctx.trace.closeAllFiles();
        ctx.trace.reopenForAppend();

        const std::string text = formatIniFile(ctx.settings, ctx.trace.now());
        r.step(
            "Open " + pathToUtf8(file) + " For Output As #" + std::to_string(kSettingsFileNumber),
            [&] { writeFileReplacing(file, text); });
    });
}

namespace {

enum class ReadOutcome { Done, Malformed, Mismatch };

// Stores one key; false when the key does not belong where it stands.
bool storeEntry(Settings& s, const std::string& section, const std::string& key,
                const std::string& value, long long& row) {
    if (key == "Organ Series") {
        const long long v = toInteger(value);
        if (v < -32768 || v > 32767) throw RuntimeError(kErrOverflow, value);
        s.organSeries = static_cast<int>(v);
    } else if (key == "Number Seq") {
        const long long v = toInteger(value);
        if (v < 0 || v > 255) throw RuntimeError(kErrOverflow, value);
        s.numberSeq = static_cast<std::uint8_t>(v);
    } else if (key == "All Text Select") {
        s.allTextSelect = toBoolean(value);
    } else if (key == "Auto Backup") {
        s.autoBackup = toBoolean(value);
    } else if (key == "Rem Win Posit") {
        s.remWinPosit = toBoolean(value);
    } else if (key == "Format Change") {
        s.formatChange = toBoolean(value);
    } else if (section == "[LIST COLORS]") {
        std::uint32_t* colour = key == "Comp Folder FC"   ? &s.compFolderFC
                                : key == "Comp Folder BC" ? &s.compFolderBC
                                : key == "Comp Files FC"  ? &s.compFilesFC
                                : key == "Comp Files BC"  ? &s.compFilesBC
                                : key == "USB Files FC"   ? &s.usbFilesFC
                                : key == "USB Files BC"   ? &s.usbFilesBC
                                                          : nullptr;
        if (!colour) return false;
        *colour = static_cast<std::uint32_t>(toLong(value));
    } else if (section == "[WINDOW POSITIONS]") {
        if (key == "Win Index") {
            row = toInteger(value) - 1;
            return true;
        }
        const int column = key == "Win Left"     ? 0
                           : key == "Win Top"    ? 1
                           : key == "Win Width"  ? 2
                           : key == "Win Height" ? 3
                                                 : -1;
        if (column < 0) return false;
        if (row < 0 || row > 3)
            throw RuntimeError(kErrSubscriptOutOfRange, "Win Index " + std::to_string(row + 1));
        const std::int32_t v = toLong(value);
        WindowRect& w = s.windows[static_cast<std::size_t>(row)];
        (column == 0 ? w.left : column == 1 ? w.top : column == 2 ? w.width : w.height) = v;
    } else {
        return false;
    }
    return true;
}

}  // namespace

void ReadIniFile(Context& ctx) {
    routine(ctx, "CodeModule.ReadIniFile", [&](Routine& r) {
        const auto file = ctx.paths.settingsFile();
        std::string text;
        const bool opened = r.step(
            "Open " + pathToUtf8(file) + " For Input As #" + std::to_string(kSettingsFileNumber),
            [&] { text = readWholeFile(file); });
        if (!opened) return;

        ReadOutcome outcome = ReadOutcome::Done;
        std::string section;
        long long row = 0;
        for (const std::string& entry : splitIniFields(text)) {
            if (entry == "EOF") break;
            if (!entry.empty() && entry[0] == '[') {
                section = entry;
                continue;
            }
            const auto eq = entry.find('=');
            if (eq == std::string::npos) continue;
            const std::string key = entry.substr(0, eq), value = entry.substr(eq + 1);
            bool known = true;
            r.step("Input #" + std::to_string(kSettingsFileNumber) + ": " + entry, [&] {
                try {
                    known = storeEntry(ctx.settings, section, key, value, row);
                } catch (const RuntimeError& e) {
                    // A value that does not convert is this routine's own business; any
                    // other failure goes to the central handler.
                    if (e.number() != kErrTypeMismatch) throw;
                    outcome = ReadOutcome::Mismatch;
                }
            });
            if (!known) outcome = ReadOutcome::Malformed;
            if (outcome != ReadOutcome::Done) break;
        }

        if (outcome == ReadOutcome::Malformed) {
            ctx.ui.message(Message{"CONGIFURATION ERROR",
                                   "The " + std::string(kQuote) + "TVK.ini" + std::string(kQuote) +
                                       " file is constructed incorrectly." +
                                       std::string(kLineBreak) +
                                       "A new one will be created with default settings",
                                   Buttons::Ok, Icon::Exclamation, 1});
            r.detail("Closing file# " + std::to_string(kSettingsFileNumber));
            WriteIniFile(ctx, true);
        } else if (outcome == ReadOutcome::Mismatch) {
            ctx.ui.message(Message{"ERROR READING FILE",
                                   "Error reading " + std::string(kQuote) + "TVK.ini" +
                                       std::string(kQuote) + " file." + std::string(kLineBreak) +
                                       "A new one will be created with default settings",
                                   Buttons::Ok, Icon::Exclamation, 1});
            WriteIniFile(ctx, true);
        }
    });
}

}  // namespace tvk
