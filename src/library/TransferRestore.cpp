// "Restore TO &Thumbdrive": the stick's TAVRIN folder becomes a copy of its mirror folder,
// presets and recordings under their organ names again.
//
// Every name and every question is settled first; every file to be copied must open, and
// the files must fit (the stick's free clusters plus those of what the restore removes)
// before anything on the stick goes. A stick file the computer's copy does not hold is
// kept in the program's Recycle Bin before it is removed. A note at the stick's root says
// a restore is under way until the last file is in place, so a stick pulled part way is
// recognised at its next scan. The mirror folder is only read.

#include <algorithm>
#include <map>
#include <set>

#include "app/DiskSpace.h"
#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "library/DeleteFiles.h"
#include "library/TransferSupport.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

constexpr const char* kRestoreNote = ".tvk-restore";

std::string quoted(const std::string& text) {
    return std::string(kQuote) + text + std::string(kQuote);
}

struct Planned {
    std::string from, to;
};

// The family of a library file: its extension's letter, or for the shared "LPG" and
// "LMR" the format version inside (2 SU, 3 A, 4 E).
std::optional<Series> familyOf(const std::filesystem::path& file, const std::string& extension) {
    if (!isGenericExtension(extension)) return seriesOfExtension(extension);
    try {
        return seriesOfVersion(versionFromLine(readFirstLine(file)));
    } catch (const RuntimeError&) {
        return std::nullopt;  // no header to tell: the file keeps its own name
    }
}

// The organ number after the last "_#" of the name, if any.
std::optional<int> mirrorNumber(const std::string& base) {
    const std::size_t mark = base.rfind("_#");
    if (mark == std::string::npos || mark + 2 >= base.size()) return std::nullopt;
    int number = 0;
    for (std::size_t i = mark + 2; i < base.size(); ++i) {
        if (base[i] < '0' || base[i] > '9' || number > 99999) return std::nullopt;
        number = number * 10 + (base[i] - '0');
    }
    return number;
}

class RestorePlan {
  public:
    RestorePlan(Context& ctx, std::filesystem::path mirror)
        : ctx_(ctx), mirror_(std::move(mirror)) {}

    void build(const std::vector<std::string>& files, TransferReport& report) {
        std::vector<std::pair<std::string, std::pair<Series, bool>>> unnumbered;
        for (const auto& name : files) {
            const FileKind kind = fileKind(name);
            const std::string extension = extensionOf(name);
            const auto family = (kind == FileKind::Preset || kind == FileKind::Recording)
                                    ? familyOf(mirror_ / pathFromUtf8(name), extension)
                                    : std::nullopt;
            if (!family) {
                place(name, name, report);
                continue;
            }
            const bool song = kind == FileKind::Recording;
            const auto number = mirrorNumber(splitExtension(name).base);
            if (!number) {
                unnumbered.push_back({name, {*family, song}});
                continue;
            }
            place(name, organName(*family, song, *number), report, *family, song);
        }
        // Files without a number take the first free ones after the numbered are placed.
        for (const auto& [name, how] : unnumbered)
            add(name, organName(how.first, how.second, freeNumber(how.first, how.second, 1)));
    }

    std::vector<Planned> files;

  private:
    std::string organName(Series family, bool song, int number) const {
        return organFileName(family, song ? FileKind::Recording : FileKind::Preset, number);
    }
    int freeNumber(Series family, bool song, int from) const {
        int n = from;
        while (taken(organName(family, song, n))) ++n;
        return n;
    }
    bool taken(const std::string& name) const { return planned_.count(utf8ToUpper(name)) != 0; }
    void add(const std::string& from, const std::string& to) {
        planned_.insert(utf8ToUpper(to));
        files.push_back({from, to});
    }

