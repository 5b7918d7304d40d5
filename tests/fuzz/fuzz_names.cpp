// Any text as a file name: the classifier decides kind, series, type and number without
// failing, an extension's case never changes the kind, and CheckName leaves none of the
// nine characters, keeps the number of characters and the routine stack balanced. The
// first two bytes also give a family, kind and number: a name built from them reads back.

#include <cctype>

#include "FuzzSupport.h"
#include "organfiles/OrganNames.h"

using namespace tvk;

namespace {

std::string upperAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

void builtNamesReadBack(std::uint8_t a, std::uint8_t b) {
    static const Series kFamilies[] = {Series::SU, Series::A, Series::E};
    const Series family = kFamilies[a % 3];
    const FileKind kind = a & 4 ? FileKind::Recording : FileKind::Preset;
    const int highest = kind == FileKind::Preset ? kMaxPresetNumber : kMaxRecordingNumber;
    const int number = 1 + b % highest;
    for (const std::string& name :
         {organFileName(family, kind, number), renamedOrganFileName(family, kind, number)}) {
        const NameInfo info = classifyName(name);
        fuzz::check(info.kind == kind, "a built name reads back as another kind");
        fuzz::check(info.number == number, "a built name reads back with another number");
        fuzz::check(seriesOf(name) == family, "a built name reads back in another family");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    Context ctx = f.ctx();
    const std::string_view name = fuzz::asText(data, size);

    const NameInfo info = classifyName(name);
    fuzz::check(info.type == nameType(name), "classifyName and nameType disagree");
    fuzz::check(fileKind(name) == fileKind(upperAscii(name)),
                "the extension's case changed the kind");
    if (info.number)
        fuzz::check(info.type == NameType::PSET || info.type == NameType::SONG,
                    "a number for a name that carries none");
    seriesOf(name);
    valueOf(name);
    duplicateName(name, static_cast<int>(size));

    const std::string checked = CheckName(ctx, name);
    fuzz::checkBalanced(f);
    fuzz::check(checked.find_first_of("\\/:*?\"<>|") == std::string::npos,
                "CheckName left an illegal character");
    fuzz::check(fuzz::utf8Characters(checked) == fuzz::utf8Characters(name),
                "CheckName changed the number of characters");
    fuzz::check(checkName(checked) == checked, "CheckName is not idempotent");

    if (size >= 2) builtNamesReadBack(data[0], data[1]);
    return 0;
}
