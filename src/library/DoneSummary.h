#pragma once
// The line a finished transfer or paste leaves in status panel 2, so the user sees what
// it did without another box: "Add ALL: 24 files copied to DEMO STICK - 2021ABCD".

#include <cstddef>
#include <string>

namespace tvk {

struct TransferReport;

// "COMMAND: N files copied to WHERE", with ", K not copied" when some were left out.
std::string doneSummary(const std::string& command, std::size_t copied, const std::string& where,
                        std::size_t notCopied = 0);

// "Update: 10 copied, 780 unchanged, 2 to the recycle bin".
std::string updateSummary(const TransferReport& report);

}  // namespace tvk
