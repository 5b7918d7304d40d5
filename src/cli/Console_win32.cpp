// windows.h first: shellapi.h needs its definitions.
#include <windows.h>

#include <shellapi.h>

#include "cli/Console.h"

namespace tvk::cli {

namespace {

std::string toUtf8(const wchar_t* text) {
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (n <= 1) return {};
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    out.resize(static_cast<std::size_t>(n - 1));
    return out;
}

}  // namespace

// argv holds the arguments in the ANSI code page, where "Café" may survive but "Ñ" in a
// Greek or Japanese setting does not; the wide command line holds them as typed.
std::vector<std::string> commandLineArguments(int, char**) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> args;
    for (int i = 1; wide && i < count; ++i) args.push_back(toUtf8(wide[i]));
    LocalFree(wide);
    return args;
}

void useUtf8Console() {
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
}

}  // namespace tvk::cli
