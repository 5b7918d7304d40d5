#pragma once
// The preset name editor without its window: which boxes a preset file has, loading the
// file's own name and its registration names, and committing edited names back. A
// commit touches only the name bytes; the rest of the file stays byte for byte.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "organfiles/OrganNames.h"

namespace tvk {

struct Context;

// The editor keeps 15 characters of the file's own name, as the rename command does; the
// sixteenth byte of the field stays as it is.
inline constexpr std::size_t kEditorFileNameWidth = 15;

// The family the editor reads a preset file as: the first letter of a generic (LPG)
// name, else the extension's. nullopt for anything else.
std::optional<Series> presetFamily(std::string_view fileName);
// The buttons the editor shows, in bank order: A1..E10 for SU, A0..E10 for A and E.
std::vector<std::string> presetButtonCodes(Series family);
// How many characters of a registration name the editor writes: 15 for SU, 16 for A, E.
std::size_t presetNameWidth(Series family);

struct PresetNameBox {
    std::string code;       // "A1", "E10"
    std::int32_t position;  // of the name field
    std::string name;       // UTF-8, surrounding spaces removed
};

// One preset file as the editor loaded it.
struct PresetNames {
    std::filesystem::path file;
    Series family = Series::SU;
    std::string fileName;  // the name field at 33, surrounding spaces removed
    std::vector<PresetNameBox> boxes;
    std::uintmax_t size = 0;  // of the file when loaded

    // The box of a button code; nullptr when the family has none.
    const PresetNameBox* box(std::string_view code) const;
};

// What the user typed: the file's own name and one name a box, in the order of
// PresetNames::boxes.
struct PresetNamesEdit {
    std::string fileName;
    std::vector<std::string> names;
    static PresetNamesEdit from(const PresetNames& loaded);
};

// Form_Load and btnReload_Click: reads the file. A file that is not an SU, A or E preset,
// or too short to hold every name, is refused with a box; a read failure goes to the
// error handler. nullopt when nothing was loaded.
std::optional<PresetNames> loadPresetNames(
    Context& ctx, const std::filesystem::path& file,
    std::string_view routineName = "frmPresetRename.Form_Load");

// btnCommit_Click: writes the names that differ from the loaded ones (the others are left
// byte for byte) by writing the whole file again through a temporary name. Refuses with
// a box when the file is gone, read-only, changed in size since loading, or a name holds
// a character Windows-1252 has not. True when the file now holds the edit.
bool commitPresetNames(Context& ctx, const PresetNames& loaded, const PresetNamesEdit& edit);

}  // namespace tvk
