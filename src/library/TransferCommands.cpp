#include "library/TransferCommands.h"

#include <cmath>
#include <map>

#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/ShownPaths.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"
#include "drive/Volumes.h"
#include "library/CategoryViews.h"
#include "library/TransferSupport.h"
#include "organfiles/AnalyzeContent.h"

namespace tvk {

namespace {

std::string quoted(const std::string& text) {
    return std::string(kQuote) + text + std::string(kQuote);
}

bool isOrganFile(const std::string& name) {
    const FileKind kind = fileKind(name);
    return kind == FileKind::Preset || kind == FileKind::Recording;
}

// Every transfer shows the whole stick: series "ALL" and "A&ll Files".
void showAllFiles(Context& ctx) {
    for (int i = 0; i < 4 && ctx.state.series != Series::All; ++i) clickVisibleSeriesMenu(ctx);
    btnButtonBar_Click(ctx, 0);
}

// Copies stick files into `names`' folder; a pulled stick ends the run with one box.
void copyFromStick(Context& ctx, Routine& r, TransferReport& report,
                   const std::filesystem::path& from, const std::vector<std::string>& files,
                   FolderNames& names, const NameChooser& choose) {
    try {
        TransferCopy(ctx, r, report, "Copying ")
            .stopWhenStickRemoved()
            .run(from, files, names, choose);
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        showStickRemoved(ctx, report.copied.size(), files.size(),
                         "The files copied so far are in " + quoted(pathToUtf8(names.folder())) +
                             "; nothing was removed from the thumbdrive.");
    }
}

TransferReport addAll(Context& ctx, Routine& r) {
    TransferReport report;
    std::vector<std::string> files;
    try {
        if (!listStickFiles(ctx, r, files)) return report;
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        return report;
    }
    const auto mirror = mirrorFolder(ctx);
    ctx.ui.showProgress(static_cast<int>(files.size()));
    std::optional<FolderNames> names;
    if (!r.step("Create " + pathToUtf8(mirror), [&] {
            std::filesystem::create_directories(mirror);
            names.emplace(mirror);
        }))
        return report;
    copyFromStick(ctx, r, report, ctx.state.drive.tavrinFolder(), files, *names,
                  [&](const std::string& name, const SourceFile& source) {
                      return addAllName(ctx, *names, name, source, report.duplicates);
                  });
    report.completed = report.failures.empty() && !report.stickRemoved;
    return report;
}

void showDuplicates(Context& ctx, int duplicates) {
    if (duplicates <= 0) return;
    ctx.ui.message(
        Message{"DUPLICATE FILES",
                "There are " + std::to_string(duplicates) + " duplicate files marked with (#)",
                Buttons::Ok, Icon::Information, 1});
}

struct Pool {
    const char* patterns;
    const char* title;
    std::string prompt;  // before the folder name
    std::filesystem::path folder;
    std::string folderName;
    bool duplicatesBox;
};

Pool poolFor(const Context& ctx, TransferButton button) {
    if (button == TransferButton::PoolPresets)
        return {"*.?pg",
                "COPY PRESETS TO POOL",
                " PRESET files to the ",
                ctx.paths.presetPool(),
                "Preset Pool",
                false};
    return {"*.?mr",
            "COPY RECORDINGS TO POOL",
            " RECORDING files to ",
            ctx.paths.musicRecordings(),
            "Music Recordings",
            true};
}

// A pool name: the readable name with the series letter as the extension's first letter
// ("LPG" of an SU preset becomes "SPG"); "_#" and a number counting up while it is taken.
std::string poolName(Context& ctx, const FolderNames& folder, const std::string& name,
                     const SourceFile& source, int& duplicates) {
    const NameInfo info = classifyName(name);
    const auto family = seriesFromLetter(info.seriesLetter);
    NameParts parts = splitExtension(name);
    if (isOrganFile(name) && family) {
        parts.base = source.readable();
        parts.extension = "." + std::string(seriesCode(*family)).substr(0, 1) +
                          parts.extension.substr(std::min<std::size_t>(2, parts.extension.size()));
    }
    std::string candidate = isOrganFile(name) && family ? parts.base + parts.extension : name;
    for (int n = 1; folder.taken(candidate); ++n, ++duplicates)
        candidate = parts.base + "_#" + std::to_string(n) + parts.extension;
    return candidate;
}

TransferReport addToPool(Context& ctx, Routine& r, TransferButton button) {
    TransferReport report;
    const Pool pool = poolFor(ctx, button);
    std::vector<std::string> files;
    try {
        if (!listStickFiles(ctx, r, files, pool.patterns)) return report;
    } catch (const StickRemoved&) {
        report.stickRemoved = true;
        return report;
    }
    const Answer answer = ctx.ui.message(Message{
        pool.title,
        "This will copy " + std::to_string(files.size()) + pool.prompt + quoted(pool.folderName),
        Buttons::OkCancel, Icon::Information, 1});
    if (answer != Answer::Ok) {
        report.declined = true;
        return report;
    }
    ctx.state.usbPattern = pool.patterns;
    if (ctx.state.refreshLists) ctx.state.refreshLists();
    ctx.ui.showProgress(static_cast<int>(files.size()));
    std::optional<FolderNames> names;
    if (!r.step("Create " + pathToUtf8(pool.folder), [&] {
            std::filesystem::create_directories(pool.folder);
            names.emplace(pool.folder);
        }))
        return report;
    copyFromStick(ctx, r, report, ctx.state.drive.tavrinFolder(), files, *names,
                  [&](const std::string& name, const SourceFile& source) {
                      return poolName(ctx, *names, name, source, report.duplicates);
                  });
    if (report.stickRemoved) return report;
    if (pool.duplicatesBox) showDuplicates(ctx, report.duplicates);
    report.completed = report.failures.empty();
    return report;
}

// Auto Backup of a stick whose mirror folder exists: only what is new or changed.
TransferReport addNewFiles(Context& ctx, Routine& r) {
    TransferReport report;
    const auto mirror = mirrorFolder(ctx);
    const auto stick = ctx.state.drive.tavrinFolder();
    std::vector<std::string> fresh;
    r.step("Compare " + pathToUtf8(stick) + " with " + pathToUtf8(mirror), [&] {
        fresh.clear();
        const auto sizes = filesBySize(mirror);
        for (const auto& name : stickFiles(ctx, r))
            if (!heldIn(sizes, stick / pathFromUtf8(name))) fresh.push_back(name);
    });
    ctx.ui.showProgress(static_cast<int>(fresh.size()));
    std::optional<FolderNames> names;
    if (!r.step("List " + pathToUtf8(mirror), [&] { names.emplace(mirror); })) return report;
    copyFromStick(ctx, r, report, stick, fresh, *names,
                  [&](const std::string& name, const SourceFile& source) {
                      return addAllName(ctx, *names, name, source, report.duplicates);
                  });
    report.completed = report.failures.empty() && !report.stickRemoved;
    return report;
}

// Status panel 2 after a transfer that ran; empty when it did not (declined, stick pulled).
std::string transferSummary(const Context& ctx, int index, const TransferReport& report) {
    const bool ran = report.completed || !report.copied.empty() || !report.failures.empty();
    if (report.declined || report.stickRemoved || !ran) return {};
    const std::size_t notCopied = report.failures.size();
    switch (static_cast<TransferButton>(index)) {
        case TransferButton::Update:
            if (!report.finishedRestore) return report.completed ? updateSummary(report) : "";
            [[fallthrough]];
        case TransferButton::Restore:
            return doneSummary("Restore", report.copied.size(),
                               shownPath(ctx.state.drive, ctx.state.drive.tavrinFolder()),
                               notCopied);
        case TransferButton::AddAll:
            return doneSummary("Add ALL", report.copied.size(), fileNameUtf8(mirrorFolder(ctx)),
                               notCopied);
        case TransferButton::PoolPresets:
        case TransferButton::PoolRecordings: {
            const Pool pool = poolFor(ctx, static_cast<TransferButton>(index));
            const char* command = static_cast<TransferButton>(index) == TransferButton::PoolPresets
                                      ? "Add USB Presets"
                                      : "Add USB Recordings";
            return doneSummary(command, report.copied.size(), pool.folderName, notCopied);
        }
    }
    return {};
}

}  // namespace

FilesBySize filesBySize(const std::filesystem::path& folder) {
    FilesBySize sizes;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && !isTemporaryName(fileNameUtf8(entry.path())))
            sizes.emplace(entry.file_size(), entry.path());
    return sizes;
}

