#include "library/RenameFile.h"

#include <algorithm>
#include <optional>

#include "app/CommonRoutines.h"
#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "app/Version.h"
#include "library/ListFiles.h"
#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"
#include "organfiles/OrganNames.h"

namespace tvk {

namespace {

namespace fs = std::filesystem;

constexpr const char* kTitle = "RENAME FILE";
// The organ shows 15 characters of the name field; its 16th byte is not ours to touch.
constexpr std::size_t kInsideNameWidth = 15;

enum class Flow { Number, InsideName, FileName };

// How one file is renamed, from the focused list, its extension, prefix and first letter.
struct Plan {
    Flow flow = Flow::FileName;
    Series family = Series::All;  // number flow: the family and kind of the new name
    FileKind kind = FileKind::Other;
    bool sayOutOfRange = true;  // number flow: a message for a number out of range
    std::size_t limit = 18;     // name length limit, or the highest number
    std::string prompt;         // the prompt before the current file name
};

// The upper-cased extension taken from the first dot, as the command always has.
std::string extensionFromFirstDot(std::string_view name) {
    const auto dot = name.find('.');
    return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot));
}

Plan numberPlan(Series family, FileKind kind, bool sayOutOfRange) {
    Plan p;
    p.flow = Flow::Number;
    p.family = family;
    p.kind = kind;
    p.sayOutOfRange = sayOutOfRange;
    // SU files are renumbered within 01 to 40, presets as well as recordings.
    p.limit = family == Series::SU ? kMaxRecordingNumber : kMaxPresetNumber;
    p.prompt = "Enter a new NUMBER (01 to " + std::to_string(p.limit) + ") for ";
    return p;
}

Plan namePlan(Flow flow, std::size_t limit, std::string prompt) {
    Plan p;
    p.flow = flow;
    p.limit = limit;
    p.prompt = std::move(prompt);
    return p;
}

// The upper-cased three letters after the first dot, when they are all that follows it;
// empty otherwise. Everything after the first dot is the extension to the rename, so
// "a.b.spg" is no organ file to it.
std::string soleExtension(std::string_view name) {
    const std::string dotted = toUpperAscii(extensionFromFirstDot(name));
    return dotted.size() == 4 ? dotted.substr(1) : std::string();
}

Plan computerPlan(std::string_view name) {
    const std::string ext = soleExtension(name);
    const FileKind kind = fileKind(ext);
    if (kind != FileKind::Preset && kind != FileKind::Recording)
        return namePlan(Flow::FileName, 18, "Enter a new FILE NAME (18 Characters MAX) for ");
    const bool song = kind == FileKind::Recording;
    if (isGenericExtension(ext)) {
        const bool firstS = !name.empty() && name.front() == 'S';
        return numberPlan(firstS ? Series::SU : Series::A, kind, true);
    }
    // E files are numbered only under their own prefix; other names are inside names.
    if (seriesOfExtension(ext) == Series::E &&
        toUpperAscii(utf8Left(name, 5)) == organPrefix(Series::E, song))
        return numberPlan(Series::E, kind, true);
    return namePlan(Flow::InsideName, kInsideNameWidth, "Enter a new NAME for ");
}

Plan stickPlan(std::string_view name) {
    const std::string prefix = toUpperAscii(utf8Left(name, 5));
    const char first = name.empty() ? '\0' : name.front();
    const Series family = first == 'S' ? Series::SU : first == 'A' ? Series::A : Series::E;
    // A numbered name is told by the first five letters of a family's prefix ("SUPSE"),
    // its family by its first letter as it stands.
    for (const bool song : {false, true}) {
        for (const Series f : {Series::SU, Series::A, Series::E}) {
            if (prefix != utf8Left(organPrefix(f, song), 5)) continue;
            return song ? numberPlan(family, FileKind::Recording, false)
                        : numberPlan(family, FileKind::Preset, family == Series::SU);
        }
    }
    const FileKind kind = fileKind(soleExtension(name));
    const std::size_t limit = kind == FileKind::Midi || kind == FileKind::Mp3 ? 18 : 254;
    return namePlan(Flow::FileName, limit, "Enter a new name for ");
}

