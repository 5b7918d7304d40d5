#include "ui/CommandRunner.h"

#include <QTimer>

#include "app/Text.h"
#include "app/Version.h"

namespace tvk::ui {

CommandRunner::CommandRunner(MainState& state, Interaction& ui, Hooks hooks, QObject* parent)
    : QObject(parent), state_(state), ui_(ui), hooks_(std::move(hooks)) {}

void CommandRunner::begin() {
    state_.busy = true;
    hooks_.started();
}

void CommandRunner::end() {
    state_.busy = false;
    hooks_.ended();
    if (closeWhenDone_) {
        closeWhenDone_ = false;
        QTimer::singleShot(0, this, [this] { hooks_.closeWindow(); });
    }
}

void CommandRunner::whenIdle(std::function<void()> work) {
    if (!state_.busy) return work();
    QTimer::singleShot(250, this,
                       [this, work = std::move(work)]() mutable { whenIdle(std::move(work)); });
}

bool CommandRunner::mayClose() {
    if (!state_.busy) return true;
    if (closeWhenDone_) return false;
    // Closing in the middle of a copy would leave half a batch; finish it first.
    const Message ask{kProjectName,
                      "A command is still running." + std::string(kBlankLine) +
                          "Close the program when it has finished?",
                      Buttons::YesNo, Icon::Question, 1};
    if (ui_.message(ask) == Answer::Yes) {
        closeWhenDone_ = true;
        ui_.setStatus(StatusPanel::Second, "Please wait until the current command has finished.");
    }
    return false;
}

}  // namespace tvk::ui
