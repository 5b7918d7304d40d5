#include "library/Copyfiles.h"

#include "app/Routine.h"
#include "app/Text.h"

namespace tvk {

// Until the copy engine is in, say so plainly instead of copying half a batch.
void Copyfiles(Context& ctx, const std::string& mode) {
    routine(ctx, "frmMain.Copyfiles", [&](Routine&) {
        const auto count = ctx.state.batch.files.size();
        Message box;
        box.title = "COPY FILES";
        box.text = "Copying files is not available in this version yet." + std::string(kBlankLine) +
                   "Nothing was copied; " + std::to_string(count) +
                   (count == 1 ? " file is" : " files are") + " still only in " +
                   pathToUtf8(ctx.state.batch.source) + ".";
        box.icon = Icon::Information;
        ctx.state.lastAnswer = ctx.ui.message(box);
    });
}

}  // namespace tvk