bool heldIn(const FilesBySize& sizes, const std::filesystem::path& file) {
    const auto size = std::filesystem::file_size(file);
    const auto [first, last] = sizes.equal_range(size);
    if (first == last) return false;
    const std::string bytes = readWholeFile(file);
    for (auto it = first; it != last; ++it)
        if (readWholeFile(it->second) == bytes) return true;
    return false;
}

void TransferCopy::run(const std::filesystem::path& from, const std::vector<std::string>& files,
                       FolderNames& to, const NameChooser& choose) {
    for (std::size_t i = 0; i < files.size(); ++i) {
        ctx_.ui.setStatus(StatusPanel::Progress,
                          copyingText(verb_, files[i], i + 1, files.size(), percent_));
        ctx_.ui.setProgress(static_cast<int>(i + 1));
        ctx_.ui.processEvents();
        copyOne(from, files[i], to, choose);
    }
}

void TransferCopy::copyOne(const std::filesystem::path& from, const std::string& name,
                           FolderNames& to, const NameChooser& choose) {
    const auto source = from / pathFromUtf8(name);
    const int duplicates = report_.duplicates;
    std::string target;
    int error = 0;
    bool done = false;
    try {
        const auto body = [&] {
            report_.duplicates = duplicates;
            try {
                const auto nameFor = [&](std::string_view head) {
                    std::string chosen = choose(name, SourceFile{source, head});
                    r_.setTask("Copy " + quoted(pathToUtf8(source)) + " to " +
                               quoted(pathToUtf8(to.folder() / pathFromUtf8(chosen))));
                    return chosen;
                };
                target =
                    copyFileNamed(source, to.folder(), nameFor,
                                  [&](std::uintmax_t, std::uintmax_t) { ctx_.ui.processEvents(); });
            } catch (const std::exception&) {
                error = RuntimeError::fromCurrentException().number();
                throw;
            }
        };
        const std::string task = "Copy " + quoted(pathToUtf8(source));
        done = stickAware_ ? stickStep(r_, task, body) : r_.step(task, body);
    } catch (const StickRemoved&) {
        report_.failures.push_back({name, error});
        throw;
    } catch (const RoutineAbort&) {
        report_.failures.push_back({name, error});  // the file the command stopped at
        throw;
    }
    if (!done) {
        report_.failures.push_back({name, error});
        return;
    }
    to.add(target);
    report_.copied.push_back({name, target});
}

