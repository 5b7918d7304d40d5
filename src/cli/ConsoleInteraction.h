#pragma once
// tvk's Interaction: boxes are printed as "[TITLE] text" and answered from standard
// input by button name, or all at once with --yes / --no. Without an answer (standard
// input at its end) every box takes the cautious answer, as --no does.

#include <cstdio>
#include <deque>
#include <iosfwd>
#include <optional>
#include <string>

#include "app/Interaction.h"

namespace tvk::cli {

enum class AutoAnswer { None, Yes, No };

class ConsoleInteraction : public Interaction {
  public:
    ConsoleInteraction(std::istream& in, std::ostream& out, std::ostream& err);

    AutoAnswer autoAnswer = AutoAnswer::None;
    bool showStatus = false;  // --verbose: status texts on standard error
    // Answers for the next prompts, given on the command line (tvk rename-volume LABEL).
    std::deque<std::string> promptAnswers;

    Answer message(const Message& box) override;
    std::optional<std::string> prompt(const std::string& title, const std::string& text,
                                      const std::string& initial) override;
    void setStatus(StatusPanel panel, const std::string& text) override;
    void showProgress(int) override {}
    void setProgress(int) override {}
    void hideProgress() override {}
    void processEvents() override {}

    std::ostream& out() { return out_; }
    std::ostream& err() { return err_; }

    // The affirmative and the cautious answer a box of these buttons allows.
    static Answer yesAnswer(Buttons buttons);
    static Answer noAnswer(Buttons buttons);

  private:
    std::istream& in_;
    std::ostream& out_;
    std::ostream& err_;
};

}  // namespace tvk::cli