    // A taken organ name asks whether to renumber, replace or leave the file out.
    void place(const std::string& from, const std::string& to, TransferReport& report,
               std::optional<Series> family = std::nullopt, bool song = false) {
        if (!taken(to)) return add(from, to);
        const Answer answer = ctx_.ui.message(
            Message{"FILE ALREADY EXISTS",
                    "The file " + quoted(to) + " is already on the USB." + kParagraph +
                        "Too include it on the USB, it is recommended to renumber this file. Not "
                        "renumbering it will REPLACE the existing file on the USB." +
                        kParagraph + "Do you want it renumbered? Or Cancel this copy?",
                    Buttons::YesNoCancel, Icon::Question, 1});
        if (answer == Answer::Yes && family) {
            add(from, organName(*family, song, freeNumber(*family, song, 1)));
        } else if (answer == Answer::Yes) {
            int counter = 1;
            std::string name = to;
            const NameParts parts = splitExtension(to);
            while (taken(name))
                name = parts.base + " (" + std::to_string(counter++) + ")" + parts.extension;
            add(from, name);
        } else if (answer == Answer::No) {
            // The later file takes the name; the earlier one would only be copied over.
            std::erase_if(files, [&](const Planned& p) { return iequals(p.to, to); });
            files.push_back({from, to});
        } else {
            report.skipped.push_back(from);
        }
    }

    Context& ctx_;
    std::filesystem::path mirror_;
    std::set<std::string> planned_;
};

bool confirmRestore(Context& ctx, std::size_t count, const std::filesystem::path& mirror) {
    const std::string text = "This process will restore and sort " + std::to_string(count) +
                             " files to the THUMBDRIVE to reflect the contents of " +
                             pathToUtf8(mirror) + " from the COMPUTER." + kParagraph +
                             "Any files on the THUMBDRIVE that are NOT on the COMPUTER, will be "
                             "removed!" +
                             kParagraph + "Do you want to continue?";
    return ctx.ui.message(Message{"RESTORE THUMBDRIVE", text, Buttons::YesNo, Icon::None, 2}) ==
           Answer::Yes;
}

// What is on the stick now: the files a restore removes, our own leftovers included.
bool stickContents(Context& ctx, Routine& r, std::vector<std::filesystem::path>& found) {
    const auto folder = ctx.state.drive.tavrinFolder();
    std::vector<std::string> plain;
    if (!listStickFiles(ctx, r, plain)) return false;
    return stickStep(r, "List " + pathToUtf8(folder), [&] {
        found.clear();
        for (const auto& name : plain) found.push_back(folder / pathFromUtf8(name));
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (isTemporaryName(fileNameUtf8(entry.path()))) found.push_back(entry.path());
    });
}

// Opens every file to be copied and reads its size. A file that cannot be read is the
// handler's box, with its name; false then, before anything on the stick has changed.
bool readSizes(Routine& r, const std::filesystem::path& mirror, const std::vector<Planned>& plan,
               std::vector<std::uintmax_t>& sizes) {
    sizes.clear();
    for (const auto& p : plan) {
        const auto file = mirror / pathFromUtf8(p.from);
        if (!r.step("Open " + pathToUtf8(file), [&] { sizes.push_back(FileReader(file).size()); }))
            return false;
    }
    return true;
}

// True when the restore fits; otherwise says so.
bool fits(Context& ctx, Routine& r, const std::filesystem::path& mirror,
          const std::vector<std::uintmax_t>& sizes,
          const std::vector<std::filesystem::path>& removed) {
    std::uintmax_t need = 0, room = 0;
    if (!stickStep(r, "Measure the free space of " + pathToUtf8(ctx.state.drive.root), [&] {
            const DiskSpace space = diskSpace(ctx.state.drive.tavrinFolder());
            need = 0;
            room = space.available;
            for (const auto size : sizes) need += space.roomFor(size);
            for (const auto& file : removed)
                room += space.roomFor(std::filesystem::file_size(file));
        }))
        return false;
    if (need <= room) return true;
    const auto kb = [](std::uintmax_t bytes) {
        return std::to_string((bytes + 1023) / 1024) + " KB";
    };
    ctx.ui.message(Message{"NOT ENOUGH ROOM",
                           "The files of " + pathToUtf8(mirror) + " need " + kb(need) +
                               " on the THUMBDRIVE, but it has room for " + kb(room) + "." +
                               kParagraph + "Nothing was changed on the THUMBDRIVE.",
                           Buttons::Ok, Icon::Exclamation, 1});
    return false;
}

