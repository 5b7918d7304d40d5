#pragma once
// TEMPORARY stand-ins for commands other parts of the program are still adding; each
// goes as soon as the real one is in.

#include <optional>

#include "app/Context.h"
#include "drive/Volumes.h"

namespace tvk::ui::pending {

// The thumbdrive scan: until it is in, no stick is ever accepted.
inline void ScanForUSBs(Context& ctx, const std::optional<DeviceNotice>&) {
    ctx.state.drive.present = false;
    ctx.state.usbPattern = "*.nothing";
}

}  // namespace tvk::ui::pending
