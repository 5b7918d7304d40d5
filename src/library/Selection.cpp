#include "library/Selection.h"

#include <algorithm>
#include <array>

#include "app/Routine.h"
#include "app/ShownPaths.h"
#include "app/Text.h"
#include "organfiles/DisplayFileInfo.h"
#include "organfiles/OrganNames.h"

namespace tvk {

namespace {

// The selected-file table holds 1,500 names; one more is an index error, and Ignore
// keeps the first 1,500.
void fillSelectedTable(Routine& r, std::vector<std::string>& table,
                       const std::vector<std::string>& names, const std::string& what) {
    table.assign(names.begin(), names.begin() + std::min<std::size_t>(names.size(), kMaxSelected));
    if (names.size() > static_cast<std::size_t>(kMaxSelected)) {
        r.step(what + " " + std::to_string(kMaxSelected + 1), [&] {
            Routine::raise(kErrSubscriptOutOfRange, std::to_string(names.size()) + " names for " +
                                                        std::to_string(kMaxSelected) + " places");
        });
    }
}

void showFileInfo(Context& ctx, Routine& r, const ListClick& click) {
    auto& state = ctx.state;
    state.fileInfoText.clear();
    if (click.clicked.empty()) return;
    const auto file = click.folder / pathFromUtf8(click.clicked);
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) {
        // Gone since the list was drawn (deleted elsewhere, stick pulled).
        state.fileInfoText = "\"" + click.clicked + "\" is no longer in" + std::string(kLineBreak) +
                             shownPath(state.drive, click.folder);
        return;
    }
    r.step("DisplayFileInfo " + pathToUtf8(file),
           [&] { state.fileInfoText = DisplayFileInfo(ctx, file); });
}

}  // namespace

CommandEnabling enablingFor(std::size_t selectedCount) {
    switch (selectedCount) {
        case 0:
            return {};
        case 1:
            return {true, true, true, true, false};
        case 2:
            return {false, false, true, true, true};
        default:
            return {false, false, true, true, false};
    }
}

std::string selectionStatus(std::size_t selected, std::size_t total) {
    return std::to_string(selected) + " of " + std::to_string(total) + " selected";
}

bool isPresetName(const std::string& name) {
    return fileKind(name) == FileKind::Preset;
}

namespace {
void applyEnabling(MainState& state, const CommandEnabling& on) {
    state.enabled[kMnuOpen] = on.open;
    state.enabled[kMnuFileRename] = on.rename;
    state.enabled[kMnuEditCopy] = on.copy;
    state.enabled[kMnuEditPaste] = on.paste;
    state.enabled[kBtnCompare] = on.compare;
}
}  // namespace

void forgetSelection(MainState& state) {
    state.selected.clear();
    applyEnabling(state, enablingFor(0));
}

void fileListClick(Context& ctx, const ListClick& click) {
    routine(ctx, std::string("frmMain.") + listControlName(click.list) + "_Click", [&](Routine& r) {
        auto& state = ctx.state;
        state.activeList = click.list;
        if (!click.clicked.empty()) state.enabled[kMnuEditRename] = isPresetName(click.clicked);
        showFileInfo(ctx, r, click);
        fillSelectedTable(r, state.selected, click.selected, "Selected file");

        applyEnabling(state, enablingFor(click.selected.size()));

        ctx.ui.setStatus(StatusPanel::Progress,
                         selectionStatus(click.selected.size(), click.entryCount));
        if (state.lastAction == ListAction::None) state.lastAction = ListAction::Click;
    });
}

DoubleClickAction doubleClickAction(ListControl list, const std::string& name) {
    const FileKind kind = fileKind(name);
    const std::string ext = extensionOf(name);
    if (kind == FileKind::Mp3 || kind == FileKind::Midi) return DoubleClickAction::Play;
    if (ext == "PDF") return DoubleClickAction::OpenWithDesktop;
    if (kind != FileKind::Preset && kind != FileKind::Recording) return DoubleClickAction::None;
    // The thumbdrive only holds the organ's own kinds, so fewer extensions open there; on
    // the computer an A-series recording has never opened, and still does not.
    const bool aRecording = kind == FileKind::Recording && seriesOfExtension(ext) == Series::A;
    const bool opens = list == ListControl::flbUSB ? isStickOrganExtension(ext) : !aRecording;
    return opens ? DoubleClickAction::View : DoubleClickAction::None;
}

bool sameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code ec;
    if (std::filesystem::equivalent(a, b, ec)) return true;
    return a.lexically_normal() == b.lexically_normal();
}

CopyMode copyModeFor(const DropRequest& drop) {
    if (drop.sourceList != drop.destinationList)
        return drop.destinationList == ListControl::flbUSB ? CopyMode::Right : CopyMode::Left;
    if (sameFolder(drop.sourceFolder, drop.destinationFolder))
        return drop.destinationList == ListControl::flbUSB ? CopyMode::FlbUSB : CopyMode::FlbDocs;
    return CopyMode::Diff;
}

std::optional<CopyReport> listDragDrop(Context& ctx, const DropRequest& drop) {
    const std::string name = std::string("frmMain.") + listControlName(drop.destinationList);
    return routine(ctx, name + "_OLEDragDrop", [&](Routine&) {
        ctx.state.activeList = drop.destinationList;
        ctx.state.lastAction = ListAction::Drop;
        return Copyfiles(ctx,
                         copyRequest(ctx, drop.files, drop.sourceFolder, drop.destinationFolder,
                                     copyModeFor(drop)),
                         "Drop");
    });
}

}  // namespace tvk
