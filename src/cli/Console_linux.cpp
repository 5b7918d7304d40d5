#include "cli/Console.h"

namespace tvk::cli {

// Arguments arrive as the bytes the user's UTF-8 locale typed.
std::vector<std::string> commandLineArguments(int argc, char** argv) {
    return std::vector<std::string>(argv + 1, argv + argc);
}

void useUtf8Console() {}

}  // namespace tvk::cli
