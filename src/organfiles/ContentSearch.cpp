#include "organfiles/ContentSearch.h"

#include <array>
#include <vector>

#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

std::string_view trimmed(std::string_view s) {
    const auto first = s.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

// Every family reads buttons 0 to 10 of every bank; for SU, button 0 lies one record
// before button 1 of the bank.
struct Button {
    std::string code;
    std::int32_t position;
};
using ButtonTable = std::vector<Button>;

ButtonTable buttonTable(Series family, FileKind kind) {
    ButtonTable table;
    for (char bank = 'A'; bank <= 'E'; ++bank) {
        for (int n = 0; n <= 10; ++n) {
            std::string code = bank + std::to_string(n);
            const std::int32_t position = calcAddress(family, kind, code);
            table.push_back({std::move(code), position});
        }
    }
    return table;
}

std::string_view rawField(std::string_view bytes, std::int32_t position) {
    if (position < 1 || static_cast<std::size_t>(position) > bytes.size()) return {};
    return bytes.substr(static_cast<std::size_t>(position - 1), kNameWidth);
}

struct Hit {
    std::string fileName;
    std::string button;
    std::string name;     // the field as read, padding included
    std::string ownName;  // the file's own name field
    std::int32_t position;
};

Message matchBox(const std::string& text, const Hit& hit) {
    const bool preset = kindByEnding(hit.fileName) == FileKind::Preset;
    const std::string br(kLineBreak);
    return Message{"MATCH FOUND",
                   "\"" + text + "\" found in file " + hit.fileName + std::string(kBlankLine) +
                       (preset ? "Preset Filename: " : "Song Filename: ") + hit.ownName + br +
                       "Preset: " + hit.button + br + "Name: \"" + hit.name + "\"" + br +
                       "Offset: " + std::to_string(hit.position) + std::string(kBlankLine) +
                       "Continue?",
                   Buttons::YesNo, Icon::Information, 1};
}

struct Job {
    std::string name;
    FileKind kind;
};

}  // namespace

NameMatcher::NameMatcher(std::string_view text, bool wholeWord, bool matchCase)
    : wholeWord_(wholeWord), matchCase_(matchCase) {
    impossible_ = !fitsCp1252(text);
    needle_ = utf8ToCp1252(text);
    if (!matchCase_) needle_ = cp1252Upper(needle_);
    if (wholeWord_) needle_ = std::string(trimmed(needle_));
}

bool NameMatcher::matches(std::string_view field) const {
    if (impossible_) return false;
    std::array<char, kNameWidth> upper{};
    if (!matchCase_) {
        // The upper case of at most one field, without an allocation per name.
        const std::string_view f = field.substr(0, upper.size());
        for (std::size_t i = 0; i < f.size(); ++i) upper[i] = cp1252Upper(f[i]);
        field = std::string_view(upper.data(), f.size());
    }
    if (wholeWord_) return trimmed(field) == needle_;
    return field.find(needle_) != std::string_view::npos;
}

namespace {

// The presets, then the recordings, of the folder, as the category patterns list them.
std::vector<Job> searchJobs(const SearchRequest& request) {
    std::vector<Job> jobs;
    if (request.presets)
        for (auto& n : listPlainFiles(request.folder, "*.?pg"))
            jobs.push_back({std::move(n), FileKind::Preset});
    if (request.recordings)
        for (auto& n : listPlainFiles(request.folder, "*.?mr"))
            jobs.push_back({std::move(n), FileKind::Recording});
    return jobs;
}

class SearchRun {
  public:
    SearchRun(Context& ctx, Routine& r, const SearchRequest& request, SearchReport& report)
        : ctx_(ctx),
          r_(r),
          request_(request),
          report_(report),
          matcher_(request.text, request.wholeWord, request.matchCase) {}

    // Counts the matches in one file and shows each unless only counting; false once the
    // user answered No to a match.
    bool searchFile(const Job& job) {
        // A file's family is its first letter, whatever its extension says.
        const auto family = seriesFromLetter(toUpperAscii(job.name.substr(0, 1)));
        if (!family) return true;
        const std::size_t t =
            (static_cast<std::size_t>(*family) - 1) * 2 + (job.kind == FileKind::Recording ? 1 : 0);
        if (tables_[t].empty()) tables_[t] = buttonTable(*family, job.kind);

        std::string bytes;
        const auto file = request_.folder / pathFromUtf8(job.name);
        if (!r_.step("Read " + pathToUtf8(file), [&] { bytes = readWholeFile(file); })) return true;
        ++report_.filesSearched;
        for (const Button& button : tables_[t]) {
            const std::string_view field = rawField(bytes, button.position);
            if (!matcher_.matches(field)) continue;
            ++report_.matches;
            if (request_.countOnly) continue;
            const Hit hit{job.name, button.code, cp1252ToUtf8(field),
                          cp1252ToUtf8(rawField(bytes, kNamePosition)), button.position};
            if (ctx_.ui.message(matchBox(request_.text, hit)) == Answer::No) return false;
        }
        return true;
    }

  private:
    Context& ctx_;
    Routine& r_;
    const SearchRequest& request_;
    SearchReport& report_;
    const NameMatcher matcher_;
    std::array<ButtonTable, 6> tables_;  // by family and kind, made when first needed
};

void announceMatches(Context& ctx, const SearchRequest& request, const SearchReport& report) {
    if (report.matches > 0)
        ctx.ui.message(Message{
            "MATCHES FOUND",
            "\"" + request.text + "\" was found " + std::to_string(report.matches) + " times.",
            Buttons::Ok, Icon::Information, 1});
    else
        ctx.ui.message(Message{"NO MATCHES", "Search complete", Buttons::Ok, Icon::Critical, 1});
}

}  // namespace

SearchReport btnSearch_Click(Context& ctx, const SearchRequest& request) {
    SearchReport report;
    routine(ctx, "frmSearch.btnSearch_Click", [&](Routine& r) {
        if (request.text.empty()) {
            ctx.ui.message(Message{"SEARCH", "Enter the text to search for.", Buttons::Ok,
                                   Icon::Exclamation, 1});
            return;
        }
        std::vector<Job> jobs;
        r.step("List the files of " + pathToUtf8(request.folder),
               [&] { jobs = searchJobs(request); });
        SearchRun run(ctx, r, request, report);
        ctx.ui.showProgress(static_cast<int>(jobs.size()));
        for (std::size_t i = 0; i < jobs.size() && !report.stopped; ++i) {
            ctx.ui.setProgress(static_cast<int>(i + 1));
            ctx.ui.setStatus(StatusPanel::Progress, "Searching " + jobs[i].name);
            ctx.ui.processEvents();
            report.stopped = !run.searchFile(jobs[i]);
        }
        ctx.ui.hideProgress();
        ctx.ui.setStatus(StatusPanel::Progress, "");
        if (!report.stopped) announceMatches(ctx, request, report);
    });
    return report;
}

}  // namespace tvk
