#include "app/MountRules.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

namespace fs = std::filesystem;

namespace {

std::mutex lock;
std::vector<AppliedRules>& mounts() {
    static std::vector<AppliedRules> all;
    return all;
}

bool isUnder(const fs::path& file, const fs::path& folder) {
    const auto [f, _] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return f == folder.end() || (std::next(f) == folder.end() && f->empty());
}

void forget(const fs::path& mountDir) {
    auto& all = mounts();
    const fs::path dir = mountDir.lexically_normal();
    all.erase(std::remove_if(all.begin(), all.end(),
                             [&](const AppliedRules& m) { return m.mountDir == dir; }),
              all.end());
}

}  // namespace

void setMountRules(const fs::path& mountDir, MountRules rules) {
    std::lock_guard guard(lock);
    forget(mountDir);
    mounts().push_back({mountDir.lexically_normal(), std::move(rules)});
}

void forgetMountRules(const fs::path& mountDir) {
    std::lock_guard guard(lock);
    forget(mountDir);
}

std::optional<AppliedRules> mountRulesFor(const fs::path& file) {
    std::lock_guard guard(lock);
    if (mounts().empty()) return std::nullopt;
    const fs::path f = file.lexically_normal();
    for (const auto& m : mounts())
        if (isUnder(f, m.mountDir)) return m;
    return std::nullopt;
}

void checkNameStorable(const fs::path& file) {
    const auto applied = mountRulesFor(file);
    if (!applied || !applied->rules.asciiNamesOnly) return;
    const std::string name = fileNameUtf8(file);
    if (std::any_of(name.begin(), name.end(), [](char c) { return (c & 0x80) != 0; }))
        throw RuntimeError(kErrBadFileNameOrNumber,
                           pathToUtf8(file) + ": this drive stores only ASCII names");
}

}  // namespace tvk
