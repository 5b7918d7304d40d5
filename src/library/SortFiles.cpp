#include "library/SortFiles.h"

#include <chrono>
#include <cmath>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "drive/Volumes.h"
#include "library/SortRecovery.h"
#include "organfiles/FileLayout.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

const std::string kBlank(kBlankLine);
constexpr const char* kTitle = "SORT PRESET AND RECORDING NAMES";

struct SortRow {
    std::string key;  // the inside name, made a legal file name
    std::string fileName;
    Series family = Series::All;
    FileKind kind = FileKind::Other;
    std::string newName;
};

bool confirmSort(Context& ctx) {
    Message box;
    box.title = kTitle;
    box.text =
        "This process will scan all Preset and Music Resording files and sort them "
        "alphabetically." +
        kBlank + "This process should only take a couple minutes." + kBlank +
        "Do you want to continue?";
    box.buttons = Buttons::YesNo;
    box.icon = Icon::Question;
    return ctx.ui.message(box) == Answer::Yes;
}

// One row for each file of `pattern` that belongs to a group; the others keep their
// names and are only reported.
void readRows(Routine& r, const std::filesystem::path& folder, const char* pattern,
              const char* status, std::vector<SortRow>& rows, SortReport& report) {
    Context& ctx = r.ctx;
    std::vector<std::string> names;
    const auto ignore = ctx.volumes ? ctx.volumes->systemEntries(ctx.state.drive.letter)
                                    : std::vector<std::string>{};
    r.step("List " + pathToUtf8(folder) + " " + pattern,
           [&] { names = listPlainFiles(folder, pattern, ignore); });
    ctx.ui.showProgress(static_cast<int>(names.size()));
    int done = 0;
    for (const auto& name : names) {
        ctx.ui.setStatus(StatusPanel::Progress, status + name);
        const auto file = folder / pathFromUtf8(name);
        std::optional<Series> family;
        r.step("Read the family of " + pathToUtf8(file), [&] { family = familyOfFile(file); });
        if (family) {
            rows.push_back(
                {CheckName(ctx, GetPresetName(ctx, file)), name, *family, fileKind(name), {}});
        } else {
            report.leftAlone.push_back(name);
            r.detail("Left as it is: " + name);
        }
        ctx.ui.setProgress(++done);
        ctx.ui.processEvents();
    }
}

std::string percentText(double share) {
    return std::to_string(std::lround(share * 100)) + "%";
}

// The exchange sort users know the order from: only a strictly greater key swaps, by
// plain character codes, so capitals come before small letters and equal names may
// change places.
void exchangeSort(Context& ctx, std::vector<SortRow>& rows) {
    const std::size_t n = rows.size();
    ctx.ui.showProgress(static_cast<int>(n));
    for (std::size_t i = 0; i + 1 < n; ++i) {
        ctx.ui.setStatus(StatusPanel::Progress,
                         "SORTING FILES: " + percentText(static_cast<double>(i) / n));
        for (std::size_t j = i + 1; j < n; ++j)
            if (rows[i].key > rows[j].key) std::swap(rows[i], rows[j]);
        ctx.ui.setProgress(static_cast<int>(i + 1));
        ctx.ui.processEvents();
    }
}

void numberRows(std::vector<SortRow>& rows) {
    std::map<std::pair<Series, FileKind>, int> counters;
    for (auto& row : rows)
        row.newName = sortedOrganFileName(row.family, row.kind, ++counters[{row.family, row.kind}]);
}

// A file that already has its new name stays where it is.
std::vector<SortMove> planMoves(const std::filesystem::path& folder,
                                const std::vector<SortRow>& rows) {
    std::vector<SortMove> moves;
    std::unordered_set<std::string> temporaries;
    for (const auto& row : rows) {
        if (row.newName == row.fileName) continue;
        std::string temporary;
        do {
            temporary = fileNameUtf8(temporaryNameFor(folder / pathFromUtf8(row.fileName)));
        } while (!temporaries.insert(temporary).second);
        moves.push_back({row.fileName, temporary, row.newName});
    }
    return moves;
}

