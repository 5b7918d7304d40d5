#pragma once
// The Interaction the window's commands talk to: message boxes, one-line prompts, the
// three status bar panels and the progress bar. Boxes and prompts can be sent elsewhere
// (tests, the screenshot run) while the panels stay the window's.

#include <QString>
#include <array>

#include "app/Interaction.h"
#include "app/Settings.h"

class QLabel;
class QProgressBar;
class QWidget;

namespace tvk::ui {

class WidgetInteraction : public Interaction {
  public:
    explicit WidgetInteraction(QWidget* parent) : parent_(parent) {}

    // The widgets it draws on, once the window has built them; the settings the prompt
    // reads ("All Text Select").
    void attach(const std::array<QLabel*, 3>& panels, QProgressBar* bar, const Settings* settings);
    void setBoxesTo(Interaction* boxes) { boxes_ = boxes; }

    Answer message(const Message& box) override;
    std::optional<std::string> prompt(const std::string& title, const std::string& text,
                                      const std::string& initial) override;
    void setStatus(StatusPanel panel, const std::string& text) override;
    void showProgress(int maximum) override;
    void setProgress(int value) override;
    void hideProgress() override;
    void processEvents() override;

  private:
    QWidget* parent_;
    Interaction* boxes_ = nullptr;
    const Settings* settings_ = nullptr;
    std::array<QLabel*, 3> panels_{};
    QProgressBar* bar_ = nullptr;
};

}  // namespace tvk::ui