namespace {

std::vector<std::string> listStick(Context& ctx, const std::string& patterns) {
    const ThumbDriveState& d = ctx.state.drive;
    std::vector<std::string> ignore;
    if (ctx.volumes && !d.letter.empty()) ignore = ctx.volumes->systemEntries(d.letter);
    return listPlainFiles(d.tavrinFolder(), patterns, ignore);
}

}  // namespace

std::vector<std::string> stickFiles(Context& ctx, Routine& r, const std::string& patterns) {
    std::vector<std::string> files;
    r.step("List " + pathToUtf8(ctx.state.drive.tavrinFolder()),
           [&] { files = listStick(ctx, patterns); });
    return files;
}

bool listStickFiles(Context& ctx, Routine& r, std::vector<std::string>& files,
                    const std::string& patterns) {
    return stickStep(r, "List " + pathToUtf8(ctx.state.drive.tavrinFolder()),
                     [&] { files = listStick(ctx, patterns); });
}

std::string addAllName(Context& ctx, const FolderNames& folder, const std::string& name,
                       const SourceFile& source, int& duplicates) {
    NameParts parts = splitExtension(name);
    std::string wanted = name;  // media and other files keep their names
    if (isOrganFile(name)) {
        parts.base = source.readable();
        wanted = parts.base + parts.extension;
    }
    int counter = 1;
    return freeSuffixName(folder, wanted, parts, counter, duplicates);
}

