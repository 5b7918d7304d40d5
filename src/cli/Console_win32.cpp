// windows.h first: shellapi.h needs its definitions.
#include <windows.h>

#include <shellapi.h>

#include "app/Text.h"
#include "cli/Console.h"

namespace tvk::cli {

// argv holds the arguments in the ANSI code page (Windows-1252 on most users' machines),
// not UTF-8, and loses what that page cannot show; the wide command line holds them as
// typed.
std::vector<std::string> commandLineArguments(int, char**) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> args;
    for (int i = 1; wide && i < count; ++i)
        args.push_back(pathToUtf8(std::filesystem::path(wide[i])));
    LocalFree(wide);
    return args;
}

void useUtf8Console() {
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
}

}  // namespace tvk::cli
