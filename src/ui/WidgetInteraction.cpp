#include "ui/WidgetInteraction.h"

#include <QCoreApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QTimer>
#include <utility>
#include <vector>

#include "app/Text.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

QMessageBox::Icon boxIcon(Icon icon) {
    switch (icon) {
        case Icon::Critical:
            return QMessageBox::Critical;
        case Icon::Question:
            return QMessageBox::Question;
        case Icon::Exclamation:
            return QMessageBox::Warning;
        case Icon::Information:
            return QMessageBox::Information;
        case Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

using ButtonOrder = std::vector<std::pair<QMessageBox::StandardButton, Answer>>;

// The box's buttons from left to right, each with the answer it gives.
ButtonOrder buttonOrder(Buttons buttons) {
    using SB = QMessageBox;
    switch (buttons) {
        case Buttons::Ok:
            return {{SB::Ok, Answer::Ok}};
        case Buttons::OkCancel:
            return {{SB::Ok, Answer::Ok}, {SB::Cancel, Answer::Cancel}};
        case Buttons::AbortRetryIgnore:
            return {{SB::Abort, Answer::Abort},
                    {SB::Retry, Answer::Retry},
                    {SB::Ignore, Answer::Ignore}};
        case Buttons::YesNoCancel:
            return {{SB::Yes, Answer::Yes}, {SB::No, Answer::No}, {SB::Cancel, Answer::Cancel}};
        case Buttons::YesNo:
            return {{SB::Yes, Answer::Yes}, {SB::No, Answer::No}};
        case Buttons::RetryCancel:
            return {{SB::Retry, Answer::Retry}, {SB::Cancel, Answer::Cancel}};
    }
    return {{SB::Ok, Answer::Ok}};
}

}  // namespace

void WidgetInteraction::attach(const std::array<QLabel*, 3>& panels, QProgressBar* bar,
                               const Settings* settings) {
    panels_ = panels;
    bar_ = bar;
    settings_ = settings;
}

Answer WidgetInteraction::message(const Message& box) {
    if (boxes_) return boxes_->message(box);
    QMessageBox mb(parent_);
    mb.setWindowTitle(qs(box.title));
    mb.setText(qs(toDisplayLines(box.text)));
    mb.setIcon(boxIcon(box.icon));
    const ButtonOrder order = buttonOrder(box.buttons);
    for (const auto& [button, answer] : order) mb.addButton(button);
    const int def = box.defaultButton - 1;
    mb.setDefaultButton(order[def >= 0 && def < static_cast<int>(order.size()) ? def : 0].first);
    const auto clicked = static_cast<QMessageBox::StandardButton>(mb.exec());
    for (const auto& [button, answer] : order)
        if (button == clicked) return answer;
    // Closed with Escape or the title bar: the box's cautious answer.
    return order.size() == 1 ? order[0].second : order.back().second;
}

std::optional<std::string> WidgetInteraction::prompt(const std::string& title,
                                                     const std::string& text,
                                                     const std::string& initial) {
    if (boxes_) return boxes_->prompt(title, text, initial);
    QInputDialog dialog(parent_);
    dialog.setWindowTitle(qs(title));
    dialog.setLabelText(qs(toDisplayLines(text)));
    dialog.setTextValue(qs(initial));
    // "All Text Select" off: the cursor goes to the end instead of selecting the text.
    if (settings_ && !settings_->allTextSelect) {
        QTimer::singleShot(0, &dialog, [&dialog] {
            if (auto* edit = dialog.findChild<QLineEdit*>()) edit->end(false);
        });
    }
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return us(dialog.textValue());
}

void WidgetInteraction::setStatus(StatusPanel panel, const std::string& text) {
    const int index = static_cast<int>(panel) - 1;
    if (index >= 0 && index < 3 && panels_[index]) panels_[index]->setText(qs(text));
}

void WidgetInteraction::showProgress(int maximum) {
    bar_->setRange(0, std::max(1, maximum));
    bar_->setValue(0);
    bar_->show();
}

void WidgetInteraction::setProgress(int value) {
    bar_->setValue(std::min(value, bar_->maximum()));
}

void WidgetInteraction::hideProgress() {
    bar_->reset();
    bar_->hide();
}

void WidgetInteraction::processEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

}  // namespace tvk::ui
