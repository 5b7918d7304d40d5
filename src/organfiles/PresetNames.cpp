#include "organfiles/PresetNames.h"

#include <algorithm>

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "library/CopyPaste.h"
#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

constexpr const char* kTitle = "RENAME PRESETS";

void tell(Context& ctx, const std::string& text) {
    ctx.ui.message(Message{kTitle, text, Buttons::Ok, Icon::Exclamation, 1});
}

std::string quoted(const std::filesystem::path& file) {
    return "\"" + fileNameUtf8(file) + "\"";
}

bool isReadOnly(const std::filesystem::path& file) {
    using std::filesystem::perms;
    std::error_code ec;
    const perms p = std::filesystem::status(file, ec).permissions();
    return !ec &&
           (p & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none;
}

// Refuses what cannot be committed; true when the file may be written.
bool mayCommit(Context& ctx, const PresetNames& loaded, const PresetNamesEdit& edit) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(loaded.file, ec)) {
        tell(ctx, "The file " + quoted(loaded.file) + " is no longer there." +
                      std::string(kLineBreak) + "Nothing was written.");
        return false;
    }
    const auto size = std::filesystem::file_size(loaded.file, ec);
    if (ec || size != loaded.size) {
        tell(ctx, "The file " + quoted(loaded.file) + " has changed since its names were loaded." +
                      std::string(kLineBreak) +
                      "Nothing was written; reload the names and make the changes again.");
        return false;
    }
    if (isReadOnly(loaded.file)) {
        tell(ctx, "The file " + quoted(loaded.file) + " is read-only." + std::string(kLineBreak) +
                      "Nothing was written.");
        return false;
    }
    std::vector<std::string> texts = edit.names;
    texts.push_back(edit.fileName);
    for (const auto& text : texts) {
        if (!fitsCp1252(text)) {
            tell(ctx, "The name \"" + text + "\" holds a character the organ cannot show." +
                          std::string(kLineBreak) + "Nothing was written.");
            return false;
        }
    }
    return true;
}

void putField(std::string& bytes, std::int32_t position, const std::string& field) {
    bytes.replace(static_cast<std::size_t>(position - 1), field.size(), field);
}

}  // namespace

std::optional<Series> presetFamily(std::string_view fileName) {
    if (fileKind(fileName) != FileKind::Preset) return std::nullopt;
    const std::string ext = extensionOf(fileName);
    // A generic preset's family is its first letter, whatever follows it.
    if (isGenericExtension(ext)) return seriesFromLetter(toUpperAscii(fileName.substr(0, 1)));
    return seriesOfExtension(ext);
}

std::vector<std::string> presetButtonCodes(Series family) {
    std::vector<std::string> codes;
    for (char bank = 'A'; bank <= 'E'; ++bank)
        for (int n = family == Series::SU ? 1 : 0; n <= 10; ++n)
            codes.push_back(bank + std::to_string(n));
    return codes;
}

std::size_t presetNameWidth(Series family) {
    return family == Series::SU ? kNameWidth - 1 : kNameWidth;
}

const PresetNameBox* PresetNames::box(std::string_view code) const {
    const auto it = std::find_if(boxes.begin(), boxes.end(),
                                 [&](const PresetNameBox& b) { return b.code == code; });
    return it == boxes.end() ? nullptr : &*it;
}

PresetNamesEdit PresetNamesEdit::from(const PresetNames& loaded) {
    PresetNamesEdit edit{loaded.fileName, {}};
    for (const auto& b : loaded.boxes) edit.names.push_back(b.name);
    return edit;
}

std::optional<PresetNames> loadPresetNames(Context& ctx, const std::filesystem::path& file,
                                           std::string_view routineName) {
    std::optional<PresetNames> result;
    routine(ctx, routineName, [&](Routine& r) {
        const auto family = presetFamily(fileNameUtf8(file));
        if (!family) {
            tell(ctx, quoted(file) + " is not a preset file of the SU, A or E series." +
                          std::string(kLineBreak) + "Its names cannot be edited here.");
            return;
        }
        std::string bytes;
        if (!r.step("Read " + pathToUtf8(file), [&] { bytes = readWholeFile(file); })) return;
        PresetNames loaded;
        loaded.file = file;
        loaded.family = *family;
        loaded.size = bytes.size();
        loaded.fileName = trim(fieldAt(bytes, kNamePosition));
        for (const auto& code : presetButtonCodes(*family)) {
            const std::int32_t position = calcAddress(*family, FileKind::Preset, code);
            loaded.boxes.push_back({code, position, trim(fieldAt(bytes, position))});
        }
        const std::size_t needed =
            static_cast<std::size_t>(loaded.boxes.back().position) - 1 + kNameWidth;
        if (bytes.size() < needed) {
            tell(ctx, "The file " + quoted(file) + " holds " + std::to_string(bytes.size()) +
                          " bytes, too few for the names of all its presets (" +
                          std::to_string(needed) + ")." + std::string(kLineBreak) +
                          "It may be damaged; it was left as it is.");
            return;
        }
        result = std::move(loaded);
    });
    return result;
}

bool commitPresetNames(Context& ctx, const PresetNames& loaded, const PresetNamesEdit& edit) {
    bool written = false;
    routine(ctx, "frmPresetRename.btnCommit_Click", [&](Routine& r) {
        if (!mayCommit(ctx, loaded, edit)) return;
        if (ctx.state.drive.present &&
            isOnStick(loaded.file.parent_path(), ctx.state.drive.tavrinFolder()) &&
            !stickReady(ctx, r))
            return;
        std::string bytes;
        if (!r.step("Read " + pathToUtf8(loaded.file), [&] { bytes = readWholeFile(loaded.file); }))
            return;
        if (bytes.size() != loaded.size) {
            tell(ctx, "The file " + quoted(loaded.file) + " changed while it was being read." +
                          std::string(kLineBreak) + "Nothing was written.");
            return;
        }
        const std::string before = bytes;
        if (edit.fileName != loaded.fileName)
            putField(bytes, kNamePosition, fieldBytes(edit.fileName, kEditorFileNameWidth));
        const std::size_t width = presetNameWidth(loaded.family);
        for (std::size_t i = 0; i < loaded.boxes.size() && i < edit.names.size(); ++i)
            if (edit.names[i] != loaded.boxes[i].name)
                putField(bytes, loaded.boxes[i].position, fieldBytes(edit.names[i], width));
        if (bytes != before && !r.step("Write the names into " + pathToUtf8(loaded.file),
                                       [&] { writeFileReplacing(loaded.file, bytes); }))
            return;
        written = true;
    });
    return written;
}

}  // namespace tvk