// The stick files the computer's copy does not hold, byte for byte: the ones to keep in
// the program's Recycle Bin before they are removed.
bool notHeld(Context& ctx, Routine& r, const std::filesystem::path& mirror,
             const std::vector<std::filesystem::path>& removed,
             std::vector<std::filesystem::path>& keep) {
    return stickStep(
        r, "Compare " + pathToUtf8(ctx.state.drive.tavrinFolder()) + " with " + pathToUtf8(mirror),
        [&] {
            keep.clear();
            const auto sizes = filesBySize(mirror);
            for (const auto& file : removed)
                if (!isTemporaryName(fileNameUtf8(file)) && !heldIn(sizes, file))
                    keep.push_back(file);
        });
}

bool keepInBin(Context& ctx, Routine& r, const std::vector<std::filesystem::path>& keep) {
    for (const auto& file : keep)
        if (!stickStep(r, "Recycle " + pathToUtf8(file), [&] { copyToProgramBin(ctx, file); }))
            return false;
    return true;
}

// The dry run's lines: what each planned file does to the stick, then the stick files
// that go.
void describe(const std::filesystem::path& mirror, const std::vector<Planned>& plan,
              const std::vector<std::filesystem::path>& removed,
              const std::vector<std::filesystem::path>& keep, TransferReport& report) {
    std::map<std::string, std::filesystem::path> onStick;
    for (const auto& file : removed) onStick[utf8ToUpper(fileNameUtf8(file))] = file;
    for (const auto& p : plan) {
        const auto there = onStick.find(utf8ToUpper(p.to));
        std::string action = "copy";
        if (there != onStick.end()) {
            const auto ours = mirror / pathFromUtf8(p.from);
            action =
                std::filesystem::file_size(there->second) == std::filesystem::file_size(ours) &&
                        readWholeFile(there->second) == readWholeFile(ours)
                    ? "unchanged"
                    : "replace";
            onStick.erase(there);
        }
        report.lines.push_back({action, p.from, p.to, {}});
    }
    for (const auto& file : removed) {
        const std::string name = fileNameUtf8(file);
        if (isTemporaryName(name) || !onStick.count(utf8ToUpper(name))) continue;
        const bool kept = std::find(keep.begin(), keep.end(), file) != keep.end();
        report.lines.push_back(
            {"remove",
             name,
             {},
             kept ? "the program's Recycle Bin" : "held in the computer's copy"});
    }
}

std::string restoreLeftWhere(const std::filesystem::path& mirror) {
    return "The files not yet restored are still in " + quoted(pathToUtf8(mirror)) +
           " on the computer, and the thumbdrive files the restore removed are kept in the "
           "program's Recycle Bin. Plug the thumbdrive in again to finish the restore.";
}

}  // namespace

std::filesystem::path restoreNote(const Context& ctx) {
    return ctx.state.drive.root / kRestoreNote;
}

bool restoreUnfinished(const Context& ctx) {
    std::error_code ec;
    return ctx.state.drive.present && std::filesystem::exists(restoreNote(ctx), ec);
}

