#include "app/Routine.h"

#include <exception>

#include "app/ShownPaths.h"
#include "app/Text.h"
#include "app/Version.h"

namespace tvk {

namespace {

// The handler's own trace writes may fail too (after a settings write); they are
// dropped there, or every failure would call the handler again without end.
void writeQuietly(Trace& trace, const std::string& line) {
    try {
        trace.write(line);
    } catch (...) {
    }
}

}  // namespace

std::string MainErrorHandler(Context& ctx, int errorNumber, const std::string& description,
                             const std::string& routineEntry, const std::string& task,
                             const std::string& /*extra*/) {
    Trace& trace = ctx.trace;
    const int depthBefore = trace.depth();
    std::string own;
    try {
        own = trace.push("frmMain.MainErrorHandler");
    } catch (...) {
        own = Trace::makeEntry(trace.depth(), "frmMain.MainErrorHandler");
    }
    auto leave = [&](const char* verdict) {
        if (trace.debug)
            writeQuietly(trace, trace.stamp() + "- " + verdict + " - " + own + " - EXIT");
        while (trace.depth() > depthBefore) trace.pop();
    };
    writeQuietly(trace, trace.stamp() + "- " + own + " - ENTER");

    const std::string source = std::string(kProjectName) + ": RUNTIME ERROR";
    const std::string number = std::to_string(static_cast<std::int16_t>(errorNumber));
    const std::string version = "TVK Ver: " + programVersionUnpadded();
    if (trace.debug) {
        writeQuietly(trace, source);
        writeQuietly(trace, "");
        writeQuietly(trace, "Encountered Err#" + number + "\r");
        writeQuietly(trace, description + "\r\r");
        writeQuietly(trace, "Routine: " + routineEntry + "\r");
        writeQuietly(trace, "    Task: " + task + "\r\r");
        writeQuietly(trace, version);
    }

    Message box;
    box.title = source;
    // The user knows the stick by its own path, not by where the program mounted it.
    box.text = "Encountered Err#" + number + std::string(kLineBreak) +
               shownText(ctx.state.drive, description) + std::string(kBlankLine) +
               "Routine: " + routineEntry + std::string(kLineBreak) +
               "    Task: " + shownText(ctx.state.drive, task) + std::string(kBlankLine) + version;
    box.buttons = Buttons::AbortRetryIgnore;
    box.icon = Icon::Critical;
    box.defaultButton = 2;
    const Answer answer = ctx.ui.message(box);
    ctx.state.lastAnswer = answer;

    switch (answer) {
        case Answer::Retry:
            leave("RETRY");
            return "RETRY";
        case Answer::Ignore:
            leave("IGNORE");
            return "IGNORE";
        default:
            if (trace.debug) {
                leave("ABORT");
                return {};
            }
            while (trace.depth() > depthBefore) trace.pop();
            trace.ending = true;
            throw ProgramEnd{1};
    }
}

void reportUntrappedError(Interaction& ui, const RuntimeError& error) {
    ui.message(Message{kProjectName,
                       "Run-time error '" + std::to_string(error.number()) +
                           "':" + std::string(kBlankLine) + error.description(),
                       Buttons::Ok, Icon::Critical, 1});
}

Routine::Routine(Context& c, std::string_view qualifiedName)
    : ctx(c), uncaught_(std::uncaught_exceptions()) {
    const int before = ctx.trace.depth();
    try {
        entry_ = ctx.trace.push(qualifiedName);
    } catch (const RuntimeError& e) {
        pushFailed_ = true;
        pushError_ = e.number();
        entry_ = Trace::makeEntry(ctx.trace.depth(), qualifiedName);
    }
    pushed_ = ctx.trace.depth() > before;
}

bool Routine::start() {
    for (;;) {
        try {
            if (pushFailed_) throw RuntimeError(pushError_);
            ctx.trace.enterLine(entry_);
            return true;
        } catch (const RuntimeError& e) {
            switch (handle(e)) {
                case Verdict::Retry:
                    continue;
                case Verdict::Ignore:
                    pushFailed_ = false;
                    return true;
                case Verdict::Abort:
                    return false;
            }
        }
    }
}

Routine::~Routine() {
    // Leaving while an exception passes through (the program ending, an untrapped
    // error) writes nothing more; an ordinary exit writes its EXIT line.
    if (std::uncaught_exceptions() == uncaught_) {
        for (int tries = 0; tries < 3; ++tries) {
            try {
                ctx.trace.exitLine(entry_);
                break;
            } catch (const RuntimeError& e) {
                try {
                    if (handle(e) != Verdict::Retry) break;
                } catch (...) {
                    break;
                }
            } catch (...) {
                break;
            }
        }
    }
    if (pushed_) ctx.trace.pop();
}

void Routine::detail(std::string_view line) {
    if (!ctx.trace.debug) return;
    step([&] { ctx.trace.write(line); });
}

Verdict Routine::handle(const RuntimeError& error) {
    if (!ctx.trace.errorTrap) throw UntrappedError{error};
    const std::string verdict =
        MainErrorHandler(ctx, error.number(), error.description(), entry_, task_, error.detail());
    if (verdict == "RETRY") return Verdict::Retry;
    if (verdict == "IGNORE") return Verdict::Ignore;
    return Verdict::Abort;
}

}  // namespace tvk
