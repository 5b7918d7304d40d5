#include "app/Interaction.h"

#include <array>

#include "app/Text.h"

namespace tvk {

namespace {
constexpr std::array<std::pair<Answer, const char*>, 7> kNames{{
    {Answer::Ok, "OK"},
    {Answer::Cancel, "Cancel"},
    {Answer::Abort, "Abort"},
    {Answer::Retry, "Retry"},
    {Answer::Ignore, "Ignore"},
    {Answer::Yes, "Yes"},
    {Answer::No, "No"},
}};
}  // namespace

const char* answerName(Answer answer) {
    for (const auto& [a, name] : kNames)
        if (a == answer) return name;
    return "?";
}

std::optional<Answer> answerFromName(const std::string& name) {
    const std::string wanted = trimWhitespace(name);
    for (const auto& [a, n] : kNames)
        if (iequals(wanted, n)) return a;
    return std::nullopt;
}

int Message::style() const {
    return static_cast<int>(buttons) + static_cast<int>(icon) + (defaultButton - 1) * 256;
}

Answer Message::defaultAnswer() const {
    const int i = defaultButton - 1;
    switch (buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::OkCancel:
            return i == 1 ? Answer::Cancel : Answer::Ok;
        case Buttons::AbortRetryIgnore:
            return i == 1 ? Answer::Retry : i == 2 ? Answer::Ignore : Answer::Abort;
        case Buttons::YesNoCancel:
            return i == 1 ? Answer::No : i == 2 ? Answer::Cancel : Answer::Yes;
        case Buttons::YesNo:
            return i == 1 ? Answer::No : Answer::Yes;
        case Buttons::RetryCancel:
            return i == 1 ? Answer::Cancel : Answer::Retry;
    }
    return Answer::Ok;
}

Answer Interaction::inform(const std::string& title, const std::string& text, Icon icon) {
    return message(Message{title, text, Buttons::Ok, icon, 1});
}

}  // namespace tvk
