#include "app/PlainFiles.h"

#include <algorithm>

#include "app/Text.h"

namespace tvk {

bool isPlainFile(const std::filesystem::path& path) {
    std::error_code ec;
    return std::filesystem::is_regular_file(path, ec) && !isHiddenOrSystem(path);
}

bool lessNoCase(const std::string& a, const std::string& b) {
    const std::string ua = utf8ToUpper(a), ub = utf8ToUpper(b);
    return ua != ub ? ua < ub : a < b;
}

std::vector<std::string> listPlainFiles(const std::filesystem::path& folder,
                                        std::string_view patterns,
                                        const std::vector<std::string>& ignore) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::error_code ec;
        if (!entry.is_regular_file(ec) || isHiddenOrSystem(entry.path())) continue;
        std::string name = fileNameUtf8(entry.path());
        if (std::find(ignore.begin(), ignore.end(), name) != ignore.end()) continue;
        if (matchesPatternList(name, patterns)) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(), lessNoCase);
    return names;
}

}  // namespace tvk
