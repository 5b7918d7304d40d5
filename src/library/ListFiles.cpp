#include "library/ListFiles.h"

#include "app/FileIO.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "library/Selection.h"

namespace tvk {

std::filesystem::path listFolder(const MainState& state, ListControl list) {
    if (list == ListControl::flbUSB)
        return state.drive.present ? state.drive.tavrinFolder() : std::filesystem::path();
    return state.docsFolder;
}

ListSelection activeSelection(const MainState& state) {
    return {state.activeList, listFolder(state, state.activeList), state.selected};
}

void refreshLists(MainState& state) {
    // The redrawn lists have lost their selection.
    forgetSelection(state);
    if (state.refreshLists) state.refreshLists();
}

bool isCaseOnlyRename(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::string a = fileNameUtf8(from), b = fileNameUtf8(to);
    if (a == b || utf8ToUpper(a) != utf8ToUpper(b) || from.parent_path() != to.parent_path())
        return false;
    // FUSE drivers give each spelling its own inode, so the folder's own entries decide:
    // a file of exactly the new name is another file.
    std::error_code ec;
    for (std::filesystem::directory_iterator it(from.parent_path(), ec), end; !ec && it != end;
         it.increment(ec))
        if (fileNameUtf8(it->path()) == b) return false;
    return !ec;
}

void moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (!isCaseOnlyRename(from, to)) {
        renameNoReplace(from, to);
        return;
    }
    const auto temp = temporaryNameFor(to);
    renameNoReplace(from, temp);
    try {
        renameNoReplace(temp, to);
    } catch (...) {
        std::error_code ec;
        std::filesystem::rename(temp, from, ec);  // back under its old name
        throw;
    }
}

void requireNameInFolder(std::string_view name) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of("/\\") != std::string_view::npos)
        Routine::raise(kErrBadFileNameOrNumber, std::string(name));
}

}  // namespace tvk