// A whole number typed at the prompt; nullopt for anything else ("7.5", "seven").
std::optional<int> wholeNumber(std::string_view answer) {
    std::string text = trim(answer);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.erase(0, 1);
    }
    if (text.empty() ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    long long value = 0;
    for (char c : text) value = std::min<long long>(value * 10 + (c - '0'), 1'000'000);
    return static_cast<int>(negative ? -value : value);
}

struct Renaming {
    Context& ctx;
    Routine& r;
    const RenameRequest& request;
    const Plan& plan;

    fs::path from() const { return request.folder / pathFromUtf8(request.fileName); }
    fs::path to(const std::string& name) const { return request.folder / pathFromUtf8(name); }

    void say(const std::string& text) { ctx.ui.inform(kProjectName, text); }
    RenameReport aborted() {
        say("Rename Aborted");
        return {};
    }
    std::optional<std::string> ask(const std::string& initial = {}) {
        return ctx.ui.prompt(kTitle, plan.prompt + request.fileName, initial);
    }

    // Another file already has the name (the file itself under another case does not).
    bool taken(const std::string& name) {
        const fs::path target = to(name);
        return FileExists(ctx, target) && !isCaseOnlyRename(from(), target);
    }
    // The collision box; true when the user wants to try again.
    bool tryAgain(const char* title, const std::string& what) {
        const Answer a = ctx.ui.message(Message{title,
                                                "That file" + what + " is already being used." +
                                                    std::string(kLineBreak) +
                                                    "Do you want to try another " + what + "?",
                                                Buttons::RetryCancel, Icon::Critical, 1});
        ctx.state.lastAnswer = a;
        return a == Answer::Retry;
    }
    bool numberInUse() { return tryAgain("NUMBER IN USE", "number"); }
    bool fileNameInUse() { return tryAgain("FILENAME IN USE", "name"); }

    bool move(const std::string& newName) {
        return r.step("Name " + pathToUtf8(from()) + " As " + pathToUtf8(to(newName)), [&] {
            requireNameInFolder(newName);
            moveFile(from(), to(newName));
        });
    }
    RenameReport finish(bool moved, const std::string& newName) {
        refreshLists(ctx.state);
        if (!moved) return {};
        return {true, newName};
    }

    RenameReport numberFlow();
    RenameReport insideNameFlow();
    RenameReport fileNameFlow();
    bool writeInsideName(const std::string& newName, std::string& original);
};

RenameReport Renaming::numberFlow() {
    const auto current = classifyName(request.fileName).number;
    const int digits = plan.family == Series::SU ? 2 : 3;
    const int limit = static_cast<int>(plan.limit);
    for (;;) {
        const auto answer = ask();
        if (!answer || answer->empty()) return aborted();
        const auto number = wholeNumber(*answer);
        if (number && current && *number == *current) {
            say("Number not changed");
            continue;
        }
        if (!number || *number < 1 || *number > limit) {
            if (plan.sayOutOfRange) say("Number too Large. 1 to " + std::to_string(limit));
            continue;
        }
        const std::string newName = organFileName(plan.family, plan.kind, *number, digits);
        if (taken(newName)) {
            if (numberInUse()) continue;
            return {};
        }
        return finish(move(newName), newName);
    }
}

RenameReport Renaming::insideNameFlow() {
    const std::string ext = toUpperAscii(extensionFromFirstDot(request.fileName));
    const std::string current =
        utf8Left(request.fileName, utf8Length(request.fileName) - utf8Length(ext));
    std::error_code ec;
    const auto size = fs::file_size(from(), ec);
    if (!ec && size < static_cast<std::uintmax_t>(kNamePosition - 1 + kNameWidth)) {
        say(std::string(kQuote) + request.fileName + std::string(kQuote) +
            " is too short to hold a name, so it is not a preset or recording the organ made." +
            std::string(kLineBreak) + "It was left as it was.");
        return {};
    }
    for (;;) {
        const auto answer = ask();
        if (answer && utf8Length(*answer) > plan.limit) {
            say("Name too long. 15 characters only");
            continue;
        }
        if (!answer || trim(*answer).empty()) return aborted();
        if (*answer == current) {
            say("Name not changed");
            continue;
        }
        const std::string newName = *answer + ext;
        if (taken(newName)) {
            if (numberInUse()) continue;
            return {};
        }
        std::string original;
        const bool written = writeInsideName(*answer, original);
        // A name the file system refuses leaves the preset exactly as it was.
        auto putBack = [&] {
            if (written)
                r.step("Put " + pathToUtf8(from()), [&] { writeFileReplacing(from(), original); });
        };
        bool moved = false;
        try {
            moved = move(newName);
        } catch (...) {  // Abort, or the program ending on it
            putBack();
            throw;
        }
        if (!moved) putBack();
        return finish(moved, newName);
    }
}

