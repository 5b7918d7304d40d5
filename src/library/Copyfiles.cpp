#include "library/Copyfiles.h"

#include <array>
#include <utility>

#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/ShownPaths.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "library/CopyNames.h"
#include "library/CopyPaste.h"
#include "library/DoneSummary.h"
#include "organfiles/AnalyzeContent.h"

namespace tvk {

namespace {

constexpr std::array<std::pair<CopyMode, const char*>, 5> kModeNames = {{
    {CopyMode::Left, "LEFT"},
    {CopyMode::Right, "RIGHT"},
    {CopyMode::Diff, "DIFF"},
    {CopyMode::FlbDocs, "flbDocs"},
    {CopyMode::FlbUSB, "flbUSB"},
}};

std::string quoted(const std::filesystem::path& path) {
    return std::string(kQuote) + pathToUtf8(path) + std::string(kQuote);
}

bool isNumbered(const NameInfo& info) {
    return info.type == NameType::PSET || info.type == NameType::SONG;
}

// One run of the copy engine over a batch.
class CopyRun {
  public:
    CopyRun(Context& ctx, Routine& r, const CopyRequest& request, CopyReport& report)
        : ctx_(ctx),
          r_(r),
          req_(request),
          report_(report),
          names_(request.destination, false),
          onStick_(isOnStick(request.source, request.stickFolder) ||
                   isOnStick(request.destination, request.stickFolder)) {}

    void run() {
        if (isOnStick(req_.destination, req_.stickFolder) && !stickReady(ctx_, r_)) {
            report_.refused = true;
            return;
        }
        const std::size_t count = batchSize();
        try {
            step("List " + quoted(req_.destination),
                 [&] { names_ = FolderNames(req_.destination); });
            ctx_.ui.showProgress(static_cast<int>(count));
            for (std::size_t i = 0; i < count; ++i) {
                if (!copyEntry(i)) {
                    // No to the duplicate question ends the batch; the rest stays uncopied.
                    report_.skipped.insert(report_.skipped.end(), req_.files.begin() + i + 1,
                                           req_.files.begin() + count);
                    break;
                }
            }
        } catch (const StickRemoved&) {
            // The closing steps would only meet the missing stick again.
            report_.stickRemoved = true;
            showStickRemoved(ctx_, report_.copied.size(), count,
                             "The files copied so far are in " + shown(req_.destination) +
                                 "; the others are as they were in " + shown(req_.source) + ".");
            return;
        }
        closingSteps();
    }

  private:
    // A step that meets a pulled stick ends the batch when the stick is one side of it.
    template <class F>
    bool step(std::string task, F&& body) {
        return onStick_ ? stickStep(r_, std::move(task), body) : r_.step(std::move(task), body);
    }

    std::string shown(const std::filesystem::path& folder) const {
        return std::string(kQuote) + shownPath(ctx_.state.drive, folder) + std::string(kQuote);
    }

    // The batch holds 1,500 names; more is an index error, and Ignore copies the first
    // 1,500.
    std::size_t batchSize() {
        if (req_.files.size() <= kMaxCopyBatch) return req_.files.size();
        r_.step("Copy batch entry " + std::to_string(kMaxCopyBatch + 1), [&] {
            Routine::raise(kErrSubscriptOutOfRange, std::to_string(req_.files.size()) +
                                                        " names for " +
                                                        std::to_string(kMaxCopyBatch) + " places");
        });
        return kMaxCopyBatch;
    }

    bool duplicateMode() const {
        return req_.mode == CopyMode::FlbDocs || req_.mode == CopyMode::FlbUSB;
    }

    // False when the user ended the batch.
    bool copyEntry(std::size_t index) {
        const std::string& name = req_.files[index];
        ctx_.ui.setStatus(StatusPanel::Progress, "Copying file \"" + name + "\"");
        ctx_.ui.setProgress(static_cast<int>(index + 1));
        ctx_.ui.processEvents();

        const NameInfo info = classifyName(name);
        if (info.number) counter_ = *info.number;
        counter_ = req_.numberSeq == 1 ? counter_ + 1 : 1;

        if (duplicateMode()) {
            // A list's name copies only in that list; any other word copies nothing.
            if (std::string_view(copyModeName(req_.mode)) !=
                listControlName(ctx_.state.activeList)) {
                report_.skipped.push_back(name);
                return true;
            }
            if (!askForDuplicate()) {
                report_.skipped.push_back(name);
                return false;
            }
            counter_ = 0;  // so the first duplicate is numbered from 0
        }
        copyOne(name, info);
        return true;
    }

