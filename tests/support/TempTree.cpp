#include "support/TempTree.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "app/Text.h"

namespace tvk::test {

TempTree::TempTree() {
    std::string templ = (std::filesystem::temp_directory_path() / "tvktest-XXXXXX").string();
    if (!mkdtemp(templ.data())) throw std::runtime_error("mkdtemp failed");
    root_ = templ;
}

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

std::string TempTree::read(std::string_view relative) const { return readFile(path(relative)); }

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
    setenv(name_.c_str(), value.c_str(), 1);
}

ScopedEnv::~ScopedEnv() {
    if (had_) {
        setenv(name_.c_str(), old_.c_str(), 1);
    } else {
        unsetenv(name_.c_str());
    }
}

int runCommand(const std::string& command, std::string* output) {
    std::FILE* p = popen((command + " 2>&1").c_str(), "r");
    if (!p) return -1;
    std::array<char, 4096> buf{};
    std::string out;
    std::size_t n;
    while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) out.append(buf.data(), n);
    const int status = pclose(p);
    if (output) *output = out;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool haveTool(const std::string& tool) {
    return runCommand("command -v " + tool + " >/dev/null") == 0;
}

}  // namespace tvk::test