void restoreThumbdrive(Context& ctx, Routine& r, TransferReport& report, bool confirmed,
                       bool dryRun) {
    const auto mirror = mirrorFolder(ctx);
    std::vector<std::string> files;
    r.step("List " + pathToUtf8(mirror), [&] {
        std::error_code ec;
        files = std::filesystem::is_directory(mirror, ec) ? listPlainFiles(mirror)
                                                          : std::vector<std::string>{};
    });
    if (files.empty()) {
        ctx.ui.inform("NO FILES FOUND", "There are no files to restore.");
        return;
    }
    try {
        if (!dryRun && !stickWritable(ctx, r)) return;
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        return;
    }
    if (!confirmed && !dryRun && !confirmRestore(ctx, files.size(), mirror)) {
        report.declined = true;
        return;
    }
    RestorePlan plan(ctx, mirror);
    if (!r.step("Choose the organ names for " + pathToUtf8(mirror), [&] {
            plan.files.clear();
            report.skipped.clear();
            plan.build(files, report);
        }))
        return;
    std::vector<std::filesystem::path> removed, keep;
    std::vector<std::uintmax_t> sizes;
    try {
        if (!stickContents(ctx, r, removed) || !readSizes(r, mirror, plan.files, sizes) ||
            !fits(ctx, r, mirror, sizes, removed) || !notHeld(ctx, r, mirror, removed, keep))
            return;
        if (dryRun) {
            describe(mirror, plan.files, removed, keep, report);
            report.completed = true;
            return;
        }
        if (!keepInBin(ctx, r, keep)) return;

        ctx.ui.setStatus(StatusPanel::Progress, "Preparing...");
        ctx.ui.processEvents();
        if (!stickStep(r, "Write " + pathToUtf8(restoreNote(ctx)), [&] {
                writeFileReplacing(restoreNote(ctx), fileNameUtf8(mirror) + "\r\n");
            }))
            return;
        for (const auto& file : removed) {
            if (stickStep(r, "Remove " + pathToUtf8(file), [&] { std::filesystem::remove(file); }))
                report.removed.push_back(fileNameUtf8(file));
        }

        ctx.ui.showProgress(static_cast<int>(plan.files.size()));
        std::vector<std::string> sources;
        std::map<std::string, std::string> targets;
        for (const auto& p : plan.files) {
            sources.push_back(p.from);
            targets[p.from] = p.to;
        }
        std::optional<FolderNames> names;
        if (!stickStep(r, "List " + pathToUtf8(ctx.state.drive.tavrinFolder()),
                       [&] { names.emplace(ctx.state.drive.tavrinFolder()); }))
            return;
        TransferCopy(ctx, r, report, "Restoring ", false)
            .stopWhenStickRemoved()
            .run(mirror, sources, *names,
                 [&](const std::string& name, const SourceFile&) { return targets[name]; });
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        showStickRemoved(ctx, report.copied.size(), plan.files.size(), restoreLeftWhere(mirror));
        return;
    }
    if (report.failures.empty())
        report.completed = r.step("Remove " + pathToUtf8(restoreNote(ctx)),
                                  [&] { std::filesystem::remove(restoreNote(ctx)); });
    return;
}

void offerRestoreRecovery(Context& ctx) {
    routine(ctx, "frmMain.CheckUnfinishedRestore", [&](Routine& r) {
        if (!restoreUnfinished(ctx)) return;
        const auto note = restoreNote(ctx);
        const std::string text = "The last restore of this THUMBDRIVE from " +
                                 quoted(pathToUtf8(mirrorFolder(ctx))) + " did not finish." +
                                 kParagraph + "Do you want to run it again?";
        const Answer answer = ctx.ui.message(
            Message{"RESTORE THUMBDRIVE", text, Buttons::YesNo, Icon::Exclamation, 1});
        if (answer == Answer::Yes) {
            routine(ctx, "frmMain.btnUSB_Docs_Click #1", [&](Routine& restore) {
                TransferReport report;
                restoreThumbdrive(ctx, restore, report, true);
            });
            afterTransfer(ctx);
        } else {
            r.step("Remove " + pathToUtf8(note), [&] { std::filesystem::remove(note); });
        }
    });
}

}  // namespace tvk
