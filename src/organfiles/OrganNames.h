#pragma once
// What an organ file is, from its name alone: kind, series, name type and file number,
// and the names the program builds for organ files. Every command that copies, sorts,
// renames, lists or searches organ files asks here.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "organfiles/Series.h"

namespace tvk {

struct Context;

enum class FileKind { Preset, Recording, Midi, Mp3, Other };
// "PSET", "SONG", "NAME" or "OTHER", as the copy, transfer and sort commands hold them.
enum class NameType { PSET, SONG, NAME, OTHER };

inline constexpr int kMaxPresetNumber = 250;
inline constexpr int kMaxRecordingNumber = 40;

const char* nameTypeText(NameType type);
const char* fileKindText(FileKind kind);  // "preset", "recording", "MIDI", "MP3", "other"
const char* seriesCode(Series series);    // "SU", "A", "E" ("ALL" for the view filter)

// The upper-cased last three characters of a name ("LPG" for "supset07.lpg").
std::string extensionOf(std::string_view name);
FileKind fileKind(std::string_view name);
bool isGenericExtension(std::string_view upperExtension);  // "LPG", "LMR"
// The organ-file extensions the organ itself lists from a stick: the E family's and the
// generic ones. SU and A files on a stick count and open as other files.
bool isStickOrganExtension(std::string_view upperExtension);

// The family whose own extension this is: "SPG" and "SMR" SU, "APG"/"AMR" A, "EPG"/"EMR" E.
std::optional<Series> seriesOfExtension(std::string_view upperExtension);
// The families' own extensions of one kind, SU first: "SPG", "APG", "EPG" for presets,
// "SMR", "AMR", "EMR" for recordings.
std::vector<std::string> familyExtensions(FileKind kind);
// "S", "A" and "E" name the three families; any other letter none.
std::optional<Series> seriesFromLetter(std::string_view letter);
// The kind the last two letters suggest ("PG" a preset, "MR" a recording), as the file
// information, the icons and the search box have always judged it: a picture named
// *.JPG passes for a preset there, and then shows that it has no organ header.
FileKind kindByEnding(std::string_view name);

// The family a file belongs to: from its own extension, or for the generic extensions
// from its prefix. nullopt when neither tells (MYSET.LPG, NOTES.TXT).
std::optional<Series> seriesOf(std::string_view name);

// The family a format version stands for: "2" SU, "3" A, "4" E (GetFileVersion's text).
std::optional<Series> seriesOfVersion(std::string_view version);

NameType nameType(std::string_view name);

// The runtime's Val: the leading number of a text, blanks skipped, stopping at the first
// character that cannot continue it ("01." is 1, "7a" is 7, "abc" is 0).
double valueOf(std::string_view text);

struct NameInfo {
    FileKind kind = FileKind::Other;
    NameType type = NameType::OTHER;
    std::string seriesLetter;   // "S", "A", "E", another first letter, or "" for OTHER
    std::optional<int> number;  // PSET and SONG names of the S, A and E families only
};
NameInfo classifyName(std::string_view name);

// "SUPSET", "APSET", "EPSET" for presets, "SUSONG", "ASONG", "ESONG" for songs.
std::string organPrefix(Series family, bool song);
// The width mask of the family's numbers: 2 for SU, 3 for A and E.
int organNumberWidth(Series family);
// The family's own extension in the library: ".SPG", ".APG", ".EPG" (".SMR", ...).
std::string seriesExtension(Series family, bool song);
// The extension of its numbered files on the stick: the shared ".LPG" and ".LMR" for SU
// and A, the family's own ".EPG" and ".EMR" for E.
std::string stickExtension(Series family, bool song);

// Names of new organ files. The copy engine, transfers and the test-file generator use
// two digits for SU and three for A and E; the rename command uses three for every
// family. Both read back to the same number. Empty for an Other/Midi/Mp3 kind.
std::string organFileName(Series family, FileKind kind, int number);
std::string renamedOrganFileName(Series family, FileKind kind, int number);
// The same names with the number given at least `digits` digits.
std::string organFileName(Series family, FileKind kind, int number, int digits);
// The names the alphabetical sort gives: two digits for SU presets only, three for every
// other group, SU recordings included. The organ reads both widths alike.
std::string sortedOrganFileName(Series family, FileKind kind, int number);

// "SUPSET07 (1).LPG": the copy of a taken name. A name without a three-letter extension
// gets the counter before its extension, or at its end when it has none.
std::string duplicateName(std::string_view name, int counter);
// The first free duplicate name in `folder`, counting from `firstCounter`.
std::string freeDuplicateName(const std::filesystem::path& folder, std::string_view name,
                              int firstCounter = 1);

// Replaces the nine characters a file name may not hold by look-alikes, one character
// for one. checkName is the plain function; CheckName the traced routine.
std::string checkName(std::string_view text);
std::string CheckName(Context& ctx, std::string_view text);

// The step after CheckName for a name made from inside a file, so that Windows can open
// and delete the file it names, on every system alike: codes 0 to 31 become "_", trailing
// dots and spaces go, and a device name (CON, PRN, AUX, NUL, COM1-9, LPT1-9, with any
// extension) gets "_" before its extension ("CON" becomes "CON_", "nul.txt" "nul_.txt").
// Empty when nothing is left.
std::string windowsSafeName(std::string_view name);

}  // namespace tvk
