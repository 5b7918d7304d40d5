#pragma once
// TEMPORARY stand-in for the organ-file information text (organfiles/DisplayFileInfo)
// until that lands; shows only what any file has.

#include <chrono>
#include <filesystem>
#include <string>

#include "app/Context.h"
#include "app/Text.h"

namespace tvk {

inline std::string DisplayFileInfo(Context&, const std::string& fileName) {
    if (fileName.empty()) return {};
    const auto size = std::filesystem::file_size(pathFromUtf8(fileName));
    return "File Size: " + std::to_string(size / 1000) + "KB";
}

}  // namespace tvk
