#include "app/System.h"

#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

std::filesystem::path System::currentDirectory() {
    std::error_code ec;
    auto p = std::filesystem::current_path(ec);
    return ec ? std::filesystem::path(".") : p;
}

void System::setCurrentDirectory(const std::filesystem::path& dir) {
    std::error_code ec;
    std::filesystem::current_path(dir, ec);
    throwIfError(ec, pathToUtf8(dir));
}

std::filesystem::path System::stateFolder() {
    return {};
}

}  // namespace tvk
