// The settings file as a user may have edited it: reading never escapes as anything but
// the program's own error, leaves the routine stack balanced, and whatever it read is
// written and read back unchanged without a complaint.

#include "FuzzSupport.h"
#include "app/IniFile.h"
#include "app/RuntimeError.h"

using namespace tvk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    Context ctx = f.ctx();
    const std::string_view text = fuzz::asText(data, size);

    // The conversions on every field alone: a number too large is Overflow, junk is
    // Type mismatch, and nothing else may come out.
    const auto fields = splitIniFields(std::string(text));
    for (std::size_t i = 0; i < fields.size() && i < 64; ++i) {
        const std::string& field = fields[i];
        const std::string value =
            field.substr(field.find('=') == std::string::npos ? 0 : field.find('=') + 1);
        for (int conversion = 0; conversion < 3; ++conversion) {
            try {
                if (conversion == 0) toInteger(value);
                if (conversion == 1) toBoolean(value);
                if (conversion == 2) toLong(value);
            } catch (const RuntimeError& e) {
                fuzz::check(e.number() == kErrTypeMismatch || e.number() == kErrOverflow,
                            "a conversion failed with an unexpected error number");
            }
        }
    }

    f.settings = Settings{};
    f.file("library/TVK.ini", text);
    ReadIniFile(ctx);
    fuzz::checkBalanced(f);

    const Settings read = f.settings;
    WriteIniFile(ctx, false);
    f.ui.boxes = 0;
    ReadIniFile(ctx);
    fuzz::checkBalanced(f);
    fuzz::check(f.ui.boxes == 0, "the program's own settings file was not accepted");
    fuzz::check(f.settings == read, "the settings did not read back as written");
    return 0;
}
