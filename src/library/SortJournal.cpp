#include "library/SortJournal.h"

#include <unordered_set>

#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"

namespace tvk {

namespace {

constexpr std::string_view kFirstLine = "Tavrin File Manager sort journal 1";
constexpr std::string_view kUnpacking = "Unpacking";
constexpr std::string_view kPacking = "Packing";

std::vector<std::string> splitFields(std::string_view line) {
    std::vector<std::string> fields;
    for (std::size_t start = 0;;) {
        const std::size_t tab = line.find('\t', start);
        fields.emplace_back(line.substr(start, tab == std::string_view::npos ? tab : tab - start));
        if (tab == std::string_view::npos) return fields;
        start = tab + 1;
    }
}

std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find(kCrLf);
        if (end == std::string_view::npos) {
            lines.push_back(text);  // no line end: cut short
            break;
        }
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end + kCrLf.size());
    }
    return lines;
}

bool legalName(const std::string& name) {
    return !name.empty() && name.find_first_of("/\\") == std::string::npos && name != "." &&
           name != "..";
}

}  // namespace

std::string journalText(const SortJournal& journal) {
    std::string text(kFirstLine);
    text += kCrLf;
    text += "Volume\t" + journal.volumeName + "\t" + journal.serialHex + std::string(kCrLf);
    text += "Stage\t" + std::string(journal.stage == SortStage::Unpacking ? kUnpacking : kPacking) +
            std::string(kCrLf);
    text += "Moves\t" + std::to_string(journal.moves.size()) + std::string(kCrLf);
    for (const auto& m : journal.moves)
        text +=
            "Move\t" + m.oldName + "\t" + m.temporaryName + "\t" + m.newName + std::string(kCrLf);
    text += "End";
    text += kCrLf;
    return text;
}

std::optional<SortJournal> parseSortJournal(std::string_view text) {
    const auto lines = splitLines(text);
    if (lines.size() < 5 || lines.front() != kFirstLine || lines.back() != "End") return {};
    SortJournal journal;
    const auto volume = splitFields(lines[1]);
    const auto stage = splitFields(lines[2]);
    const auto count = splitFields(lines[3]);
    if (volume.size() != 3 || volume[0] != "Volume" || stage.size() != 2 || stage[0] != "Stage" ||
        count.size() != 2 || count[0] != "Moves" || count[1] != std::to_string(lines.size() - 5))
        return {};
    journal.volumeName = volume[1];
    journal.serialHex = volume[2];
    if (stage[1] == kUnpacking)
        journal.stage = SortStage::Unpacking;
    else if (stage[1] == kPacking)
        journal.stage = SortStage::Packing;
    else
        return {};
    for (std::size_t i = 4; i + 1 < lines.size(); ++i) {
        auto f = splitFields(lines[i]);
        if (f.size() != 4 || f[0] != "Move" || !legalName(f[1]) || !legalName(f[2]) ||
            !legalName(f[3]))
            return {};
        journal.moves.push_back({std::move(f[1]), std::move(f[2]), std::move(f[3])});
    }
    return journal;
}

std::filesystem::path sortingFolder(const Paths& paths) {
    return paths.libraryRoot / "FileSorting";
}

std::filesystem::path sortJournalFile(const Paths& paths, const ThumbDriveState& drive) {
    return sortingFolder(paths) /
           pathFromUtf8(mirrorFolderName(drive.volumeName, drive.serialHex) + ".txt");
}

const std::string& nameAt(const SortMove& move, SortPlace place) {
    switch (place) {
        case SortPlace::Old:
            return move.oldName;
        case SortPlace::Temporary:
            return move.temporaryName;
        case SortPlace::New:
            break;
    }
    return move.newName;
}

std::optional<std::vector<SortPlace>> locateSortedFiles(const SortJournal& journal,
                                                        const std::vector<std::string>& entries) {
    const std::unordered_set<std::string> present(entries.begin(), entries.end());
    const SortPlace settled =
        journal.stage == SortStage::Unpacking ? SortPlace::Old : SortPlace::New;
    std::vector<SortPlace> places;
    places.reserve(journal.moves.size());
    for (const auto& move : journal.moves) {
        const bool atTemporary = present.count(move.temporaryName) != 0;
        const bool atSettled = present.count(nameAt(move, settled)) != 0;
        if (atTemporary == atSettled) return {};
        places.push_back(atTemporary ? SortPlace::Temporary : settled);
    }
    return places;
}

std::vector<std::string> folderEntries(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code ec;
    std::filesystem::directory_iterator it(folder, ec);
    for (; !ec && it != std::filesystem::directory_iterator(); it.increment(ec))
        names.push_back(fileNameUtf8(it->path()));
    throwIfError(ec, pathToUtf8(folder));
    return names;
}

}  // namespace tvk
