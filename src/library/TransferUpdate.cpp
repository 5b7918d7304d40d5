// "&Update FROM Thumbdrive": the stick's mirror folder becomes a copy of the stick, presets
// and recordings under their readable names with "_#" and their organ numbers.
//
// The new copy is built in a folder beside the old one and swapped in only when every
// file arrived, so a pulled stick, an unreadable file or a full disk leaves the computer's
// copy as it was. Subfolders the user made inside the mirror folder move to the new copy.

#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Text.h"
#include "library/TransferSupport.h"

namespace tvk {

namespace {

std::string quoted(const std::filesystem::path& path) {
    return std::string(kQuote) + pathToUtf8(path) + std::string(kQuote);
}

bool confirmUpdate(Context& ctx) {
    const std::string text =
        "This process will UPDATE the COMPUTERS's files to reflect the THUMBDRIVE's contents." +
        kParagraph + "Any files on the COMPUTER that are NOT on the THUMBDRIVE, will be removed!" +
        kParagraph + "Do you want to continue?";
    return ctx.ui.message(Message{"UPDATE COMPUTER", text, Buttons::YesNo, Icon::Information, 2}) ==
           Answer::Yes;
}

// Readable name + "_#" + organ number + extension; a taken name raises the number,
// counting on from the file's own number with "Number Seq", otherwise from 1. Organ files
// without a number keep their readable name, with " (n)" on a clash.
std::string updateName(Context& ctx, const FolderNames& folder, const std::string& name,
                       const SourceFile& source, int& duplicates) {
    const NameInfo info = classifyName(name);
    const auto family = seriesFromLetter(info.seriesLetter);
    const FileKind kind = fileKind(name);
    const bool organ = kind == FileKind::Preset || kind == FileKind::Recording;
    if (!organ || !info.number || !family) return addAllName(ctx, folder, name, source, duplicates);
    const NameParts parts = splitExtension(name);
    const std::string base = source.readable() + "_#";
    const int width = organNumberWidth(*family);
    std::string wanted = base + zeroPad(*info.number, width) + parts.extension;
    if (!folder.taken(wanted)) return wanted;
    int counter = ctx.settings.numberSeq == 1 ? *info.number + 1 : 1;
    return freeOrganNumberName(folder, base, counter, width, parts.extension);
}

std::filesystem::path besideMirror(const std::filesystem::path& mirror, const char* purpose) {
    return mirror.parent_path() /
           pathFromUtf8(std::string(".tvk-") + purpose + " " + fileNameUtf8(mirror));
}

std::vector<std::filesystem::path> subfolders(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> found;
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) return found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.is_directory()) found.push_back(entry.path());
    return found;
}

// Removes a folder of the program's own making and its files; a subfolder in it (one the
// user made, moved there by a swap that failed half way) keeps it in place.
void removeOwnFolder(const std::filesystem::path& folder) {
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) return;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (!entry.is_directory()) std::filesystem::remove(entry.path());
    if (subfolders(folder).empty()) std::filesystem::remove(folder);
}

void moveAll(const std::vector<std::filesystem::path>& folders, const std::filesystem::path& to) {
    for (const auto& folder : folders) renameNoReplace(folder, to / folder.filename());
}

// Puts the new copy in place of the old: the user's subfolders move across first (and
// back again if that fails), then the two folders change names, and the old files go.
bool swapIn(Routine& r, const std::filesystem::path& fresh, const std::filesystem::path& mirror) {
    const auto old = besideMirror(mirror, "old");
    return r.step("Replace " + quoted(mirror) + " with " + quoted(fresh), [&] {
        const auto kept = subfolders(mirror);
        try {
            moveAll(kept, fresh);
        } catch (...) {
            for (const auto& folder : kept) {
                std::error_code ec;
                std::filesystem::rename(fresh / folder.filename(), folder, ec);
            }
            throw;
        }
        std::error_code ec;
        const bool hadMirror = std::filesystem::exists(mirror, ec);
        if (hadMirror) std::filesystem::rename(mirror, old);
        try {
            std::filesystem::rename(fresh, mirror);
        } catch (...) {
            if (hadMirror) std::filesystem::rename(old, mirror);
            throw;
        }
        if (hadMirror) removeOwnFolder(old);
    });
}

void reportUnfinished(Context& ctx, const std::filesystem::path& mirror,
                      const TransferReport& report) {
    std::string what = "The update did not finish";
    if (!report.failures.empty())
        what += ": " + std::to_string(report.failures.size()) +
                " files could not be copied (first " + std::string(kQuote) +
                report.failures.front().name + std::string(kQuote) + ", error " +
                std::to_string(report.failures.front().errorNumber) + ")";
    ctx.ui.message(Message{
        "UPDATE COMPUTER",
        what + "." + kParagraph + "The computer's copy in " + quoted(mirror) + " was not changed.",
        Buttons::Ok, Icon::Exclamation, 1});
}

}  // namespace

TransferReport updateComputer(Context& ctx, Routine& r) {
    TransferReport report;
    if (!confirmUpdate(ctx)) {
        report.declined = true;
        return report;
    }
    const auto mirror = mirrorFolder(ctx);
    const auto fresh = besideMirror(mirror, "update");
    const auto files = stickFiles(ctx, r);
    ctx.ui.showProgress(static_cast<int>(files.size()));
    std::optional<FolderNames> names;
    const auto dropFresh = [&] {
        r.step("Remove " + quoted(fresh), [&] { removeOwnFolder(fresh); });
    };
    const bool started = r.step("Create " + quoted(fresh), [&] {
        removeOwnFolder(fresh);  // left by an update that was cut short
        std::filesystem::create_directories(fresh);
        names.emplace(fresh);
    });
    try {
        if (started)
            TransferCopy(ctx, r, report, "Copying ")
                .run(ctx.state.drive.tavrinFolder(), files, *names,
                     [&](const std::string& name, const SourceFile& source) {
                         return updateName(ctx, *names, name, source, report.duplicates);
                     });
    } catch (const RoutineAbort&) {
        dropFresh();
        reportUnfinished(ctx, mirror, report);
        throw;
    }
    if (!started || !report.failures.empty() || !swapIn(r, fresh, mirror)) {
        dropFresh();
        reportUnfinished(ctx, mirror, report);
        return report;
    }
    report.completed = true;
    return report;
}

}  // namespace tvk
