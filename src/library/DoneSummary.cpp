#include "library/DoneSummary.h"

#include "library/TransferCommands.h"

namespace tvk {

namespace {

std::string files(std::size_t n) {
    return std::to_string(n) + (n == 1 ? " file" : " files");
}

}  // namespace

std::string doneSummary(const std::string& command, std::size_t copied, const std::string& where,
                        std::size_t notCopied) {
    std::string text = command + ": " + files(copied) + " copied to " + where;
    if (notCopied > 0) text += ", " + std::to_string(notCopied) + " not copied";
    return text;
}

std::string updateSummary(const TransferReport& report) {
    return "Update: " + std::to_string(report.copied.size()) + " copied, " +
           std::to_string(report.unchanged.size()) + " unchanged, " +
           std::to_string(report.removed.size()) + " to the recycle bin";
}

}  // namespace tvk
