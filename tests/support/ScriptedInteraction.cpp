#include "support/ScriptedInteraction.h"

#include <gtest/gtest.h>

#include "app/Text.h"

namespace tvk::test {

namespace {
// What an unexpected box is answered with: never a Retry that could loop, never a Yes
// that could change files.
Answer cautiousAnswer(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::AbortRetryIgnore:
            return Answer::Abort;
        case Buttons::YesNo:
            return Answer::No;
        default:
            return Answer::Cancel;
    }
}
}  // namespace

ScriptedInteraction::~ScriptedInteraction() {
    for (const Box& box : boxes_)
        ADD_FAILURE() << "expected box [" << box.title << "] never appeared";
    for (const Reply& reply : answers_)
        ADD_FAILURE() << "expected prompt [" << reply.title << "] never appeared";
}

ScriptedInteraction& ScriptedInteraction::expect(std::string title, Answer answer) {
    boxes_.push_back({std::move(title), answer});
    return *this;
}

ScriptedInteraction& ScriptedInteraction::expectPrompt(std::string title,
                                                       std::optional<std::string> answer) {
    answers_.push_back({std::move(title), std::move(answer)});
    return *this;
}

Answer ScriptedInteraction::message(const Message& box) {
    if (onBox) onBox(box);
    shown.push_back(box);
    if (boxes_.empty()) {
        if (!lenient) {
            ADD_FAILURE() << "unexpected box [" << box.title << "] " << toDisplayLines(box.text);
            return cautiousAnswer(box.buttons);
        }
        // The error box's default is Retry, which would repeat a failing step for ever.
        return box.buttons == Buttons::AbortRetryIgnore ? Answer::Ignore : box.defaultAnswer();
    }
    const Box next = boxes_.front();
    boxes_.pop_front();
    EXPECT_EQ(next.title, box.title) << "box text: " << toDisplayLines(box.text);
    return next.answer;
}

std::optional<std::string> ScriptedInteraction::prompt(const std::string& title,
                                                       const std::string& text,
                                                       const std::string&) {
    prompted.push_back(text);
    if (answers_.empty()) {
        if (!lenient) ADD_FAILURE() << "unexpected prompt [" << title << "] " << text;
        return std::nullopt;
    }
    const Reply next = answers_.front();
    answers_.pop_front();
    EXPECT_EQ(next.title, title);
    return next.answer;
}

void ScriptedInteraction::setStatus(StatusPanel panel, const std::string& text) {
    status[panel] = text;
    if (panel == StatusPanel::Progress) progressTexts.push_back(text);
}

void ScriptedInteraction::processEvents() {
    ++eventsPumped;
    if (onEvents) onEvents();
}

void ScriptedInteraction::showProgress(int) {
    progressVisible = true;
    progressValue = 0;
}

void ScriptedInteraction::setProgress(int value) {
    progressValue = value;
    if (onProgress) onProgress(value);
}

void ScriptedInteraction::hideProgress() {
    progressVisible = false;
}

std::vector<std::string> ScriptedInteraction::titles() const {
    std::vector<std::string> out;
    for (const auto& m : shown) out.push_back(m.title);
    return out;
}

std::vector<std::string> ScriptedInteraction::texts() const {
    std::vector<std::string> out;
    for (const auto& m : shown) out.push_back(m.text);
    return out;
}

}  // namespace tvk::test
