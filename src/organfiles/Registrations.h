#pragma once
// What the organ shows of a preset or recording file: its header, its own name and the
// registration names at the record positions of its family, bank by bank.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "organfiles/OrganNames.h"

namespace tvk {

// Buttons a bank: 1-10 for SU, 0-10 for A and E (presetButtonCodes lists them all).
int buttonsPerBank(Series family);

struct Registration {
    std::string button;  // "A1", "E10"
    std::int32_t position = 0;
    std::string name;  // trimmed UTF-8; empty when the file ends before the record
    bool inFile = false;
};

struct OrganFileSummary {
    bool hasMark = false;  // "TAVRN" in the first line
    std::string version;   // "2" for "Ver2.0"; empty without the mark or a number
    std::string name;      // the file's own name
    std::optional<Series> family;
    FileKind kind = FileKind::Other;
    std::vector<Registration> registrations;  // in button order; none for an unknown family
};

// `fileName` decides kind and family; a generic name without a family prefix takes it
// from the header's version (2 SU, 3 A, 4 E).
OrganFileSummary summarizeOrganFile(std::string_view fileName, std::string_view bytes);

}  // namespace tvk