std::string copyingText(const std::string& verb, const std::string& name, std::size_t done,
                        std::size_t count, bool percent) {
    if (!percent) return verb + name;
    const long share = count == 0 ? 100 : std::lround(100.0 * double(done) / double(count));
    return verb + name + " - " + std::to_string(share) + "%";
}

void afterTransfer(Context& ctx) {
    ctx.ui.hideProgress();
    MainState& s = ctx.state;
    if (s.drive.present && !stickGone(ctx)) {  // a pulled stick is the next scan's
        std::error_code ec;
        const bool mirror = std::filesystem::is_directory(mirrorFolder(ctx), ec);
        s.enabled[controlName("btnUSB_Docs", 0)] = mirror;
        s.enabled[controlName("btnUSB_Docs", 1)] = mirror;
        AnalyzeContent(ctx, s.drive.tavrinFolder());
    }
    btnButtonBar_Click(ctx, 0);
}

std::filesystem::path mirrorFolder(const Context& ctx) {
    const ThumbDriveState& d = ctx.state.drive;
    return ctx.paths.libraryRoot / pathFromUtf8(mirrorFolderName(d.volumeName, d.serialHex));
}

TransferReport btnUSB_Docs_Click(Context& ctx, int index, bool dryRun) {
    TransferReport report;
    routine(ctx, "frmMain.btnUSB_Docs_Click #" + std::to_string(index), [&](Routine& r) {
        if (index < 0 || index > 4 || !ctx.state.drive.present) return;
        showAllFiles(ctx);
        switch (static_cast<TransferButton>(index)) {
            case TransferButton::Update:
                updateComputer(ctx, r, report, dryRun);
                break;
            case TransferButton::Restore:
                restoreThumbdrive(ctx, r, report, false, dryRun);
                break;
            case TransferButton::AddAll:
                report = addAll(ctx, r);
                if (!report.stickRemoved) showDuplicates(ctx, report.duplicates);
                break;
            case TransferButton::PoolPresets:
            case TransferButton::PoolRecordings:
                report = addToPool(ctx, r, static_cast<TransferButton>(index));
                break;
        }
    });
    afterTransfer(ctx);
    if (!dryRun) {
        if (const std::string text = transferSummary(ctx, index, report); !text.empty())
            ctx.ui.setStatus(StatusPanel::Second, text);
    }
    return report;
}

void afterScan(Context& ctx, ScanOutcome outcome) {
    if (outcome == ScanOutcome::AutoBackupWanted && ctx.state.drive.present) autoBackup(ctx);
}

TransferReport autoBackup(Context& ctx) {
    std::error_code ec;
    if (!std::filesystem::is_directory(mirrorFolder(ctx), ec))
        return btnUSB_Docs_Click(ctx, static_cast<int>(TransferButton::AddAll));
    TransferReport report;
    routine(ctx, "frmMain.AutoBackup", [&](Routine& r) {
        report = addNewFiles(ctx, r);
        if (report.stickRemoved) return;  // its box said what was done
        ctx.ui.setStatus(StatusPanel::Second,
                         "Auto Backup: " + std::to_string(report.copied.size()) +
                             " new or changed files added to " + fileNameUtf8(mirrorFolder(ctx)));
    });
    ctx.ui.hideProgress();
    return report;
}

}  // namespace tvk
