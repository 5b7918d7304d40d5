#pragma once
// Runs a helper program (mkfs.fat, fatlabel, fusefat, ...) without a shell and
// collects what it printed.

#include <string>
#include <vector>

namespace tvk {

struct ProcessResult {
    int exitCode = -1;   // -1 when it could not be started or was killed
    std::string output;  // standard output and standard error together
    bool ok() const { return exitCode == 0; }
};

ProcessResult runProcess(const std::vector<std::string>& argv);

}  // namespace tvk
