#include "organfiles/Registrations.h"

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "organfiles/OrganFile.h"
#include "organfiles/PresetNames.h"

namespace tvk {

int buttonsPerBank(Series family) {
    return family == Series::SU ? 10 : 11;
}

namespace {

std::optional<Series> familyFromVersion(const std::string& version) {
    if (version == "2") return Series::SU;
    if (version == "3") return Series::A;
    if (version == "4") return Series::E;
    return std::nullopt;
}

std::string firstLine(std::string_view bytes) {
    return std::string(bytes.substr(0, bytes.find_first_of("\r\n")));
}

}  // namespace

OrganFileSummary summarizeOrganFile(std::string_view fileName, std::string_view bytes) {
    OrganFileSummary s;
    const std::string line = firstLine(bytes);
    s.hasMark = line.find(kBrandMark) != std::string::npos;
    s.name = nameFromLine(line);
    if (s.hasMark) {
        try {
            s.version = versionFromLine(line);
        } catch (const RuntimeError&) {
            // A damaged version field: the rest of the file can still be shown.
        }
    }
    s.kind = fileKind(fileName);
    s.family = seriesOf(fileName);
    if (!s.family) s.family = familyFromVersion(s.version);
    if (!s.family || (s.kind != FileKind::Preset && s.kind != FileKind::Recording)) return s;
    for (const auto& button : presetButtonCodes(*s.family)) {
        Registration r;
        r.button = button;
        r.position = calcAddress(*s.family, s.kind, button);
        r.inFile = r.position - 1 + static_cast<std::int64_t>(kNameWidth) <=
                   static_cast<std::int64_t>(bytes.size());
        const std::string field = fieldAt(bytes, r.position);
        r.name = trimWhitespace(field.substr(0, field.find('\0')));
        s.registrations.push_back(std::move(r));
    }
    return s;
}

}  // namespace tvk
