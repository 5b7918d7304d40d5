#pragma once
// The tests' Interaction: a queue of the boxes and prompts a command is expected to
// show, with the answer to give each, and a transcript of everything it showed.

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/Interaction.h"

namespace tvk::test {

class ScriptedInteraction : public Interaction {
  public:
    ScriptedInteraction() = default;
    ScriptedInteraction(const ScriptedInteraction&) = delete;
    ScriptedInteraction& operator=(const ScriptedInteraction&) = delete;
    // Fails the running test when a box or prompt it was told to expect never appeared.
    ~ScriptedInteraction() override;

    // The next box must carry this title; it is answered with `answer`.
    ScriptedInteraction& expect(std::string title, Answer answer = Answer::Ok);
    ScriptedInteraction& expectPrompt(std::string title, std::optional<std::string> answer);
    // Boxes not in the script are answered with their default (Ignore for the error box)
    // instead of failing the test; otherwise they fail it and get the cautious answer.
    bool lenient = false;

    Answer message(const Message& box) override;
    std::optional<std::string> prompt(const std::string& title, const std::string& text,
                                      const std::string& initial) override;
    void setStatus(StatusPanel panel, const std::string& text) override;
    void showProgress(int maximum) override;
    void setProgress(int value) override;
    void hideProgress() override;
    void processEvents() override;

    std::vector<Message> shown;                 // every box, in order
    std::vector<std::string> prompted;          // every prompt's text, in order
    std::map<StatusPanel, std::string> status;  // last text of each panel
    std::vector<std::string> progressTexts;     // every text of the progress panel
    bool progressVisible = false;
    int progressValue = 0;
    int eventsPumped = 0;

    // Hooks where a test meddles mid-command (pulls the stick, mends a fault): on every
    // event pump, before every box is answered, at every progress value.
    std::function<void()> onEvents;
    std::function<void(const Message&)> onBox;
    std::function<void(int)> onProgress;

    std::vector<std::string> titles() const;
    std::vector<std::string> texts() const;
    // True when every scripted box and prompt was shown.
    bool done() const { return boxes_.empty() && answers_.empty(); }

  private:
    struct Box {
        std::string title;
        Answer answer;
    };
    struct Reply {
        std::string title;
        std::optional<std::string> answer;
    };
    std::deque<Box> boxes_;
    std::deque<Reply> answers_;
};

}  // namespace tvk::test
