#include "library/SortRecovery.h"

#include <algorithm>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

namespace {

const std::string kBlank(kBlankLine);
constexpr const char* kSortTitle = "SORT PRESET AND RECORDING NAMES";
constexpr const char* kRecoveryTitle = "INTERRUPTED SORT";

// A rename the error box reported may still have happened (a driver that fails after
// the fact); the folder is asked at once.
bool renamedAfterAll(JournalRun& run, const std::string& from, const std::string& to) {
    std::error_code ec;
    if (!std::filesystem::exists(run.folder / pathFromUtf8(to), ec) ||
        std::filesystem::exists(run.folder / pathFromUtf8(from), ec) || ec)
        return false;
    try {
        run.renamer.emplace(run.folder, folderEntries(run.folder));
    } catch (const RuntimeError&) {
        return false;
    }
    return true;
}

// Step k forward, or back when `forward` is false.
bool renameStep(Routine& r, JournalRun& run, std::size_t k, bool forward) {
    Context& ctx = r.ctx;
    const SortStep& step = run.journal.steps[k];
    const SortMove& move = run.journal.moves[step.move];
    const SortPlace to = forward ? step.to : run.before[k];
    const std::string& from = nameAt(move, run.places[step.move]);
    const std::string& target = nameAt(move, to);
    // The user knows the files by their real names, not the temporary ones.
    ctx.ui.setStatus(StatusPanel::Progress, to == SortPlace::Temporary
                                                ? "UNPACKING FILES: " + from
                                                : "PACKING FILES: " + target);
    const bool renamed =
        r.step("Rename " + from + " to " + target + " in " + pathToUtf8(run.folder),
               [&] { run.renamer->rename(from, target); });
    if (!renamed && !renamedAfterAll(run, from, target)) return false;
    run.places[step.move] = to;
    run.journal.done = forward ? k + 1 : k;
    ++run.renamesDone;
    if (!r.step("Write " + pathToUtf8(run.journalFile),
                [&] { appendToFile(run.journalFile, journalProgressLine(run.journal.done)); }))
        return false;
    ctx.ui.setProgress(run.renamesDone);
    ctx.ui.processEvents();
    if (run.afterEachRename) run.afterEachRename(run.renamesDone);
    return true;
}

// Before the first rename each file to be renamed is copied into the library and the
// copy read back: a directory entry can vanish when a stick is pulled mid-rename, and
// this copy is what brings such a file back.
bool makeCopies(Routine& r, JournalRun& run) {
    const auto copies = run.copies();
    if (!r.step("Create " + pathToUtf8(copies),
                [&] { std::filesystem::create_directories(copies); }))
        return false;
    r.ctx.ui.showProgress(static_cast<int>(run.journal.moves.size()));
    int copied = 0;
    for (const auto& move : run.journal.moves) {
        r.ctx.ui.setStatus(StatusPanel::Progress, "UNPACKING FILES: " + move.oldName);
        const auto file = run.folder / pathFromUtf8(move.oldName);
        const auto copy = copies / pathFromUtf8(move.oldName);
        const bool done = r.step("Copy " + pathToUtf8(file) + " to " + pathToUtf8(copy), [&] {
            const std::string bytes = readWholeFile(file);
            writeNewFile(copy, bytes);
            if (readWholeFile(copy) != bytes) throw RuntimeError(kErrDeviceIO, pathToUtf8(copy));
        });
        if (!done) return false;
        r.ctx.ui.setProgress(++copied);
        r.ctx.ui.processEvents();
    }
    return true;
}

// The remaining renames toward `direction`; a file that is not on the stick is passed by.
bool runSteps(Routine& r, JournalRun& run, SortDirection direction) {
    const bool forward = direction == SortDirection::Finish;
    const std::size_t count = run.journal.steps.size();
    r.ctx.ui.showProgress(run.renamesDone +
                          static_cast<int>(forward ? count - run.journal.done : run.journal.done));
    while (forward ? run.journal.done < count : run.journal.done > 0) {
        const std::size_t k = forward ? run.journal.done : run.journal.done - 1;
        if (run.unplaced[run.journal.steps[k].move]) {
            run.journal.done = forward ? k + 1 : k;
            continue;
        }
        if (!renameStep(r, run, k, forward)) return false;
    }
    return true;
}

// The journal, the copies no longer needed and the scratch folder when left empty.
bool removeJournal(Routine& r, const JournalRun& run) {
    return r.step("Remove " + pathToUtf8(run.journalFile), [&] {
        const auto copies = run.copies();
        for (std::size_t i = 0; i < run.journal.moves.size(); ++i)
            if (!run.unplaced[i])
                std::filesystem::remove(copies / pathFromUtf8(run.journal.moves[i].oldName));
        std::error_code ec;
        if (std::filesystem::is_empty(copies, ec)) std::filesystem::remove(copies);
        std::filesystem::remove(run.journalFile);
        // Journals of other sticks may still wait there.
        const auto folder = run.journalFile.parent_path();
        if (std::filesystem::is_empty(folder)) std::filesystem::remove(folder);
    });
}

// Where the files stand now; nullopt when the stick cannot be read or is not as the
// journal says (`readable` tells which).
std::optional<SortPosition> positionNow(JournalRun& run, bool& readable) {
    readable = false;
    std::vector<std::string> entries;
    std::error_code ec;
    if (!std::filesystem::is_directory(run.folder, ec)) return {};
    try {
        entries = folderEntries(run.folder);
    } catch (const RuntimeError&) {
        return {};  // pulled while we looked: reported as a stick that is gone
    }
    readable = true;
    auto position = locateSortedFiles(run.journal, entries);
    if (position) {
        run.places = position->places;
        run.journal.done = position->done;
        run.renamer.emplace(run.folder, entries);
    }
    return position;
}

// Each file whose entry vanished goes back under the name it should have now, from its
// copy; one that cannot is left out of the renames and reported.
void restoreMissing(Routine& r, JournalRun& run, const std::vector<bool>& missing) {
    bool restored = false;
    for (std::size_t i = 0; i < missing.size(); ++i) {
        if (!missing[i]) continue;
        const SortMove& move = run.journal.moves[i];
        const auto copy = run.copies() / pathFromUtf8(move.oldName);
        const auto target = run.folder / pathFromUtf8(nameAt(move, run.places[i]));
        r.ctx.ui.setStatus(StatusPanel::Progress, "UNPACKING FILES: " + move.oldName);
        run.unplaced[i] = !r.step("Copy " + pathToUtf8(copy) + " to " + pathToUtf8(target), [&] {
            copyFileSafely(copy, target);
            if (readWholeFile(target) != readWholeFile(copy))
                throw RuntimeError(kErrDeviceIO, pathToUtf8(target));
        });
        restored = restored || !run.unplaced[i];
    }
    if (restored) run.renamer.emplace(run.folder, folderEntries(run.folder));
}

std::string unplacedText(const JournalRun& run) {
    std::string names;
    for (std::size_t i = 0; i < run.unplaced.size(); ++i)
        if (run.unplaced[i]) names += "\r" + run.journal.moves[i].oldName;
    if (names.empty()) return {};
    return kBlank + "These files could not be put on the thumbdrive; their bytes are kept in " +
           pathToUtf8(run.copies()) + ":" + names;
}

void reportNextScan(Context& ctx, const JournalRun& run) {
    ctx.ui.inform(kSortTitle,
                  "The sort stopped before every file had its new name, and the thumbdrive "
                  "cannot be read now. No file was lost: a copy of each file the sort renames "
                  "is kept in " +
                      pathToUtf8(run.copies()) + "." + kBlank +
                      "The next scan of this thumbdrive offers to finish the sort or to put "
                      "every file back under its old name.",
                  Icon::Exclamation);
}

void reportUndescribed(Context& ctx, const std::filesystem::path& journalFile) {
    ctx.ui.inform(kRecoveryTitle,
                  "The thumbdrive " + ctx.state.drive.volumeName +
                      " holds an interrupted sort, but its files are not where the sort "
                      "left them, so they were left as they are." +
                      kBlank + "The record of that sort is kept in " + pathToUtf8(journalFile) +
                      ".",
                  Icon::Exclamation);
}

// Takes the files to where `direction` leads from where they stand now. False, with
// the user told, when that did not get done.
bool settle(Routine& r, JournalRun& run, SortDirection direction,
            const std::vector<bool>& missing) {
    bool done = false;
    try {
        restoreMissing(r, run, missing);
        done = runSteps(r, run, direction);
    } catch (const RoutineAbort&) {
        reportNextScan(r.ctx, run);
        throw;
    }
    if (!done) return reportNextScan(r.ctx, run), false;
    removeJournal(r, run);  // one left behind only finds every file done
    return true;
}

// A sort that stopped part way puts every file back while the stick can be read.
void putBackStoppedSort(Routine& r, JournalRun& run) {
    Context& ctx = r.ctx;
    ctx.ui.hideProgress();
    bool readable = false;
    const auto position = positionNow(run, readable);
    if (!position) {
        if (readable) return reportUndescribed(ctx, run.journalFile);
        return reportNextScan(ctx, run);
    }
    if (!settle(r, run, SortDirection::Undo, position->missing)) return;
    ctx.ui.hideProgress();
    ctx.ui.inform(kSortTitle,
                  "The sort stopped. Every file is under its old name again." + unplacedText(run),
                  Icon::Exclamation);
}

Answer askFinishOrUndo(Context& ctx, const JournalRun& run) {
    const auto waiting = std::count_if(run.places.begin(), run.places.end(),
                                       [](SortPlace p) { return p != SortPlace::New; });
    Message box;
    box.title = kRecoveryTitle;
    box.text = "The last sort of this thumbdrive did not finish: " + std::to_string(waiting) +
               " of " + std::to_string(run.places.size()) +
               " files do not have their new names yet. No file was lost." + kBlank +
               "Yes finishes the sort. No puts every file back under its old name. Cancel "
               "leaves the files as they are until the next scan.";
    box.buttons = Buttons::YesNoCancel;
    box.icon = Icon::Question;
    return ctx.ui.message(box);
}

bool recover(Routine& r, const std::filesystem::path& journalFile) {
    Context& ctx = r.ctx;
    JournalRun run;
    run.folder = ctx.state.drive.tavrinFolder();
    run.journalFile = journalFile;
    std::string text;
    if (!r.step("Read " + pathToUtf8(journalFile), [&] { text = readWholeFile(journalFile); }))
        return false;
    const auto journal = parseSortJournal(text);
    if (!journal) {
        reportUndescribed(ctx, journalFile);
        return false;
    }
    run.journal = *journal;
    run.before = placesBeforeSteps(run.journal);
    run.unplaced.assign(run.journal.moves.size(), false);
    bool readable = false;
    const auto position = positionNow(run, readable);
    if (!position) {
        if (readable) reportUndescribed(ctx, journalFile);
        return false;
    }
    const Answer answer = askFinishOrUndo(ctx, run);
    if (answer != Answer::Yes && answer != Answer::No) return false;
    const auto direction = answer == Answer::Yes ? SortDirection::Finish : SortDirection::Undo;
    if (!settle(r, run, direction, position->missing)) return false;
    ctx.ui.hideProgress();
    ctx.ui.setStatus(StatusPanel::Progress, "");
    ctx.ui.inform(kRecoveryTitle,
                  (direction == SortDirection::Finish
                       ? "The interrupted sort is finished: every file has its new name."
                       : "Every file of the interrupted sort is back under its old name.") +
                      unplacedText(run),
                  Icon::Information);
    return true;
}

}  // namespace

