#pragma once
// The console as tvk meets it: the command line's arguments as UTF-8, and UTF-8 text
// written to it shown as such. One file per platform (Console_linux.cpp,
// Console_win32.cpp).

#include <string>
#include <vector>

namespace tvk::cli {

// The arguments after the program name, as UTF-8.
std::vector<std::string> commandLineArguments(int argc, char** argv);

// Makes the console show the UTF-8 that tvk writes and hand typed answers over as UTF-8.
void useUtf8Console();

}  // namespace tvk::cli