    bool askForDuplicate() {
        const Answer answer = ctx_.ui.message(Message{
            "DUPLICATE FILE",
            "Do you want to make a duplicate file in the " + shown(req_.destination) + " folder?",
            Buttons::YesNo, Icon::Question, 1});
        ctx_.state.lastAnswer = answer;
        return answer == Answer::Yes;
    }

    // What a file's copy is called: a name chosen now, or a readable one chosen from the
    // file's first bytes as the copy reads them.
    struct Target {
        enum class Kind { Skip, Named, Readable } kind = Kind::Skip;
        std::string name;
        Series family = Series::All;
        bool song = false;
    };
    static Target named(std::string name) { return {Target::Kind::Named, std::move(name)}; }
    static Target readable(Series family, bool song) {
        return {Target::Kind::Readable, {}, family, song};
    }

    // The name and the copy are one step, so Retry chooses the name again: a file that
    // came back may read differently, and a name taken meanwhile is passed over. A failure
    // stays in the report when the user goes on without the file or aborts.
    void copyOne(const std::string& name, const NameInfo& info) {
        const auto source = req_.source / pathFromUtf8(name);
        const int counter = counter_, duplicates = report_.duplicates;
        std::optional<std::string> copiedAs;
        bool failed = false;
        const bool done = step("Copy " + quoted(source), [&] {
            counter_ = counter;
            report_.duplicates = duplicates;
            if (std::exchange(failed, false)) report_.failures.pop_back();
            try {
                copiedAs = copyTo(source, targetFor(name, info));
            } catch (const std::exception&) {
                // A pulled stick is "Disk not ready", whatever the vanished folder said.
                const bool gone = onStick_ && stickGone(ctx_);
                report_.failures.push_back(
                    {name,
                     gone ? kErrDiskNotReady : RuntimeError::fromCurrentException().number()});
                failed = true;
                throw;
            }
        });
        if (!done) return;
        if (!copiedAs) {
            report_.skipped.push_back(name);
            return;
        }
        names_.add(*copiedAs);
        report_.copied.push_back({name, *copiedAs});
    }

    std::optional<std::string> copyTo(const std::filesystem::path& source, const Target& target) {
        const auto letEventsRun = [&](std::uintmax_t, std::uintmax_t) { ctx_.ui.processEvents(); };
        const auto nameTask = [&](const std::string& to) {
            r_.setTask("Copy " + quoted(source) + " to " +
                       quoted(req_.destination / pathFromUtf8(to)));
        };
        switch (target.kind) {
            case Target::Kind::Skip:
                return std::nullopt;
            case Target::Kind::Named:
                nameTask(target.name);
                copyFileSafely(source, req_.destination / pathFromUtf8(target.name), letEventsRun);
                return target.name;
            case Target::Kind::Readable:
                break;
        }
        const auto nameFor = [&](std::string_view head) {
            const std::string base = readableName(ctx_, source, head);
            const std::string extension = seriesExtension(target.family, target.song);
            std::string to = freeSuffixName(names_, base + extension, {base, extension}, counter_,
                                            report_.duplicates);
            nameTask(to);
            return to;
        };
        return copyFileNamed(source, req_.destination, nameFor, letEventsRun);
    }

    Target targetFor(const std::string& name, const NameInfo& info) {
        switch (req_.mode) {
            case CopyMode::Right:
                return toStick(name, info);
            case CopyMode::Left:
                return toLibrary(name, info);
            case CopyMode::Diff:
                return betweenFolders(name, info);
            case CopyMode::FlbDocs:
            case CopyMode::FlbUSB:
                return duplicate(name, info);
        }
        return {};
    }

    Target sameName(const std::string& name) {
        return named(
            freeSuffixName(names_, name, splitExtension(name), counter_, report_.duplicates));
    }

