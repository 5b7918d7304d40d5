#include "library/SortRecovery.h"

#include <algorithm>

#include "app/FileIO.h"
#include "app/Text.h"

namespace tvk {

namespace {

const std::string kBlank(kBlankLine);
constexpr const char* kSortTitle = "SORT PRESET AND RECORDING NAMES";
constexpr const char* kRecoveryTitle = "INTERRUPTED SORT";

bool renameOne(Routine& r, JournalRun& run, std::size_t i, SortPlace to, const char* status) {
    Context& ctx = r.ctx;
    const SortMove& move = run.journal.moves[i];
    const std::string& from = nameAt(move, run.places[i]);
    const std::string& target = nameAt(move, to);
    // The user knows the files by their real names, not the temporary ones.
    ctx.ui.setStatus(StatusPanel::Progress, status + (to == SortPlace::Temporary ? from : target));
    const bool done = r.step("Rename " + from + " to " + target + " in " + pathToUtf8(run.folder),
                             [&] { run.renamer->rename(from, target); });
    if (!done) return false;
    run.places[i] = to;
    ++run.renamesDone;
    ctx.ui.setProgress(run.renamesDone);
    ctx.ui.processEvents();
    if (run.afterEachRename) run.afterEachRename(run.renamesDone);
    return true;
}

bool moveAll(Routine& r, JournalRun& run, SortPlace from, SortPlace to, const char* status) {
    for (std::size_t i = 0; i < run.places.size(); ++i)
        if (run.places[i] == from && !renameOne(r, run, i, to, status)) return false;
    return true;
}

bool removeJournal(Routine& r, const JournalRun& run) {
    return r.step("Remove " + pathToUtf8(run.journalFile), [&] {
        std::filesystem::remove(run.journalFile);
        // Journals of other sticks may still wait there.
        const auto folder = run.journalFile.parent_path();
        if (std::filesystem::is_empty(folder)) std::filesystem::remove(folder);
    });
}

bool runJournal(Routine& r, JournalRun& run, SortDirection direction) {
    const bool finish = direction == SortDirection::Finish;
    const SortStage firstHalf = finish ? SortStage::Unpacking : SortStage::Packing;
    const SortPlace start = finish ? SortPlace::Old : SortPlace::New;
    const SortPlace goal = finish ? SortPlace::New : SortPlace::Old;
    int renames = 0;
    for (const SortPlace p : run.places)
        renames += p == SortPlace::Temporary ? 1 : p == start ? 2 : 0;
    r.ctx.ui.showProgress(run.renamesDone + renames);
    if (run.journal.stage == firstHalf) {
        if (!moveAll(r, run, start, SortPlace::Temporary, "UNPACKING FILES: ")) return false;
        run.journal.stage = finish ? SortStage::Packing : SortStage::Unpacking;
        const bool written = r.step("Write " + pathToUtf8(run.journalFile), [&] {
            writeFileReplacing(run.journalFile, journalText(run.journal));
        });
        if (!written) {
            run.journal.stage = firstHalf;  // every file is at its temporary name: both fit
            return false;
        }
    }
    if (!moveAll(r, run, SortPlace::Temporary, goal, "PACKING FILES: ")) return false;
    return removeJournal(r, run);
}

// Where the files stand now, or nullopt when the stick cannot be read any more.
std::optional<std::vector<SortPlace>> placesNow(const JournalRun& run) {
    std::error_code ec;
    if (!std::filesystem::is_directory(run.folder, ec)) return {};
    try {
        return locateSortedFiles(run.journal, folderEntries(run.folder));
    } catch (const RuntimeError&) {
        return {};  // pulled while we looked: reported as a stick that is gone
    }
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

void reportUndescribed(Context& ctx, const std::filesystem::path& journalFile) {
    ctx.ui.inform(kRecoveryTitle,
                  "The thumbdrive " + ctx.state.drive.volumeName +
                      " holds an interrupted sort, but its files are not where the sort "
                      "left them, so they were left as they are." +
                      kBlank + "The record of that sort is kept in " + pathToUtf8(journalFile) +
                      ".",
                  Icon::Exclamation);
}

bool recover(Routine& r, const std::filesystem::path& journalFile) {
    Context& ctx = r.ctx;
    JournalRun run;
    run.folder = ctx.state.drive.tavrinFolder();
    run.journalFile = journalFile;
    std::string text;
    std::vector<std::string> entries;
    if (!r.step("Read " + pathToUtf8(journalFile), [&] { text = readWholeFile(journalFile); }) ||
        !r.step("List " + pathToUtf8(run.folder), [&] { entries = folderEntries(run.folder); }))
        return false;
    const auto journal = parseSortJournal(text);
    const auto places = journal ? locateSortedFiles(*journal, entries) : std::nullopt;
    if (!places) {
        reportUndescribed(ctx, journalFile);
        return false;
    }
    run.journal = *journal;
    run.places = *places;
    run.renamer.emplace(run.folder, entries);
    const Answer answer = askFinishOrUndo(ctx, run);
    if (answer != Answer::Yes && answer != Answer::No) return false;
    const auto direction = answer == Answer::Yes ? SortDirection::Finish : SortDirection::Undo;
    if (!completeJournal(r, run, direction, false)) return false;
    ctx.ui.inform(kRecoveryTitle,
                  direction == SortDirection::Finish
                      ? "The interrupted sort is finished: every file has its new name."
                      : "Every file of the interrupted sort is back under its old name.",
                  Icon::Information);
    return true;
}

}  // namespace

bool completeJournal(Routine& r, JournalRun& run, SortDirection direction, bool offerNow) {
    bool done = false;
    try {
        done = runJournal(r, run, direction);
    } catch (const RoutineAbort&) {
        reportStoppedSort(r, run, offerNow);
        throw;
    }
    r.ctx.ui.hideProgress();
    r.ctx.ui.setStatus(StatusPanel::Progress, "");
    if (!done) reportStoppedSort(r, run, offerNow);
    return done;
}

void reportStoppedSort(Routine& r, JournalRun& run, bool offerNow) {
    Context& ctx = r.ctx;
    ctx.ui.hideProgress();
    const auto places = placesNow(run);
    const bool untouched = places && run.journal.stage == SortStage::Unpacking &&
                           std::all_of(places->begin(), places->end(),
                                       [](SortPlace p) { return p == SortPlace::Old; });
    if (untouched && removeJournal(r, run)) {
        ctx.ui.inform(kSortTitle,
                      "The sort stopped. Every file is under its old name: the thumbdrive was "
                      "not changed.",
                      Icon::Exclamation);
        return;
    }
    if (places && offerNow) {
        offerSortRecovery(ctx);
        return;
    }
    ctx.ui.inform(kSortTitle,
                  "The sort stopped before every file had its new name. No file was lost: the "
                  "files not done yet wait in the TAVRIN folder under temporary names." +
                      kBlank +
                      "The next scan of this thumbdrive offers to finish the sort or to put "
                      "every file back under its old name.",
                  Icon::Exclamation);
}

bool offerSortRecovery(Context& ctx) {
    const auto journalFile = sortJournalFile(ctx.paths, ctx.state.drive);
    std::error_code ec;
    if (!std::filesystem::exists(journalFile, ec)) return true;
    return routine(ctx, "frmMain.SortRecovery", [&](Routine& r) { return recover(r, journalFile); })
        .value_or(false);
}

}  // namespace tvk
