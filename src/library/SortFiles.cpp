#include "library/SortFiles.h"

#include <chrono>
#include <cmath>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "app/DiskSpace.h"
#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"
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
std::vector<SortMove> movesOf(const std::vector<SortRow>& rows) {
    std::vector<SortMove> moves;
    for (const auto& row : rows)
        if (row.newName != row.fileName) moves.push_back({row.fileName, {}, row.newName});
    return moves;
}

// The first new name that a file staying in the folder already holds, and that file's
// name. FAT takes names that differ only in case for the same name.
std::optional<std::pair<std::string, std::string>> findObstacle(
    const std::vector<std::string>& entries, const std::vector<SortMove>& moves) {
    std::unordered_set<std::string> leaving;
    for (const auto& m : moves) leaving.insert(m.oldName);
    std::unordered_map<std::string, std::string> staying;
    for (const auto& e : entries)
        if (!leaving.count(e)) staying.emplace(utf8ToUpper(e), e);
    for (const auto& m : moves)
        if (const auto it = staying.find(utf8ToUpper(m.newName)); it != staying.end())
            return std::make_pair(m.newName, it->second);
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

// Room on the stick for the directory entries the renames write: a FAT driver may write
// a renamed file's entry anew, a long name taking one more entry for every 13
// characters, and a folder that runs out of entries takes a new cluster.
bool roomForRenames(Routine& r, const JournalRun& run) {
    std::uintmax_t entries = 0;
    for (const auto& step : run.journal.steps) {
        const auto length = utf8Length(nameAt(run.journal.moves[step.move], step.to));
        entries += 1 + (length + 12) / 13;
    }
    DiskSpace space;
    if (!r.step("Measure the free space of " + pathToUtf8(run.folder),
                [&] { space = diskSpace(run.folder); }))
        return false;
    const std::uintmax_t need = space.roomFor(entries * 32);
    if (need <= space.available) return true;
    const auto kb = [](std::uintmax_t bytes) {
        return std::to_string((bytes + 1023) / 1024) + " KB";
    };
    r.ctx.ui.inform(kTitle,
                    "The sort needs " + kb(need) +
                        " free on the thumbdrive for the new names, "
                        "but it has " +
                        kb(space.available) + "." + kBlank +
                        "Make room on the thumbdrive, then sort again. Nothing was changed.",
                    Icon::Exclamation);
    return false;
}

// A folder of its own in the scratch folder for this sort's copies; an older one may
// still hold files a recovery could not put back.
std::string freeCopiesFolder(const std::filesystem::path& scratch, const std::string& base) {
    std::string name = base;
    std::error_code ec;
    for (int n = 1; std::filesystem::exists(scratch / pathFromUtf8(name), ec); ++n)
        name = base + " (" + std::to_string(n) + ")";
    return name;
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
    const auto& drive = ctx.state.drive;
    run.journal.volumeName = drive.volumeName;
    run.journal.serialHex = drive.serialHex;
    run.journal.moves = movesOf(rows);
    if (run.journal.moves.empty()) return true;
    std::vector<std::string> entries;
    if (!r.step("List " + pathToUtf8(run.folder), [&] { entries = folderEntries(run.folder); }))
        return false;
    if (const auto obstacle = findObstacle(entries, run.journal.moves)) {
        reportObstacle(ctx, *obstacle);
        return false;
    }
    std::vector<std::string> taken;
    for (const auto& e : entries) taken.push_back(utf8ToUpper(e));
    if (!r.step("Plan the renames in " + pathToUtf8(run.folder),
                [&] { run.journal.steps = planSortSteps(run.journal.moves, taken, run.folder); }))
        return false;
    if (!roomForRenames(r, run)) return false;
    const auto scratch = sortingFolder(ctx.paths);
    run.journal.copiesFolder =
        freeCopiesFolder(scratch, mirrorFolderName(drive.volumeName, drive.serialHex));
    const bool written = r.step("Write " + pathToUtf8(run.journalFile), [&] {
        std::filesystem::create_directories(scratch);
        writeNewFile(run.journalFile, journalText(run.journal));
    });
    if (!written) return false;
    startJournalRun(run, entries);
    const bool done = completeSort(r, run);
    report.renamed = static_cast<int>(run.journal.moves.size());
    report.renames = run.renamesDone;
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
        if (!stickReady(ctx, r)) return;
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
