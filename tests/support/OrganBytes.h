#pragma once
// Presets and recordings for the tests, as the organ writes them.

#include <string>

#include "organfiles/MakeFiles.h"
#include "organfiles/OrganFile.h"

namespace tvk::test {

// A whole file from the test-file generator whose own name is `name`.
inline std::string generatedOrganFile(Series family, FileKind kind, const std::string& name,
                                      std::uint32_t seed = 7) {
    RandomSource random(seed);
    return buildTestFile(family, kind, name, random);
}

// The family's header, `name` in the 16-byte name field, then `rest`.
inline std::string organHead(Series family, std::string name, const std::string& rest = {}) {
    name.resize(kNameWidth, ' ');
    return organHeader(family) + name + rest;
}

}  // namespace tvk::test
