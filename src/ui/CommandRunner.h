#pragma once
// Runs the window's commands one at a time. While one runs the others wait: the window
// disables them, device notices and page loads are held back until it ends, and closing
// the window asks first and then waits for it.
//
// A click that lands on a button in the moment between a box closing and the command
// ending would fall on a disabled button and be lost (the windowing system hands the box's
// last key and the next click over together). Such a click is kept and given to its button
// as soon as the command has ended.

#include <QAbstractButton>
#include <QObject>
#include <QPointer>
#include <deque>
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

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void begin();
    void end();
    void runWaiting();

    MainState& state_;
    Interaction& ui_;
    Hooks hooks_;
    bool closeWhenDone_ = false;
    bool afterBox_ = false;                      // a box of the running command has closed
    QPointer<QAbstractButton> heldClick_;        // clicked meanwhile, clicked again at the end
    std::deque<std::function<void()>> waiting_;  // device notices and page loads
};

}  // namespace tvk::ui
