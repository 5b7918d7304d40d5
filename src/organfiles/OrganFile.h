#pragma once
// The fixed fields of preset and recording files, read without a Context: the header's
// first text line, the format version, the file's own name and the 16-character names at
// record positions. The traced routines (FileLayout.h) wrap these; the sort, the search
// and the benchmarks use them directly. Failures throw RuntimeError.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "app/FileIO.h"  // readWholeFile
#include "organfiles/OrganNames.h"

namespace tvk {

inline constexpr std::string_view kBrandMark = "TAVRN";
inline constexpr std::int32_t kNamePosition = 33;  // 1-based, as the program counts
inline constexpr std::size_t kNameWidth = 16;

// The bytes of the first text line (up to the first CR or LF), still in Windows-1252.
// Reads a small block first and more only for a line that runs on. An empty file
// throws RuntimeError 62 (Input past end of file).
std::string readFirstLine(const std::filesystem::path& file);

// The version text of a first line ("2" for "Ver2.0", "2.5" for "Ver2.5"). Throws
// RuntimeError 5 without the mark and 13 when the version is not a number.
std::string versionFromLine(std::string_view line);
// The file's own name, UTF-8, trimmed: 16 characters 16 after the mark, or the line's
// first 16 without it.
std::string nameFromLine(std::string_view line);

std::string readFileVersion(const std::filesystem::path& file);

// A preset or recording shorter than the header every organ file starts with (an empty
// one among them) is damaged: no command numbers or sorts it as a good one.
inline constexpr std::uintmax_t kOrganHeaderSize = 48;
bool isDamagedOrganFile(const std::filesystem::path& file);

// The family of an organ file: from its name, or for a generic LPG or LMR without an
// organ prefix from the format version inside it. nullopt when neither tells (a photo,
// a generic file without a readable header) and for a damaged file. Throws when the
// file cannot be read.
std::optional<Series> familyOfFile(const std::filesystem::path& file);
std::string readPresetName(const std::filesystem::path& file);

// The `width` bytes at a 1-based position of a file's bytes, as UTF-8 and untrimmed;
// shorter (or empty) where the file ends first.
std::string fieldAt(std::string_view bytes, std::int32_t position, std::size_t width = kNameWidth);
// The bytes written for a name: Windows-1252, cut or padded with spaces to `width`.
std::string fieldBytes(std::string_view name, std::size_t width = kNameWidth);

// The record position of a button code ("A1", "E10", "0" for the file's own name).
// `family` is "S", "A" or "E"; `kind` is "PRESET" or "RECORDING"; anything else gives 0.
// The SU family counts ten buttons a bank from 1; A and E step eleven a bank and use the
// number as it stands, so SU button 0 of bank A lies one record before A1.
std::int32_t calcAddress(std::string_view family, std::string_view kind, std::string_view button);
std::int32_t calcAddress(Series family, FileKind kind, std::string_view button);
std::int32_t recordLength(Series family);
// The 32 header bytes the organ writes: signature, "S" and a backslash, the mark, " SEQ ",
// "Ver2.0", "Ver3.0" or "Ver4.0" for SU, A and E.
std::string organHeader(Series family);
const char* familyLetter(Series family);  // "S", "A", "E"

}  // namespace tvk
