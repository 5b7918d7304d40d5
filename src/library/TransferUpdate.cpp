// "&Update FROM Thumbdrive": the stick's mirror folder becomes a copy of the stick, presets
// and recordings under their readable names with "_#" and their organ numbers.
//
// The mirror folder is brought up to date in place: a file whose bytes are already there
// under its name stays, a new or changed one arrives under a temporary name and replaces
// the old only when complete, and only when every copy succeeded do the files the stick
// no longer has go to the recycle bin. So a pulled stick, an unreadable file or a full
// disk leaves each file as it was or as the stick has it, nothing is lost for good, and
// the free space needed is only that of what is new or changed. Subfolders the user made
// inside the mirror folder are left alone.

#include "app/CommonRoutines.h"
#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/StickFaults.h"
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

// An update now would take from the computer what an unfinished restore has not yet put
// back on the stick.
bool finishRestoreFirst(Context& ctx) {
    const std::string text = "The last restore of this thumbdrive did not finish." + kParagraph +
                             "Updating now would remove from the computer the files still "
                             "missing on the thumbdrive." +
                             kParagraph + "Finish the restore now?";
    return ctx.ui.message(Message{"UPDATE COMPUTER", text, Buttons::YesNo, Icon::Exclamation, 2}) ==
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

// Brings one stick file into the mirror folder under the name the new set gives it.
class MirrorCopier {
  public:
    MirrorCopier(Context& ctx, Routine& r, TransferReport& report, FolderNames& names, bool write)
        : ctx_(ctx), r_(r), report_(report), names_(names), write_(write) {}

    void run(const std::filesystem::path& stick, const std::vector<std::string>& files) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            ctx_.ui.setStatus(StatusPanel::Progress,
                              copyingText("Copying ", files[i], i + 1, files.size(), true));
            ctx_.ui.setProgress(static_cast<int>(i + 1));
            ctx_.ui.processEvents();
            copyOne(stick / pathFromUtf8(files[i]), files[i]);
        }
    }

  private:
    void copyOne(const std::filesystem::path& source, const std::string& name) {
        const int duplicates = report_.duplicates;
        MirroredFile result;
        int error = 0;
        bool done = false;
        try {
            done = stickStep(r_, "Copy " + quoted(source), [&] {
                report_.duplicates = duplicates;
                try {
                    result = copyFileMirrored(
                        source, names_.folder(),
                        [&](std::string_view head) {
                            std::string chosen = updateName(
                                ctx_, names_, name, SourceFile{source, head}, report_.duplicates);
                            r_.setTask("Copy " + quoted(source) + " to " +
                                       quoted(names_.folder() / pathFromUtf8(chosen)));
                            return chosen;
                        },
                        [&](std::uintmax_t, std::uintmax_t) { ctx_.ui.processEvents(); }, write_);
                } catch (...) {
                    error = RuntimeError::fromCurrentException().number();
                    throw;
                }
            });
        } catch (...) {
            report_.failures.push_back({name, error});  // the file the command stopped at
            throw;
        }
        if (!done) {
            report_.failures.push_back({name, error});
            return;
        }
        names_.add(result.name);
        static constexpr const char* kAction[] = {"copy", "replace", "unchanged"};
        report_.lines.push_back({kAction[static_cast<int>(result.how)], name, result.name, {}});
        if (result.how == MirrorCopy::Unchanged)
            report_.unchanged.push_back(name);
        else
            report_.copied.push_back({name, result.name});
    }

    Context& ctx_;
    Routine& r_;
    TransferReport& report_;
    FolderNames& names_;
    bool write_;
};

// The files of the mirror folder that the new set does not hold: the user's plain files,
// and our own temporaries left by a run that was cut short.
std::vector<std::string> leftOver(Routine& r, const FolderNames& names) {
    std::vector<std::string> gone;
    r.step("List " + quoted(names.folder()), [&] {
        gone.clear();
        for (const auto& name : listPlainFiles(names.folder()))
            if (!names.taken(name)) gone.push_back(name);
        for (const auto& entry : std::filesystem::directory_iterator(names.folder()))
            if (entry.is_regular_file() && isTemporaryName(fileNameUtf8(entry.path())))
                gone.push_back(fileNameUtf8(entry.path()));
    });
    return gone;
}

// Temporaries are removed for good; everything else goes to the recycle bin.
void removeLeftOver(Context& ctx, Routine& r, const FolderNames& names, TransferReport& report,
                    bool write) {
    for (const auto& name : leftOver(r, names)) {
        const auto file = names.folder() / pathFromUtf8(name);
        if (isTemporaryName(name)) {
            if (write) r.step("Kill " + quoted(file), [&] { std::filesystem::remove(file); });
            continue;
        }
        report.lines.push_back({"remove", name, {}, "the recycle bin"});
        if (!write) continue;
        if (r.step("Recycle " + quoted(file), [&] {
                if (!Recycle(ctx, file, 1)) Routine::raise(kErrPathFileAccess, pathToUtf8(file));
            }))
            report.removed.push_back(name);
    }
}

void reportUnfinished(Context& ctx, const std::filesystem::path& mirror,
                      const TransferReport& report) {
    std::string what = "The update did not finish";
    if (!report.failures.empty())
        what += ": " + std::to_string(report.failures.size()) +
                " files could not be copied (first " + std::string(kQuote) +
                report.failures.front().name + std::string(kQuote) + ", error " +
                std::to_string(report.failures.front().errorNumber) + ")";
    ctx.ui.message(Message{"UPDATE COMPUTER",
                           what + "." + kParagraph +
                               "No file was removed from the computer's copy in " + quoted(mirror) +
                               "; the files not copied are as they were.",
                           Buttons::Ok, Icon::Exclamation, 1});
}

}  // namespace

void updateComputer(Context& ctx, Routine& r, TransferReport& report, bool dryRun) {
    if (restoreUnfinished(ctx)) {
        if (finishRestoreFirst(ctx)) {
            report.finishedRestore = true;
            return restoreThumbdrive(ctx, r, report, true, dryRun);
        }
        report.declined = true;
        return;
    }
    if (!dryRun && !confirmUpdate(ctx)) {
        report.declined = true;
        return;
    }
    const auto mirror = mirrorFolder(ctx);
    std::vector<std::string> files;
    try {
        if (!listStickFiles(ctx, r, files)) return;
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        return;
    }
    ctx.ui.showProgress(static_cast<int>(files.size()));
    FolderNames names = FolderNames::planned(mirror);
    std::error_code ec;
    if (dryRun && !std::filesystem::is_directory(mirror, ec)) {
        // Nothing there yet: every file is new.
    } else if (!r.step("Create " + quoted(mirror),
                       [&] { std::filesystem::create_directories(mirror); })) {
        return;
    }
    MirrorCopier copier(ctx, r, report, names, !dryRun);
    try {
        copier.run(ctx.state.drive.tavrinFolder(), files);
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        showStickRemoved(ctx, report.copied.size() + report.unchanged.size(), files.size(),
                         "No file was removed from the computer's copy in " + quoted(mirror) +
                             "; the files not yet copied are as they were.");
        return;
    } catch (const RoutineAbort&) {
        if (!dryRun) reportUnfinished(ctx, mirror, report);
        throw;
    }
    if (!report.failures.empty()) {
        if (!dryRun) reportUnfinished(ctx, mirror, report);
        return;
    }
    if (std::filesystem::is_directory(mirror, ec)) removeLeftOver(ctx, r, names, report, !dryRun);
    report.completed = true;
    return;
}

}  // namespace tvk
