#include "ui/CommandRunner.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QTimer>

#include "app/Text.h"
#include "app/Version.h"

namespace tvk::ui {

CommandRunner::CommandRunner(MainState& state, Interaction& ui, Hooks hooks, QObject* parent)
    : QObject(parent), state_(state), ui_(ui), hooks_(std::move(hooks)) {}

void CommandRunner::begin() {
    state_.busy = true;
    afterBox_ = false;
    heldClick_ = nullptr;
    qApp->installEventFilter(this);
    hooks_.started();
}

void CommandRunner::end() {
    qApp->removeEventFilter(this);
    state_.busy = false;
    hooks_.ended();
    if (closeWhenDone_) {
        closeWhenDone_ = false;
        QTimer::singleShot(0, this, [this] { hooks_.closeWindow(); });
        return;
    }
    if (heldClick_) {
        QTimer::singleShot(0, this, [button = heldClick_] {
            if (button && button->isEnabled() && button->isVisible()) button->click();
        });
        heldClick_ = nullptr;
    }
    if (!waiting_.empty()) QTimer::singleShot(0, this, [this] { runWaiting(); });
}

bool CommandRunner::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if ((type == QEvent::Show || type == QEvent::Hide) && qobject_cast<QDialog*>(watched)) {
        // Only what is clicked after the command's last box is kept.
        afterBox_ = type == QEvent::Hide;
        heldClick_ = nullptr;
    } else if (type == QEvent::MouseButtonPress && afterBox_) {
        // The press is enough: its release may come only once the button is enabled again.
        auto* button = qobject_cast<QAbstractButton*>(watched);
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (button && !button->isEnabled() && mouse->button() == Qt::LeftButton &&
            button->window() == parent() && !QApplication::activeModalWidget())
            heldClick_ = button;
    }
    return false;
}

void CommandRunner::whenIdle(std::function<void()> work) {
    if (!state_.busy) return work();
    waiting_.push_back(std::move(work));
}

void CommandRunner::runWaiting() {
    // One at a time: each may be a command of its own, and the next waits for it.
    while (!waiting_.empty() && !state_.busy) {
        auto work = std::move(waiting_.front());
        waiting_.pop_front();
        work();
    }
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
