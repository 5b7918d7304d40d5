#include "library/CopyPaste.h"

#include "app/Routine.h"
#include "app/Text.h"
#include "library/Selection.h"

namespace tvk {

namespace {

// The folder a file list shows; empty for a control that is not one.
std::filesystem::path listFolder(const MainState& state, ListControl list) {
    if (list == ListControl::flbDocs) return state.docsFolder;
    if (list == ListControl::flbUSB && state.drive.present) return state.drive.tavrinFolder();
    return {};
}

}  // namespace

bool isOnStick(const std::filesystem::path& folder, const std::filesystem::path& stickFolder) {
    if (stickFolder.empty()) return false;
    if (sameFolder(folder, stickFolder)) return true;
    const auto p = folder.lexically_normal(), f = stickFolder.lexically_normal();
    auto pi = p.begin();
    for (auto fi = f.begin(); fi != f.end(); ++fi, ++pi) {
        if (fi->empty()) continue;  // a trailing separator
        if (pi == p.end() || *pi != *fi) return false;
    }
    return true;
}

void mnuEditCopy_Click(Context& ctx, ListControl focused) {
    routine(ctx, "frmMain.mnuEditCopy_Click", [&](Routine&) {
        const auto folder = listFolder(ctx.state, focused);
        if (folder.empty()) return;
        ctx.state.copySource = {focused, folder, ctx.state.selected};
    });
}

CopyMode pasteModeFor(const CopySource& source, ListControl destinationList,
                      const std::filesystem::path& destination) {
    if (source.list != destinationList)
        return pathToUtf8(source.folder).find("TAVRIN") != std::string::npos ? CopyMode::Left
                                                                             : CopyMode::Right;
    if (sameFolder(source.folder, destination))
        return destinationList == ListControl::flbUSB ? CopyMode::FlbUSB : CopyMode::FlbDocs;
    return CopyMode::Diff;
}

std::optional<CopyReport> mnuEditPaste_Click(Context& ctx, ListControl focused) {
    std::optional<CopyReport> report;
    routine(ctx, "frmMain.mnuEditPaste_Click", [&](Routine&) {
        const ListControl list = focused == ListControl::dirDocs ? ListControl::flbDocs : focused;
        const auto destination = listFolder(ctx.state, list);
        const CopySource& source = ctx.state.copySource;
        if (destination.empty() || source.list == ListControl::None) return;
        ctx.state.activeList = list;
        report = Copyfiles(ctx,
                           copyRequest(ctx, source.files, source.folder, destination,
                                       pasteModeFor(source, list, destination)),
                           "Paste");
    });
    return report;
}

CopyMode folderCopyMode(const std::filesystem::path& source,
                        const std::filesystem::path& destination,
                        const std::filesystem::path& stickFolder) {
    const bool fromStick = isOnStick(source, stickFolder);
    const bool toStick = isOnStick(destination, stickFolder);
    if (sameFolder(source, destination)) return toStick ? CopyMode::FlbUSB : CopyMode::FlbDocs;
    if (fromStick != toStick) return fromStick ? CopyMode::Left : CopyMode::Right;
    return CopyMode::Diff;
}

}  // namespace tvk
