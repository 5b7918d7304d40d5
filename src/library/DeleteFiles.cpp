#include "library/DeleteFiles.h"

#include "app/CommonRoutines.h"
#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "organfiles/OrganNames.h"

namespace tvk {

namespace {

namespace fs = std::filesystem;

const std::string kQ(kQuote);
const std::string kBr(kLineBreak);

Answer confirm(Context& ctx, const char* title, const std::string& text, Icon icon) {
    const Answer a = ctx.ui.message(Message{title, text, Buttons::YesNo, icon, 2});
    ctx.state.lastAnswer = a;
    return a;
}

// One entry to the system's recycle bin; a failure goes to the error handler.
bool toSystemBin(Context& ctx, Routine& r, const fs::path& path) {
    return r.step("Recycle " + pathToUtf8(path), [&] {
        std::error_code ec;
        if (!fs::exists(fs::symlink_status(path, ec)))
            Routine::raise(kErrFileNotFound, pathToUtf8(path));
        if (!Recycle(ctx, path, 1)) Routine::raise(kErrPathFileAccess, pathToUtf8(path));
    });
}

// A stick file into the program's bin: copied first, and removed from the stick only
// once the copy is complete, so a pulled stick loses nothing. Returns the name in the
// bin, or "" when the file is still on the stick.
std::string toProgramBin(Context& ctx, Routine& r, const fs::path& file) {
    std::string binName;
    const bool copied =
        stickStep(r, "Recycle " + pathToUtf8(file), [&] { binName = copyToProgramBin(ctx, file); });
    if (!copied) return {};
    stickStep(r, "Kill " + pathToUtf8(file), [&] { fs::remove(file); });
    std::error_code ec;
    return fs::exists(file, ec) ? std::string() : binName;
}

void deleteFolder(Context& ctx, Routine& r, const fs::path& folder, DeleteReport& report) {
    const std::string name = pathToUtf8(folder);
    std::error_code ec;
    if (folder.empty() || fs::equivalent(folder, ctx.paths.libraryRoot, ec)) {
        ctx.ui.inform("DELETE FOLDER", "The Tavrin File Manager folder itself cannot be deleted.",
                      Icon::Critical);
        return;
    }
    bool empty = true;
    r.step("Dir " + name,
           [&] { empty = fs::directory_iterator(folder) == fs::directory_iterator(); });
    const std::string text =
        empty ? "Please confirm you want to delete the folder" + kBr + kQ + name + kQ
              : "The folder " + kQ + name + kQ + " is NOT empty." + kBr +
                    "Delete this folder anyway?";
    if (confirm(ctx, "DELETE FOLDER", text, Icon::Critical) != Answer::Yes) return;
    if (!toSystemBin(ctx, r, folder)) return;
    report.deleted.push_back(fileNameUtf8(folder));
    ctx.state.docsFolder = folder.parent_path();
    refreshLists(ctx.state);
}

void deleteOne(Context& ctx, Routine& r, const ListSelection& s, const std::string& name,
               DeleteReport& report) {
    const fs::path path = s.folder / pathFromUtf8(name);
    if (s.list == ListControl::flbUSB) {
        const std::string binName = toProgramBin(ctx, r, path);
        if (binName.empty()) return;
        report.binNames.push_back(binName);
    } else if (!toSystemBin(ctx, r, path)) {
        return;
    }
    report.deleted.push_back(name);
}

void confirmAndDelete(Context& ctx, Routine& r, const ListSelection& s, DeleteReport& report) {
    const auto count = s.names.size();
    if (count == 1) {
        if (confirm(ctx, "DELETE FILE", "Please confirm you want to delete the file...",
                    Icon::Exclamation) != Answer::Yes)
            return;
        deleteOne(ctx, r, s, s.names.front(), report);
    } else {
        if (confirm(ctx, "DELETE FILE",
                    "Please confirm you want to delete " + std::to_string(count) + " files?",
                    Icon::Exclamation) != Answer::Yes)
            return;
        ctx.ui.showProgress(static_cast<int>(count));
        for (std::size_t i = 0; i < count; ++i) {
            ctx.ui.setStatus(StatusPanel::Progress, "Recycling file " + kQ + s.names[i] + kQ);
            ctx.ui.setProgress(static_cast<int>(i + 1));
            ctx.ui.processEvents();
            deleteOne(ctx, r, s, s.names[i], report);
        }
        ctx.ui.hideProgress();
    }
}

void deleteFiles(Context& ctx, Routine& r, const ListSelection& s, DeleteReport& report) {
    const bool onStick = s.list == ListControl::flbUSB;
    try {
        if (onStick && !stickWritable(ctx, r)) return;
        confirmAndDelete(ctx, r, s, report);
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        showStickRemoved(ctx, report.deleted.size(), s.names.size(),
                         "The files deleted so far are in the program's Recycle Bin; the others "
                         "are still on the thumbdrive.");
        ctx.ui.hideProgress();
    }
    refreshLists(ctx.state);
}

}  // namespace

std::string copyToProgramBin(Context& ctx, const fs::path& file) {
    const fs::path bin = ctx.paths.recycleBin();
    fs::create_directories(bin);
    std::string binName = fileNameUtf8(file);
    std::error_code ec;
    if (fs::exists(bin / pathFromUtf8(binName), ec)) binName = freeDuplicateName(bin, binName);
    copyFileSafely(file, bin / pathFromUtf8(binName));
    return binName;
}

DeleteReport mnuEditDelete_Click(Context& ctx, const ListSelection& selection) {
    DeleteReport report;
    const bool tree = selection.list == ListControl::dirDocs;
    if (!tree && !isFileList(selection.list)) return report;
    if (!tree && selection.names.empty()) return report;
    routine(ctx, "frmMain.mnuEditDelete_Click", [&](Routine& r) {
        if (tree)
            deleteFolder(ctx, r, selection.folder, report);
        else
            deleteFiles(ctx, r, selection, report);
    });
    return report;
}

DeleteReport mnuEditDelete_Click(Context& ctx) {
    return mnuEditDelete_Click(ctx, activeSelection(ctx.state));
}

DeleteReport mnuFileEmpty_Click(Context& ctx) {
    DeleteReport report;
    routine(ctx, "frmMain.mnuFileEmpty_Click", [&](Routine& r) {
        if (ctx.ui.message(Message{"EMPTY RECYCLE BIN",
                                   "This will NOT empty the Recycle Bin on your Computer." + kBr +
                                       "This will empty the Tavrin File Manager's Recycle Bin." +
                                       kBr + "Do you want to clear out this Recycle Bin?",
                                   Buttons::YesNo, Icon::Question, 2}) != Answer::Yes)
            return;
        const fs::path bin = ctx.paths.recycleBin();
        std::vector<std::string> names;
        std::error_code ec;
        if (fs::is_directory(bin, ec))
            r.step("Dir " + pathToUtf8(bin), [&] { names = listPlainFiles(bin); });
        for (const auto& name : names) {
            ctx.ui.setStatus(StatusPanel::Progress, "Recycling file " + kQ + name + kQ);
            ctx.ui.processEvents();
            if (toSystemBin(ctx, r, bin / pathFromUtf8(name))) report.deleted.push_back(name);
        }
        refreshLists(ctx.state);
    });
    return report;
}

}  // namespace tvk
