#include <cctype>
#include <cstdlib>
#include <ctime>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "app/Trash.h"

namespace tvk {

namespace {

std::string percentEncode(const std::string& path) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : path) {
        if (std::isalnum(c) || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

std::string deletionDate() {
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%dT%H:%M:%S", &tm);
    return buf;
}

}  // namespace

std::filesystem::path homeTrashFolder() {
    if (const char* x = std::getenv("XDG_DATA_HOME"); x && *x) return pathFromUtf8(x) / "Trash";
    const char* home = std::getenv("HOME");
    return pathFromUtf8(home ? home : "/") / ".local" / "share" / "Trash";
}

bool moveToTrash(const std::filesystem::path& path) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path source = fs::absolute(path, ec);
    if (ec || !fs::exists(fs::symlink_status(source, ec))) return false;

    const fs::path trash = homeTrashFolder();
    fs::create_directories(trash / "files", ec);
    fs::create_directories(trash / "info", ec);
    if (ec) return false;

    // A free name in the trash: "name", "name.2", "name.3", ...
    const std::string base = pathToUtf8(source.filename());
    std::string name = base;
    fs::path info;
    for (int n = 2;; ++n) {
        info = trash / "info" / pathFromUtf8(name + ".trashinfo");
        // A new info file claims the name, so two deletions never take one.
        try {
            writeNewFile(info, "[Trash Info]\nPath=" + percentEncode(pathToUtf8(source)) +
                                   "\nDeletionDate=" + deletionDate() + "\n");
            break;
        } catch (const RuntimeError& e) {
            if (e.number() != kErrFileAlreadyExists || n > 10000) return false;
        }
        name = base + "." + std::to_string(n);
    }

    const fs::path target = trash / "files" / pathFromUtf8(name);
    fs::rename(source, target, ec);
    if (ec) {
        // Another file system (a stick): copy into the trash, then remove the original.
        ec.clear();
        fs::copy(source, target, fs::copy_options::recursive, ec);
        if (ec) {
            fs::remove_all(target, ec);
            fs::remove(info, ec);
            return false;
        }
        // The copy in the trash is kept even when removing the original fails part way,
        // so nothing is lost either way.
        fs::remove_all(source, ec);
        if (ec) return false;
    }
    return true;
}

}  // namespace tvk
