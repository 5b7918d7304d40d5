#include <windows.h>

#include "app/DiskSpace.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

DiskSpace systemDiskSpace(const std::filesystem::path& folder) {
    wchar_t root[MAX_PATH];
    ULARGE_INTEGER available{};
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, clusters = 0;
    if (!GetVolumePathNameW(folder.c_str(), root, MAX_PATH) ||
        !GetDiskFreeSpaceExW(folder.c_str(), &available, nullptr, nullptr) ||
        !GetDiskFreeSpaceW(root, &sectorsPerCluster, &bytesPerSector, &freeClusters, &clusters))
        throw RuntimeError(classicNumberForWindowsError(GetLastError()),
                           "free space of " + pathToUtf8(folder));
    DiskSpace space;
    space.available = available.QuadPart;
    space.unit = std::uintmax_t(sectorsPerCluster) * bytesPerSector;
    DWORD flags = 0;
    if (GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0))
        space.readOnly = (flags & FILE_READ_ONLY_VOLUME) != 0;
    return space;
}

}  // namespace tvk
