#pragma once
// Runs the window's commands one at a time. While one runs the others wait: the window
// disables them, device notices and page loads are held back until it ends, and closing
// the window asks first and then waits for it.

#include <QObject>
#include <functional>

#include "app/MainState.h"
#include "app/Routine.h"

namespace tvk::ui {

class CommandRunner : public QObject {
  public:
    struct Hooks {
        std::function<void()> started;                 // disable the other commands
        std::function<void()> ended;                   // redraw the panels, enable again
        std::function<void(int exitCode)> endProgram;  // Abort untraced, untrapped errors
        std::function<void()> closeWindow;             // a close asked for meanwhile
    };

    CommandRunner(MainState& state, Interaction& ui, Hooks hooks, QObject* parent);

    // Runs `body` unless a command is running already: events pumped during a long
    // command cannot start a second one inside it.
    template <class F>
    void run(F&& body) {
        if (state_.busy) return;
        begin();
        try {
            body();
        } catch (const ProgramEnd& end) {
            hooks_.endProgram(end.exitCode);
        } catch (const UntrappedError& e) {
            reportUntrappedError(ui_, e.error);
            hooks_.endProgram(1);
        }
        end();
    }

    // Runs `work` now, or once the running command has ended (a stick pulled mid-copy).
    void whenIdle(std::function<void()> work);

    // Whether the window may close now. While a command runs it asks; on Yes the window
    // closes when the command has ended.
    bool mayClose();

  private:
    void begin();
    void end();

    MainState& state_;
    Interaction& ui_;
    Hooks hooks_;
    bool closeWhenDone_ = false;
};

}  // namespace tvk::ui
