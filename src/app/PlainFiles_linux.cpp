#include "app/PlainFiles.h"

namespace tvk {

bool isHiddenOrSystem(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    return !name.empty() && name[0] == '.' && name != "." && name != "..";
}

}  // namespace tvk
