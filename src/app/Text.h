#pragma once
// Text helpers shared by every subsystem. Text is UTF-8 in std::string throughout the
// core; paths are built from UTF-8 only through pathFromUtf8.

#include <filesystem>
#include <string>
#include <string_view>

namespace tvk {

// The program's line-break constants: message texts use a bare carriage return for a
// line break and two for a blank line; files end their lines with CR LF.
inline constexpr std::string_view kLineBreak = "\r";
inline constexpr std::string_view kBlankLine = "\r\r";
inline constexpr std::string_view kCrLf = "\r\n";
inline constexpr std::string_view kQuote = "\"";
inline constexpr std::string_view kNbsp = "\xC2\xA0";  // U+00A0

std::filesystem::path pathFromUtf8(std::string_view utf8);
std::string pathToUtf8(const std::filesystem::path& path);
// The last component of a path, as UTF-8.
std::string fileNameUtf8(const std::filesystem::path& path);

std::string toUpperAscii(std::string_view text);
std::string toLowerAscii(std::string_view text);
std::string trim(std::string_view text);  // spaces only, as the runtime's Trim
std::string trimWhitespace(std::string_view text);
bool startsWith(std::string_view text, std::string_view prefix);
bool endsWith(std::string_view text, std::string_view suffix);
bool iequals(std::string_view a, std::string_view b);  // ASCII case-insensitive

// Characters, not bytes: the organ's limits count characters.
std::size_t utf8Length(std::string_view text);
std::string utf8Left(std::string_view text, std::size_t characters);
// The last `characters` characters of a text (the runtime's Right).
std::string utf8Right(std::string_view text, std::size_t characters);
std::string utf8ToUpper(std::string_view text);  // ASCII and Latin-1 letters
// Appends one code point as UTF-8.
void appendUtf8(std::string& out, char32_t c);

// Number formatting as the runtime's Format: zeroPad(7, 3) is "007".
std::string zeroPad(long long value, int width);
std::string hexUpper(unsigned long long value);  // no leading zeros, "0" for zero

// Replaces every CR LF pair and lone CR by LF, for showing message texts on screen.
std::string toDisplayLines(std::string_view text);

// Wildcard matching as the file lists do it: case-insensitive, '*' any run, '?' one
// character; `patterns` may hold several separated by ';'.
bool matchesWildcard(std::string_view name, std::string_view pattern);
bool matchesPatternList(std::string_view name, std::string_view patterns);

}  // namespace tvk
