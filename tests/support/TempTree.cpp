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
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(path(relative)))
        names.push_back(pathToUtf8(e.path().filename()));
    std::sort(names.begin(), names.end());
    return names;
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
