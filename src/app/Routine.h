#pragma once
// The routine convention every command follows:
//
//   bool ok = routine(ctx, "frmMain.ScanForUSBs", [&](Routine& r) {
//       r.step("Open " + path, [&] { ...risky work that may throw... });
//   });
//
// routine() pushes the name on the routine stack and writes ENTER/EXIT lines;
// step() runs one risky step and turns a failure into the Retry / Ignore / Abort
// conversation of MainErrorHandler: Retry repeats the step, Ignore goes on after it,
// Abort ends the routine (or, untraced, the program). With the error trap off ("-ERROR")
// a failure is not trapped: it ends the program with the runtime's plain message.

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "app/Context.h"
#include "app/RuntimeError.h"

namespace tvk {

// Thrown by step() when the user answers Abort; routine() catches it.
struct RoutineAbort {};
// The program ends at once (Abort in an untraced run, a refused start-up).
struct ProgramEnd {
    int exitCode = 0;
};
// A run-time error with the error trap off: nothing catches it below the top level,
// which shows reportUntrappedError and ends the program.
struct UntrappedError {
    RuntimeError error;
};

// The central error handler. Returns "RETRY", "IGNORE" or "" (Abort, traced); throws
// ProgramEnd for Abort when the trace is off.
std::string MainErrorHandler(Context& ctx, int errorNumber, const std::string& description,
                             const std::string& routine, const std::string& task,
                             const std::string& extra = {});

// The runtime's own message for an untrapped error ("Run-time error '53':" ...).
void reportUntrappedError(Interaction& ui, const RuntimeError& error);

enum class Verdict { Retry, Ignore, Abort };

// Runs `body`; a failure of the work itself goes to `onFailure`, called inside the catch
// so it can read or rethrow the failure. The handler's own ways out (Abort, the end of the
// program, an error with the trap off) pass through untouched.
template <class F, class G>
void whenFailing(F&& body, G&& onFailure) {
    try {
        body();
    } catch (const RoutineAbort&) {
        throw;
    } catch (const ProgramEnd&) {
        throw;
    } catch (const UntrappedError&) {
        throw;
    } catch (...) {
        onFailure();
    }
}

class Routine {
  public:
    Routine(Context& ctx, std::string_view qualifiedName);
    ~Routine();
    Routine(const Routine&) = delete;
    Routine& operator=(const Routine&) = delete;

    Context& ctx;

    // The step now under way, shown as "Task:" in the error box.
    void setTask(std::string task) { task_ = std::move(task); }
    const std::string& task() const { return task_; }
    const std::string& entry() const { return entry_; }
    // A free line between ENTER and EXIT when tracing; a failing write goes to the
    // error handler like any step.
    void detail(std::string_view line);

    // Runs a risky step. True when it completed, false when the user chose Ignore.
    template <class F>
    bool step(F&& body) {
        for (;;) {
            bool failed = false;
            Verdict verdict = Verdict::Abort;
            whenFailing(body, [&] {
                failed = true;
                verdict = handle(RuntimeError::fromCurrentException());
            });
            if (!failed) return true;
            switch (verdict) {
                case Verdict::Retry:
                    continue;
                case Verdict::Ignore:
                    return false;
                case Verdict::Abort:
                    throw RoutineAbort{};
            }
        }
    }
    template <class F>
    bool step(std::string task, F&& body) {
        setTask(std::move(task));
        return step(std::forward<F>(body));
    }

    // Raises a run-time error inside the routine, as a failing statement would.
    [[noreturn]] static void raise(int number, std::string detail = {}) {
        throw RuntimeError(number, std::move(detail));
    }

    // Hands an error to the central handler (or, with the trap off, ends the program).
    Verdict handle(const RuntimeError& error);

    // Writes the ENTER line; false when the user aborted on a failure there.
    bool start();

  private:
    std::string task_;
    std::string entry_;
    bool pushed_ = false;
    bool pushFailed_ = false;
    int pushError_ = 0;
    int uncaught_ = 0;
};

// Runs `body(Routine&)` as one routine. A void body gives true when it ran to its end
// and false when aborted; a body returning T gives std::optional<T>.
template <class F>
auto routine(Context& ctx, std::string_view qualifiedName, F&& body) {
    using R = std::invoke_result_t<F, Routine&>;
    Routine r(ctx, qualifiedName);
    if constexpr (std::is_void_v<R>) {
        if (!r.start()) return false;
        try {
            body(r);
            return true;
        } catch (const RoutineAbort&) {
            return false;
        }
    } else {
        if (!r.start()) return std::optional<R>{};
        try {
            return std::optional<R>{body(r)};
        } catch (const RoutineAbort&) {
            return std::optional<R>{};
        }
    }
}

}  // namespace tvk
