// Preset and recording files from any organ, or damaged: the header line, the version,
// the file's own name and the 16-character fields at every record position. Reading
// fails only with the program's own errors, names come out as at most 16 characters of
// valid UTF-8, and the traced routines leave the routine stack balanced.

#include "FuzzSupport.h"
#include "app/RuntimeError.h"
#include "organfiles/DisplayFileInfo.h"
#include "organfiles/FileLayout.h"
#include "organfiles/OrganFile.h"

using namespace tvk;

namespace {

void checkField(const std::string& field, std::size_t width) {
    fuzz::check(fuzz::isValidUtf8(field), "a field is not valid UTF-8");
    fuzz::check(fuzz::utf8Characters(field) <= width, "a field is wider than asked");
}

void recordFields(std::string_view bytes) {
    static const char* const kButtons[] = {"0",   "A0",  "A1", "A10", "B1",        "C5", "D11",
                                           "E10", "E11", "F1", "A-3", "B99999999", ""};
    for (const char* family : {"S", "A", "E"})
        for (const char* kind : {"PRESET", "RECORDING"})
            for (const char* button : kButtons) {
                const std::int32_t at = calcAddress(family, kind, button);
                checkField(fieldAt(bytes, at), kNameWidth);
            }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    Context ctx = f.ctx();
    const std::string_view bytes = fuzz::asText(data, size);
    const auto file = f.file("SUPSET01.LPG", bytes);

    const std::string_view line =
        bytes.substr(0, std::min(bytes.size(), bytes.find_first_of("\r\n")));
    try {
        fuzz::check(readFirstLine(file) == line, "the first line read differs from the bytes");
    } catch (const RuntimeError& e) {
        fuzz::check(bytes.empty() && e.number() == kErrInputPastEndOfFile,
                    "the first line failed though the file is not empty");
    }
    try {
        const std::string version = versionFromLine(line);
        fuzz::check(!version.empty(), "an empty version was accepted");
    } catch (const RuntimeError& e) {
        fuzz::check(e.number() == kErrInvalidProcedureCall || e.number() == kErrTypeMismatch,
                    "the version failed with an unexpected error number");
    }
    const std::string name = nameFromLine(line);
    checkField(name, kNameWidth);
    fuzz::check(name.empty() || (name.front() != ' ' && name.back() != ' '),
                "the name is not trimmed");
    recordFields(bytes);
    // A button code straight from the file: whatever it says, the own name, a record or 0.
    const std::int32_t at = calcAddress("E", "PRESET", bytes.substr(0, 12));
    fuzz::check(at == 0 || at == 33 || (at - 1027) % 624 == 0, "a button code outside the table");

    GetFileVersion(ctx, file);
    fuzz::checkBalanced(f);
    GetPresetName(ctx, file);
    fuzz::checkBalanced(f);
    DisplayFileInfo(ctx, file);
    fuzz::checkBalanced(f);
    return 0;
}