std::filesystem::path JournalRun::copies() const {
    return journalFile.parent_path() / pathFromUtf8(journal.copiesFolder);
}

void startJournalRun(JournalRun& run, const std::vector<std::string>& entries) {
    run.renamer.emplace(run.folder, entries);
    run.places.assign(run.journal.moves.size(), SortPlace::Old);
    run.before = placesBeforeSteps(run.journal);
    run.unplaced.assign(run.journal.moves.size(), false);
}

bool completeSort(Routine& r, JournalRun& run) {
    bool done = false;
    try {
        done = makeCopies(r, run) && runSteps(r, run, SortDirection::Finish);
    } catch (const RoutineAbort&) {
        putBackStoppedSort(r, run);
        throw;
    }
    r.ctx.ui.hideProgress();
    r.ctx.ui.setStatus(StatusPanel::Progress, "");
    if (!done) {
        putBackStoppedSort(r, run);
        return false;
    }
    removeJournal(r, run);  // one left behind only finds every file done
    return true;
}

bool offerSortRecovery(Context& ctx) {
    const auto journalFile = sortJournalFile(ctx.paths, ctx.state.drive);
    std::error_code ec;
    if (!std::filesystem::exists(journalFile, ec)) return true;
    return routine(ctx, "frmMain.SortRecovery", [&](Routine& r) { return recover(r, journalFile); })
        .value_or(false);
}

}  // namespace tvk
