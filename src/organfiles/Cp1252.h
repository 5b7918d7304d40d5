#pragma once
// Organ files hold single-byte Windows-1252 text; the program works in UTF-8. These two
// conversions are the only place the code page appears, at the edge of reading and
// writing organ files.

#include <string>
#include <string_view>

namespace tvk {

// Every byte maps to one character; the five bytes Windows-1252 leaves undefined pass
// through as the C1 controls of the same value, so reading and writing back is lossless.
std::string cp1252ToUtf8(std::string_view bytes);

// Characters without a Windows-1252 byte become '?', one byte per character, so field
// widths counted in characters stay widths in bytes.
std::string utf8ToCp1252(std::string_view utf8);

// True when every character of the text has its own Windows-1252 byte, so writing it
// into a file never turns anything into '?'.
bool fitsCp1252(std::string_view utf8);

// Upper case of Windows-1252 bytes, letter for letter as utf8ToUpper does it: ASCII and
// the Latin-1 small letters; every other byte stays.
std::string cp1252Upper(std::string_view bytes);
char cp1252Upper(char byte);

}  // namespace tvk
