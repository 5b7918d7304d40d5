#include <sys/statvfs.h>

#include <cerrno>

#include "app/DiskSpace.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

DiskSpace systemDiskSpace(const std::filesystem::path& folder) {
    struct statvfs fs {};
    if (::statvfs(folder.c_str(), &fs) != 0)
        throw RuntimeError(classicNumberForErrno(errno), "free space of " + pathToUtf8(folder));
    DiskSpace space;
    space.unit = fs.f_frsize != 0 ? fs.f_frsize : fs.f_bsize;
    space.available = static_cast<std::uintmax_t>(fs.f_bavail) * space.unit;
    space.readOnly = (fs.f_flag & ST_RDONLY) != 0;
    return space;
}

}  // namespace tvk
