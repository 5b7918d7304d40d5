#pragma once
// "TVK.ini": the settings file in the library root.

#include <string>
#include <vector>

#include "app/Context.h"

namespace tvk {

// Writes the settings file. With `defaults` an existing file is deleted first and the
// settings are reset to their defaults ("Format Change" keeps its value).
void WriteIniFile(Context& ctx, bool defaults);
// Reads the settings file into ctx.settings. A malformed file or an unconvertible value
// is reported and replaced by defaults.
void ReadIniFile(Context& ctx);

// The settings file's text as WriteIniFile writes it (CR LF line ends).
std::string formatIniFile(const Settings& settings, const std::tm& now);

// The runtime's field input: splits at commas as well as at line ends; a field in
// double quotes keeps its commas and loses the quotes.
std::vector<std::string> splitIniFields(const std::string& text);

// Conversions as the runtime does them; throw RuntimeError 13 (type mismatch) or 6
// (overflow).
long long toInteger(const std::string& value);  // Int(): integer part, fraction dropped
bool toBoolean(const std::string& value);
std::int32_t toLong(const std::string& value);  // CLng, "&H" hexadecimal accepted

}  // namespace tvk
