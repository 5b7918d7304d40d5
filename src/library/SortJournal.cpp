#include "library/SortJournal.h"

#include <charconv>
#include <deque>
#include <unordered_map>
#include <unordered_set>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/ScanForUSBs.h"

namespace tvk {

namespace {

constexpr std::string_view kFirstLine = "Tavrin File Manager sort journal 2";
// Journals of the version that sent every file through a temporary name.
constexpr std::string_view kFirstLineTwoHalves = "Tavrin File Manager sort journal 1";

std::vector<std::string> splitFields(std::string_view line) {
    std::vector<std::string> fields;
    for (std::size_t start = 0;;) {
        const std::size_t tab = line.find('\t', start);
        fields.emplace_back(line.substr(start, tab == std::string_view::npos ? tab : tab - start));
        if (tab == std::string_view::npos) return fields;
        start = tab + 1;
    }
}

// Whole lines only: a last line without its line end was cut short.
std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (std::size_t end; (end = text.find(kCrLf)) != std::string_view::npos;) {
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end + kCrLf.size());
    }
    return lines;
}

bool legalName(const std::string& name) {
    return !name.empty() && name.find_first_of("/\\") == std::string::npos && name != "." &&
           name != "..";
}

std::optional<std::size_t> number(const std::string& text) {
    std::size_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return {};
    return value;
}

// "Name\tCOUNT" followed by COUNT lines of `fields` fields starting with `item`.
std::optional<std::vector<std::vector<std::string>>> section(
    const std::vector<std::string_view>& lines, std::size_t& at, std::string_view name,
    std::string_view item, std::size_t fields) {
    if (at >= lines.size()) return {};
    const auto head = splitFields(lines[at++]);
    const auto count = head.size() == 2 && head[0] == name ? number(head[1]) : std::nullopt;
    if (!count || *count > lines.size() - at) return {};
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < *count; ++i) {
        auto f = splitFields(lines[at++]);
        if (f.size() != fields || f[0] != item) return {};
        rows.push_back(std::move(f));
    }
    return rows;
}

std::optional<SortJournal> parseTwoHalves(const std::vector<std::string_view>& lines,
                                          SortJournal journal) {
    // Stage, then the moves; every file went to its temporary name, then all to new ones.
    const auto stage = splitFields(lines[2]);
    std::size_t at = 3;
    const auto moves = section(lines, at, "Moves", "Move", 4);
    if (stage.size() != 2 || stage[0] != "Stage" ||
        (stage[1] != "Unpacking" && stage[1] != "Packing") || !moves || at + 1 != lines.size() ||
        lines[at] != "End")
        return {};
    for (const auto& f : *moves) {
        if (!legalName(f[1]) || !legalName(f[2]) || !legalName(f[3])) return {};
        journal.moves.push_back({f[1], f[2], f[3]});
    }
    for (const SortPlace to : {SortPlace::Temporary, SortPlace::New})
        for (std::size_t i = 0; i < journal.moves.size(); ++i) journal.steps.push_back({i, to});
    journal.done = stage[1] == "Packing" ? journal.moves.size() : 0;
    return journal;
}

}  // namespace

std::string journalText(const SortJournal& journal) {
    const std::string end(kCrLf);
    std::string text(kFirstLine);
    text += end;
    text += "Volume\t" + journal.volumeName + "\t" + journal.serialHex + end;
    text += "Copies\t" + journal.copiesFolder + end;
    text += "Moves\t" + std::to_string(journal.moves.size()) + end;
    for (const auto& m : journal.moves)
        text += "Move\t" + m.oldName + "\t" + m.temporaryName + "\t" + m.newName + end;
    text += "Steps\t" + std::to_string(journal.steps.size()) + end;
    for (const auto& s : journal.steps)
        text += "Step\t" + std::to_string(s.move) + "\t" +
                (s.to == SortPlace::Temporary ? "Temporary" : "New") + end;
    return text + "End" + end;
}

std::string journalProgressLine(std::size_t done) {
    return "Done\t" + std::to_string(done) + std::string(kCrLf);
}

std::optional<SortJournal> parseSortJournal(std::string_view text) {
    const auto lines = splitLines(text);
    if (lines.size() < 3) return {};
    SortJournal journal;
    const auto volume = splitFields(lines[1]);
    if (volume.size() != 3 || volume[0] != "Volume") return {};
    journal.volumeName = volume[1];
    journal.serialHex = volume[2];
    if (lines[0] == kFirstLineTwoHalves) return parseTwoHalves(lines, std::move(journal));
    if (lines[0] != kFirstLine) return {};
    const auto copies = splitFields(lines[2]);
    if (copies.size() != 2 || copies[0] != "Copies" || !legalName(copies[1])) return {};
    journal.copiesFolder = copies[1];
    std::size_t at = 3;
    const auto moves = section(lines, at, "Moves", "Move", 4);
    const auto steps = moves ? section(lines, at, "Steps", "Step", 3) : std::nullopt;
    if (!steps || at >= lines.size() || lines[at++] != "End") return {};
    for (const auto& f : *moves) {
        if (!legalName(f[1]) || (!f[2].empty() && !legalName(f[2])) || !legalName(f[3])) return {};
        journal.moves.push_back({f[1], f[2], f[3]});
    }
    for (const auto& f : *steps) {
        const auto move = number(f[1]);
        const bool temporary = f[2] == "Temporary";
        if (!move || *move >= journal.moves.size() || (!temporary && f[2] != "New") ||
            (temporary && journal.moves[*move].temporaryName.empty()))
            return {};
        journal.steps.push_back({*move, temporary ? SortPlace::Temporary : SortPlace::New});
    }
    for (; at < lines.size(); ++at) {
        const auto f = splitFields(lines[at]);
        const auto done = f.size() == 2 && f[0] == "Done" ? number(f[1]) : std::nullopt;
        if (!done || *done > journal.steps.size()) return {};
        journal.done = *done;
    }
    return journal;
}

