#pragma once
// The two commands that act on the whole thumbdrive: a new volume label, and a format
// after which the TAVRIN folder is made again. Both use the drive the last scan found
// and scan again afterwards.

#include <string>

#include "app/Context.h"
#include "drive/ScanForUSBs.h"

namespace tvk {

ScanOutcome btnRenameVol_Click(Context& ctx);
ScanOutcome mnuFileFormat_Click(Context& ctx);

// The label the rename prompt's answer becomes: its first 11 characters, upper-cased.
std::string volumeLabelFromAnswer(const std::string& answer);

}  // namespace tvk
