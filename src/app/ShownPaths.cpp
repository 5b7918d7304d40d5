#include "app/ShownPaths.h"

#include <cctype>

#include "app/Text.h"

namespace tvk {

namespace {

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// A character that would make the text a longer name than the root ("123-1" in "123-10").
bool continuesName(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
}

}  // namespace

std::string shownPath(const ThumbDriveState& drive, const std::filesystem::path& path) {
    return shownText(drive, pathToUtf8(path));
}

std::string shownText(const ThumbDriveState& drive, std::string text) {
    if (drive.shownRoot.empty() || drive.root.empty()) return text;
    std::string root = pathToUtf8(drive.root);
    while (root.size() > 1 && isSeparator(root.back())) root.pop_back();
    for (std::size_t at = text.find(root); at != std::string::npos; at = text.find(root, at)) {
        const std::size_t end = at + root.size();
        // Only the root itself, not a sibling folder whose name starts the same way.
        if (end < text.size() && continuesName(text[end])) {
            at = end;
            continue;
        }
        const std::string shown =
            drive.shownRoot + (end < text.size() && isSeparator(text[end]) ? "" : "/");
        text.replace(at, root.size(), shown);
        at += shown.size();
    }
    return text;
}

}  // namespace tvk
