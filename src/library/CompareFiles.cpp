#include "library/CompareFiles.h"

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "app/Version.h"

namespace tvk {

void btnCompare_Click(Context& ctx) {
    routine(ctx, "frmMain.btnCompare_Click", [&](Routine&) {
        ctx.ui.inform(kProjectName, "This feature has not been implemented yet.");
    });
}

bool CompareFiles(Context& ctx, const std::filesystem::path& first,
                  const std::filesystem::path& second) {
    bool same = false;
    routine(ctx, "frmMain.CompareFiles", [&](Routine& r) {
        std::error_code ec;
        if (!std::filesystem::exists(first, ec) || !std::filesystem::exists(second, ec)) return;
        r.step("Compare " + pathToUtf8(first) + " with " + pathToUtf8(second), [&] {
            const std::string a = readWholeFile(first), b = readWholeFile(second);
            const std::size_t common = std::min(a.size(), b.size());
            if (a.compare(0, common, b, 0, common) != 0) return;
            // Byte by byte over the first file: the second one ran out before it.
            if (b.size() < a.size())
                Routine::raise(kErrSubscriptOutOfRange, pathToUtf8(second) + " is shorter");
            same = true;
        });
    });
    return same;
}

}  // namespace tvk
