#include "app/DiskSpace.h"

#include <map>
#include <mutex>

namespace tvk {

namespace {

std::mutex counterLock;
std::map<std::filesystem::path, SpaceCounter>& counters() {
    static std::map<std::filesystem::path, SpaceCounter> registered;
    return registered;
}

bool isWithin(const std::filesystem::path& path, const std::filesystem::path& root) {
    auto p = path.begin();
    for (auto r = root.begin(); r != root.end(); ++r, ++p) {
        if (r->empty()) continue;  // a trailing separator
        if (p == path.end() || *p != *r) return false;
    }
    return true;
}

}  // namespace

void countSpaceWith(const std::filesystem::path& mountDir, SpaceCounter counter) {
    std::lock_guard lock(counterLock);
    counters()[mountDir.lexically_normal()] = std::move(counter);
}

void forgetSpaceCounter(const std::filesystem::path& mountDir) {
    std::lock_guard lock(counterLock);
    counters().erase(mountDir.lexically_normal());
}

DiskSpace diskSpace(const std::filesystem::path& folder) {
    SpaceCounter counter;
    {
        std::lock_guard lock(counterLock);
        const auto wanted = folder.lexically_normal();
        for (const auto& [root, count] : counters())
            if (isWithin(wanted, root)) counter = count;
    }
    return counter ? counter() : systemDiskSpace(folder);
}

}  // namespace tvk