std::vector<SortStep> planSortSteps(std::vector<SortMove>& moves,
                                    const std::vector<std::string>& taken,
                                    const std::filesystem::path& folder) {
    std::unordered_set<std::string> names(taken.begin(), taken.end());
    std::unordered_map<std::string, std::size_t> waitingFor;  // a name, the move that wants it
    for (std::size_t i = 0; i < moves.size(); ++i) waitingFor[utf8ToUpper(moves[i].newName)] = i;
    std::vector<SortPlace> places(moves.size(), SortPlace::Old);
    std::vector<SortStep> steps;
    std::deque<std::size_t> ready;
    for (std::size_t i = 0; i < moves.size(); ++i)
        if (!names.count(utf8ToUpper(moves[i].newName))) ready.push_back(i);
    const auto rename = [&](std::size_t i, SortPlace to, const std::string& target) {
        const std::string left = utf8ToUpper(nameAt(moves[i], places[i]));
        names.erase(left);
        names.insert(utf8ToUpper(target));
        places[i] = to;
        steps.push_back({i, to});
        if (const auto it = waitingFor.find(left); it != waitingFor.end())
            ready.push_back(it->second);
    };
    const auto placeReady = [&] {
        for (; !ready.empty(); ready.pop_front())
            if (places[ready.front()] != SortPlace::New)
                rename(ready.front(), SortPlace::New, moves[ready.front()].newName);
    };
    // What is left after the files whose names come free trades names in cycles: the
    // first file of each steps aside.
    for (std::size_t i = 0; i < moves.size(); ++i) {
        placeReady();
        if (places[i] != SortPlace::Old) continue;
        std::string temporary;
        do {
            temporary = fileNameUtf8(temporaryNameFor(folder / pathFromUtf8(moves[i].oldName)));
        } while (names.count(utf8ToUpper(temporary)));
        moves[i].temporaryName = temporary;
        rename(i, SortPlace::Temporary, temporary);
    }
    placeReady();
    for (std::size_t i = 0; i < moves.size(); ++i)
        if (places[i] != SortPlace::New)  // a new name held by a file that stays
            throw RuntimeError(kErrFileAlreadyExists,
                               pathToUtf8(folder / pathFromUtf8(moves[i].newName)));
    return steps;
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

std::vector<SortPlace> placesBeforeSteps(const SortJournal& journal) {
    std::vector<SortPlace> places(journal.moves.size(), SortPlace::Old), before;
    for (const auto& s : journal.steps) {
        before.push_back(places[s.move]);
        places[s.move] = s.to;
    }
    return before;
}

std::optional<SortPosition> locateSortedFiles(const SortJournal& journal,
                                              const std::vector<std::string>& entries) {
    std::unordered_set<std::string> present;
    for (const auto& e : entries) present.insert(utf8ToUpper(e));
    const auto there = [&](const std::string& name) {
        return !name.empty() && present.count(utf8ToUpper(name)) != 0;
    };
    SortPosition at;
    at.places.assign(journal.moves.size(), SortPlace::Old);
    const std::vector<SortPlace> from = placesBeforeSteps(journal);
    for (at.done = 0; at.done < journal.done; ++at.done)
        at.places[journal.steps[at.done].move] = journal.steps[at.done].to;
    const auto looksDone = [&](std::size_t k) {
        const SortMove& m = journal.moves[journal.steps[k].move];
        return there(nameAt(m, journal.steps[k].to)) && !there(nameAt(m, from[k]));
    };
    // The program may have stopped between a rename and its progress line, either way.
    const std::size_t logged = at.done;
    while (at.done < journal.steps.size() && looksDone(at.done)) {
        at.places[journal.steps[at.done].move] = journal.steps[at.done].to;
        ++at.done;
    }
    if (at.done == logged && at.done > 0) {
        const std::size_t k = at.done - 1;
        const SortMove& m = journal.moves[journal.steps[k].move];
        if (!there(nameAt(m, journal.steps[k].to)) && there(nameAt(m, from[k]))) {
            at.places[journal.steps[k].move] = from[k];
            --at.done;
        }
    }
    // Every name a file still passes through must be its own now, another file's of the
    // journal, or free.
    std::unordered_set<std::string> held;
    for (std::size_t i = 0; i < journal.moves.size(); ++i)
        held.insert(utf8ToUpper(nameAt(journal.moves[i], at.places[i])));
    at.missing.assign(journal.moves.size(), false);
    for (std::size_t i = 0; i < journal.moves.size(); ++i) {
        const SortMove& m = journal.moves[i];
        at.missing[i] = !there(nameAt(m, at.places[i]));
        for (const std::string* name : {&m.oldName, &m.temporaryName, &m.newName})
            if (there(*name) && !held.count(utf8ToUpper(*name))) return {};
    }
    return at;
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