    Target toStick(const std::string& name, const NameInfo& info) {
        if (info.kind != FileKind::Preset && info.kind != FileKind::Recording)
            return sameName(name);
        const auto family = seriesFromLetter(info.seriesLetter);
        if (!family) return {};
        const bool song = info.kind == FileKind::Recording;
        return named(freeOrganNumberName(names_, organPrefix(*family, song), counter_,
                                         organNumberWidth(*family), stickExtension(*family, song)));
    }

    Target toLibrary(const std::string& name, const NameInfo& info) {
        const std::string ext = extensionOf(name);
        const bool song = info.kind == FileKind::Recording;
        // The stick's own E files are named by their extension; SU and A files share
        // the generic ones and are named by their prefix.
        if (seriesOfExtension(ext) == Series::E) return readable(Series::E, song);
        if (!isGenericExtension(ext)) return sameName(name);
        const auto family = seriesFromLetter(info.seriesLetter);
        if (!family || *family == Series::E) return {};
        return readable(*family, song);
    }

    Target betweenFolders(const std::string& name, const NameInfo& info) {
        const bool organFile = info.kind == FileKind::Preset || info.kind == FileKind::Recording;
        const auto family = seriesFromLetter(info.seriesLetter);
        if (!isNumbered(info) || !organFile || !family) return sameName(name);
        return readable(*family, info.type == NameType::SONG);
    }

    Target duplicate(const std::string& name, const NameInfo& info) {
        const auto family = seriesFromLetter(info.seriesLetter);
        if (!isNumbered(info) || !family) return sameName(name);
        return named(freeOrganNumberName(names_, organPrefix(*family, info.type == NameType::SONG),
                                         counter_, organNumberWidth(*family),
                                         "." + extensionOf(name)));
    }

    void closingSteps() {
        if (!req_.stickFolder.empty()) {
            AnalyzeContent(ctx_, req_.stickFolder);
            bool organFiles = true;
            r_.step("Look for presets and recordings in " + quoted(req_.stickFolder),
                    [&] { organFiles = !listPlainFiles(req_.stickFolder, "*.?pg;*.?mr").empty(); });
            if (organFiles)
                ctx_.state.enabled["btnSort"] = true;
            else
                ctx_.state.enabled[controlName("btnUSB_Docs", 3)] = false;
        }
        if (report_.duplicates > 0) {
            ctx_.ui.message(Message{"DUPLICATE FILES",
                                    "There are " + std::to_string(report_.duplicates) +
                                        " duplicate files marked with (#)",
                                    Buttons::Ok, Icon::Information, 1});
        }
    }

    Context& ctx_;
    Routine& r_;
    const CopyRequest& req_;
    CopyReport& report_;
    FolderNames names_;
    bool onStick_;
    int counter_ = 0;  // supplies file numbers and bracketed counters
};

}  // namespace

const char* copyModeName(CopyMode mode) {
    for (const auto& [m, name] : kModeNames)
        if (m == mode) return name;
    return "";
}

std::optional<CopyMode> copyModeFromName(std::string_view name) {
    for (const auto& [m, word] : kModeNames)
        if (name == word) return m;
    return std::nullopt;
}

CopyRequest copyRequest(const Context& ctx, std::vector<std::string> files,
                        std::filesystem::path source, std::filesystem::path destination,
                        CopyMode mode) {
    CopyRequest request;
    request.files = std::move(files);
    request.source = std::move(source);
    request.destination = std::move(destination);
    request.mode = mode;
    if (ctx.state.drive.present) request.stickFolder = ctx.state.drive.tavrinFolder();
    request.numberSeq = ctx.settings.numberSeq;
    return request;
}

CopyReport Copyfiles(Context& ctx, const CopyRequest& request, const std::string& command) {
    CopyReport report;
    report.completed = routine(ctx, "frmMain.Copyfiles",
                               [&](Routine& r) { CopyRun(ctx, r, request, report).run(); }) &&
                       !report.stickRemoved;
    ctx.ui.hideProgress();
    if (!command.empty() && !report.stickRemoved && !report.refused)
        ctx.ui.setStatus(StatusPanel::Second,
                         doneSummary(command, report.copied.size(),
                                     shownPath(ctx.state.drive, request.destination),
                                     report.failures.size() + report.skipped.size()));
    return report;
}

}  // namespace tvk