// Writes the new name over bytes 33 to 47, padded with spaces; byte 48 stays. The new
// contents go through a temporary file, so a failure never leaves a damaged preset.
bool Renaming::writeInsideName(const std::string& newName, std::string& original) {
    const fs::path file = from();
    return r.step("Put " + pathToUtf8(file), [&] {
        original = readWholeFile(file, std::uintmax_t(1) << 26);  // organ files are small
        const auto offset = static_cast<std::size_t>(kNamePosition - 1);
        if (original.size() < offset + kNameWidth)  // shrank since the flow began
            Routine::raise(kErrInputPastEndOfFile, pathToUtf8(file));
        std::error_code ec;
        const auto perms = fs::status(file, ec).permissions();
        if (!ec && (perms & fs::perms::owner_write) == fs::perms::none)
            Routine::raise(kErrPermissionDenied, pathToUtf8(file));
        std::string field = utf8ToCp1252(newName);
        field.resize(kInsideNameWidth, ' ');
        std::string bytes = original;
        bytes.replace(offset, kInsideNameWidth, field);
        writeFileReplacing(file, bytes);
    });
}

RenameReport Renaming::fileNameFlow() {
    const std::string stored = extensionFromFirstDot(request.fileName);
    const std::string ext = toUpperAscii(stored);
    const std::string base =
        utf8Left(request.fileName, utf8Length(request.fileName) - utf8Length(stored));
    for (;;) {
        const auto answer = ask(base);
        if (!answer || trim(*answer).empty()) return aborted();
        if (utf8Length(*answer) > plan.limit) {
            say("Name too long. " + std::to_string(plan.limit) + " characters only");
            continue;
        }
        std::string stem = *answer;
        if (!ext.empty() && stem.find('.') != std::string::npos) {
            const std::size_t n = std::min(utf8Length(stem), utf8Length(ext));
            if (utf8ToUpper(utf8Right(stem, n)) != ext)
                ctx.ui.message(Message{"CAN NOT CHANGE FILE EXTENSION",
                                       "Changing the file extension is not permitted", Buttons::Ok,
                                       Icon::Critical, 1});
            else
                ctx.ui.inform(kTitle, "There is no need to enter the File Extension.",
                              Icon::Information);
            stem = utf8Left(stem, utf8Length(stem) - n);
            if (stem.empty()) return aborted();
        }
        const std::string newName = stem + stored;
        if (taken(newName)) {
            if (fileNameInUse()) continue;
            return {};
        }
        return finish(move(newName), newName);
    }
}

}  // namespace

RenameReport mnuFileRename_Click(Context& ctx, const RenameRequest& request) {
    if (!isFileList(request.list) || request.fileName.empty()) return {};
    return routine(ctx, "frmMain.mnuFileRename_Click",
                   [&](Routine& r) {
                       if (request.list == ListControl::flbUSB && !stickReady(ctx, r))
                           return RenameReport{};
                       const Plan plan = request.list == ListControl::flbUSB
                                             ? stickPlan(request.fileName)
                                             : computerPlan(request.fileName);
                       Renaming renaming{ctx, r, request, plan};
                       switch (plan.flow) {
                           case Flow::Number:
                               return renaming.numberFlow();
                           case Flow::InsideName:
                               return renaming.insideNameFlow();
                           case Flow::FileName:
                               break;
                       }
                       return renaming.fileNameFlow();
                   })
        .value_or(RenameReport{});
}

RenameReport mnuFileRename_Click(Context& ctx) {
    const ListSelection s = activeSelection(ctx.state);
    if (s.names.size() != 1) return {};
    return mnuFileRename_Click(ctx, RenameRequest{s.list, s.folder, s.names.front()});
}

}  // namespace tvk