// The first name the sort needs that a file staying in the folder already holds, and
// that file's name. FAT takes names that differ only in case for the same name.
std::optional<std::pair<std::string, std::string>> findObstacle(
    const std::vector<std::string>& entries, const std::vector<SortMove>& moves) {
    std::unordered_set<std::string> leaving;
    for (const auto& m : moves) leaving.insert(m.oldName);
    std::unordered_map<std::string, std::string> staying;
    for (const auto& e : entries)
        if (!leaving.count(e)) staying.emplace(utf8ToUpper(e), e);
    for (const auto& m : moves)
        for (const std::string* needed : {&m.temporaryName, &m.newName})
            if (const auto it = staying.find(utf8ToUpper(*needed)); it != staying.end())
                return std::make_pair(*needed, it->second);
    return std::nullopt;
}

void reportObstacle(Context& ctx, const std::pair<std::string, std::string>& obstacle) {
    ctx.ui.inform(kTitle,
                  "The sort needs the name " + obstacle.first + ", but " + obstacle.second +
                      " in the TAVRIN folder already has it." + kBlank +
                      "Rename or move that file, then sort again. Nothing was changed.",
                  Icon::Exclamation);
}

void reportTooMany(Context& ctx, std::size_t count) {
    ctx.ui.inform(kTitle,
                  "The TAVRIN folder holds " + std::to_string(count) +
                      " presets and recordings; the sort numbers at most " +
                      std::to_string(kMaxSortedFiles) + "." + kBlank + "Nothing was changed.",
                  Icon::Exclamation);
}

// Renames the files to their new names through the journal. False when the sort did
// not get done; the user has then been told where things stand.
bool renumber(Routine& r, const std::vector<SortRow>& rows, const SortRequest& request,
              SortReport& report) {
    Context& ctx = r.ctx;
    JournalRun run;
    run.folder = ctx.state.drive.tavrinFolder();
    run.journalFile = sortJournalFile(ctx.paths, ctx.state.drive);
    run.afterEachRename = request.afterEachRename;
    run.journal = {ctx.state.drive.volumeName, ctx.state.drive.serialHex, SortStage::Unpacking,
                   planMoves(run.folder, rows)};
    if (run.journal.moves.empty()) return true;
    std::vector<std::string> entries;
    if (!r.step("List " + pathToUtf8(run.folder), [&] { entries = folderEntries(run.folder); }))
        return false;
    if (const auto obstacle = findObstacle(entries, run.journal.moves)) {
        reportObstacle(ctx, *obstacle);
        return false;
    }
    const bool written = r.step("Write " + pathToUtf8(run.journalFile), [&] {
        std::filesystem::create_directories(sortingFolder(ctx.paths));
        writeNewFile(run.journalFile, journalText(run.journal));
    });
    if (!written) return false;
    run.renamer.emplace(run.folder, entries);
    run.places.assign(run.journal.moves.size(), SortPlace::Old);
    const bool done = completeJournal(r, run, SortDirection::Finish, true);
    if (done) report.renamed = static_cast<int>(run.journal.moves.size());
    return done;
}

void refreshBothLists(Context& ctx) {
    ctx.state.fileInfoText.clear();
    if (ctx.state.refreshLists) ctx.state.refreshLists();
}

}  // namespace

SortReport btnSort_Click(Context& ctx, const SortRequest& request) {
    SortReport report;
    routine(ctx, "frmMain.btnSort_Click", [&](Routine& r) {
        const auto started = std::chrono::steady_clock::now();
        if (!confirmSort(ctx)) return;
        if (!offerSortRecovery(ctx)) return;  // an interrupted sort of this stick comes first
        const auto folder = ctx.state.drive.tavrinFolder();
        std::vector<SortRow> rows;
        readRows(r, folder, "*.??G", "READING PRESETS: ", rows, report);
        readRows(r, folder, "*.??R", "READING RECORDINGS: ", rows, report);
        if (rows.size() > static_cast<std::size_t>(kMaxSortedFiles)) {
            ctx.ui.hideProgress();
            return reportTooMany(ctx, rows.size());
        }
        exchangeSort(ctx, rows);
        numberRows(rows);
        bool done = false;
        try {
            done = renumber(r, rows, request, report);
        } catch (const RoutineAbort&) {
            refreshBothLists(ctx);  // some files may have new names already
            throw;
        }
        ctx.ui.hideProgress();
        ctx.ui.setStatus(StatusPanel::Progress, "");
        refreshBothLists(ctx);
        if (!done) return;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::steady_clock::now() - started)
                                 .count();
        ctx.ui.inform(
            kTitle,
            "Sorting complete" + kBlank + "Elapsed time: " + std::to_string(seconds) + " seconds",
            Icon::Information);
        report.completed = true;
    });
    return report;
}

}  // namespace tvk
