#include "support/TempTree.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "app/Text.h"

namespace tvk::test {

TempTree::TempTree() : root_(makeTempFolder("tvktest-")) {}

TempTree::~TempTree() {
    std::error_code ec;
    // A test may leave read-only folders behind; make them writable so they can go.
    for (auto it = std::filesystem::recursive_directory_iterator(root_, ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
        std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ec);
    }
    std::filesystem::remove_all(root_, ec);
}

std::filesystem::path TempTree::path(std::string_view relative) const {
    return relative.empty() ? root_ : root_ / pathFromUtf8(relative);
}

std::filesystem::path TempTree::write(std::string_view relative, std::string_view bytes) const {
    const auto p = path(relative);
    std::filesystem::create_directories(p.parent_path());
    writeFile(p, bytes);
    return p;
}

std::filesystem::path TempTree::mkdir(std::string_view relative) const {
    const auto p = path(relative);
    std::filesystem::create_directories(p);
    return p;
}

std::string TempTree::read(std::string_view relative) const {
    return readFile(path(relative));
}

bool TempTree::exists(std::string_view relative) const {
    return std::filesystem::exists(path(relative));
}

std::vector<std::string> TempTree::list(std::string_view relative) const {
    return listNames(path(relative));
}

std::vector<std::string> listNames(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder))
        names.push_back(fileNameUtf8(e.path()));
    std::sort(names.begin(), names.end());
    return names;
}

void put(const std::filesystem::path& folder, const Files& files) {
    for (const auto& [name, bytes] : files) {
        const auto file = folder / pathFromUtf8(name);
        std::filesystem::create_directories(file.parent_path());
        // A changed file is made anew: fusefat cannot overwrite one in place (it leaves a
        // chain that reads short).
        std::filesystem::remove(file);
        writeFile(file, bytes);
    }
}

Files snapshot(const std::filesystem::path& folder) {
    Files files;
    if (!std::filesystem::is_directory(folder)) return files;
    for (const auto& e : std::filesystem::recursive_directory_iterator(folder))
        if (e.is_regular_file() && !startsWith(fileNameUtf8(e.path()), "."))
            files[pathToUtf8(std::filesystem::relative(e.path(), folder).generic_u8string())] =
                readFile(e.path());
    return files;
}

std::vector<std::string> names(const Files& files) {
    std::vector<std::string> out;
    for (const auto& [name, bytes] : files) out.push_back(name);
    return out;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void writeFile(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const auto bar = list.find('|');
        parts.emplace_back(list.substr(0, bar));
        list = bar == std::string_view::npos ? std::string_view() : list.substr(bar + 1);
    }
    return parts;
}

std::vector<std::pair<std::string, std::string>> pairs(std::string_view list) {
    std::vector<std::pair<std::string, std::string>> out;
    for (const auto& part : split(list)) {
        const auto arrow = part.find('>');
        out.emplace_back(part.substr(0, arrow), part.substr(arrow + 1));
    }
    return out;
}

ScopedEnv::ScopedEnv(std::string name, const std::string& value) : name_(std::move(name)) {
    if (const char* v = std::getenv(name_.c_str())) {
        had_ = true;
        old_ = v;
    }
    setEnv(name_, value);
}

ScopedEnv::~ScopedEnv() {
    if (had_) {
        setEnv(name_, old_);
    } else {
        unsetEnv(name_);
    }
}

ProgramRun runTvk(const std::vector<std::string>& args, const ProgramOptions& options) {
    ProgramRun run = runProgram(TVK_CLI_PATH, args, options);
    // The C runtime writes CR LF for each line end on Windows; the tests compare lines.
    for (std::size_t at; (at = run.output.find("\r\n")) != std::string::npos;)
        run.output.erase(at, 1);
    return run;
}

}  // namespace tvk::test
