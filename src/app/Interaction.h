#pragma once
// Everything a command shows to or asks of the user. The window implements it with
// message boxes, prompts, the status bar and the progress bar; tvk on the console; the
// tests with a scripted double that records every box.

#include <optional>
#include <string>

namespace tvk {

enum class Buttons {
    Ok = 0,
    OkCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5
};
enum class Icon { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };
enum class Answer { Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

const char* answerName(Answer answer);                          // "OK", "Cancel", "Abort", ...
std::optional<Answer> answerFromName(const std::string& name);  // case-insensitive

struct Message {
    std::string title;
    std::string text;  // line breaks are bare CRs, as the program builds them
    Buttons buttons = Buttons::Ok;
    Icon icon = Icon::None;
    int defaultButton = 1;  // 1-based, as the box's style counts them

    // The classic style value: buttons + icon + (defaultButton - 1) * 256.
    int style() const;
    // The button the box preselects.
    Answer defaultAnswer() const;
};

// The status bar has three panels, numbered from 1 as the program numbers them.
enum class StatusPanel { Progress = 1, Second = 2, Drive = 3 };

class Interaction {
  public:
    virtual ~Interaction() = default;

    virtual Answer message(const Message& box) = 0;
    // One-line text prompt; nullopt when the user cancels (an empty answer is "").
    virtual std::optional<std::string> prompt(const std::string& title, const std::string& text,
                                              const std::string& initial = {}) = 0;

    virtual void setStatus(StatusPanel panel, const std::string& text) = 0;
    virtual void showProgress(int maximum) = 0;
    virtual void setProgress(int value) = 0;
    virtual void hideProgress() = 0;
    // Lets the window handle pending events during a long command.
    virtual void processEvents() = 0;

    // Convenience for the common OK box.
    Answer inform(const std::string& title, const std::string& text, Icon icon = Icon::None);
};

// Answers every box with its default and every prompt with nothing; for code paths that
// must not show anything.
class SilentInteraction : public Interaction {
  public:
    Answer message(const Message& box) override { return box.defaultAnswer(); }
    std::optional<std::string> prompt(const std::string&, const std::string&,
                                      const std::string&) override {
        return std::nullopt;
    }
    void setStatus(StatusPanel, const std::string&) override {}
    void showProgress(int) override {}
    void setProgress(int) override {}
    void hideProgress() override {}
    void processEvents() override {}
};

}  // namespace tvk
