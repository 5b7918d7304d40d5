#include "app/Version.h"

#include "app/Text.h"

namespace tvk {

std::string programVersionText() {
    return zeroPad(kVersionMajor, 4) + "." + zeroPad(kVersionMinor, 4) + "." +
           zeroPad(kVersionRevision, 4);
}

std::string programVersionUnpadded() {
    return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
           std::to_string(kVersionRevision);
}

}  // namespace tvk
