#include "cli/ConsoleInteraction.h"

#include <iostream>
#include <string>

#include "app/Text.h"

namespace tvk::cli {

namespace {

std::string buttonChoices(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return "OK";
        case Buttons::OkCancel:
            return "OK/Cancel";
        case Buttons::AbortRetryIgnore:
            return "Abort/Retry/Ignore";
        case Buttons::YesNoCancel:
            return "Yes/No/Cancel";
        case Buttons::YesNo:
            return "Yes/No";
        case Buttons::RetryCancel:
            return "Retry/Cancel";
    }
    return "OK";
}

bool allowed(Buttons buttons, Answer a) {
    switch (buttons) {
        case Buttons::Ok:
            return a == Answer::Ok;
        case Buttons::OkCancel:
            return a == Answer::Ok || a == Answer::Cancel;
        case Buttons::AbortRetryIgnore:
            return a == Answer::Abort || a == Answer::Retry || a == Answer::Ignore;
        case Buttons::YesNoCancel:
            return a == Answer::Yes || a == Answer::No || a == Answer::Cancel;
        case Buttons::YesNo:
            return a == Answer::Yes || a == Answer::No;
        case Buttons::RetryCancel:
            return a == Answer::Retry || a == Answer::Cancel;
    }
    return false;
}

}  // namespace

ConsoleInteraction::ConsoleInteraction(std::istream& in, std::ostream& out, std::ostream& err)
    : in_(in), out_(out), err_(err) {}

Answer ConsoleInteraction::yesAnswer(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
        case Buttons::OkCancel:
            return Answer::Ok;
        case Buttons::AbortRetryIgnore:
            return Answer::Ignore;
        case Buttons::YesNoCancel:
        case Buttons::YesNo:
            return Answer::Yes;
        case Buttons::RetryCancel:
            return Answer::Cancel;  // retrying unattended could loop
    }
    return Answer::Ok;
}

Answer ConsoleInteraction::noAnswer(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::OkCancel:
            return Answer::Cancel;
        case Buttons::AbortRetryIgnore:
            return Answer::Abort;
        case Buttons::YesNoCancel:
            return Answer::Cancel;
        case Buttons::YesNo:
            return Answer::No;
        case Buttons::RetryCancel:
            return Answer::Cancel;
    }
    return Answer::Ok;
}

Answer ConsoleInteraction::message(const Message& box) {
    out_ << "[" << box.title << "] " << toDisplayLines(box.text) << "\n";
    Answer answer = noAnswer(box.buttons);
    if (box.buttons == Buttons::Ok) {
        answer = Answer::Ok;
    } else if (autoAnswer == AutoAnswer::Yes) {
        answer = yesAnswer(box.buttons);
    } else if (autoAnswer == AutoAnswer::No) {
        answer = noAnswer(box.buttons);
    } else {
        for (int tries = 0; tries < 5; ++tries) {
            out_ << "(" << buttonChoices(box.buttons) << ")? " << std::flush;
            std::string line;
            if (!std::getline(in_, line)) break;
            const auto a = answerFromName(line);
            if (a && allowed(box.buttons, *a)) {
                answer = *a;
                break;
            }
        }
    }
    out_ << "> " << answerName(answer) << "\n" << std::flush;
    return answer;
}

std::optional<std::string> ConsoleInteraction::prompt(const std::string& title,
                                                      const std::string& text,
                                                      const std::string& initial) {
    out_ << "[" << title << "] " << toDisplayLines(text) << "\n";
    std::optional<std::string> answer;
    if (!promptAnswers.empty()) {
        answer = promptAnswers.front();
        promptAnswers.pop_front();
    } else if (autoAnswer == AutoAnswer::None) {
        std::string line;
        out_ << "? " << std::flush;
        if (std::getline(in_, line)) answer = line;
    }
    out_ << "> " << (answer ? *answer : std::string("(cancelled)")) << "\n" << std::flush;
    return answer;
}

void ConsoleInteraction::setStatus(StatusPanel panel, const std::string& text) {
    if (showStatus && !text.empty())
        err_ << "status " << static_cast<int>(panel) << ": " << toDisplayLines(text) << "\n";
}

}  // namespace tvk::cli
