#include <windows.h>

#include <random>
#include <stdexcept>

#include "app/Paths.h"
#include "app/Text.h"
#include "support/TempTree.h"

namespace tvk::test {

namespace {

std::wstring wide(const std::string& utf8) {
    return pathFromUtf8(utf8).wstring();
}

// One argument as CommandLineToArgvW and the C runtime split it again: quoted when it
// holds blanks or quotes, backslashes doubled only where a quote follows them.
void appendQuoted(std::wstring& line, const std::wstring& arg) {
    if (!line.empty()) line += L' ';
    if (!arg.empty() && arg.find_first_of(L" \t\"") == std::wstring::npos) {
        line += arg;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : arg) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        line.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
        backslashes = 0;
        line += c;
    }
    line.append(backslashes * 2, L'\\');
    line += L'"';
}

// The current environment with SystemDrive and HOMEPATH pointing at `home`.
std::wstring environmentWithHome(const std::filesystem::path& home) {
    const std::wstring h = home.wstring();
    std::wstring block;
    wchar_t* env = GetEnvironmentStringsW();
    for (const wchar_t* p = env; *p; p += wcslen(p) + 1) {
        const std::wstring entry(p);
        if (_wcsnicmp(p, L"SystemDrive=", 12) == 0 || _wcsnicmp(p, L"HOMEPATH=", 9) == 0) continue;
        block += entry + L'\0';
    }
    FreeEnvironmentStringsW(env);
    block += L"SystemDrive=" + h.substr(0, 2) + L'\0';
    block += L"HOMEPATH=" + h.substr(2) + L'\0';
    return block;
}

struct Handle {
    HANDLE h = nullptr;
    ~Handle() { reset(); }
    void reset() {
        if (h) CloseHandle(h);
        h = nullptr;
    }
};

}  // namespace

std::filesystem::path makeTempFolder(std::string_view prefix) {
    std::random_device seed;
    std::mt19937 random(seed());
    for (int attempt = 0; attempt < 100; ++attempt) {
        const auto folder = std::filesystem::temp_directory_path() /
                            (std::string(prefix) + std::to_string(random() % 1000000000u));
        if (std::filesystem::create_directory(folder)) return folder;
    }
    throw std::runtime_error("no free temporary folder name");
}

void setEnv(const std::string& name, const std::string& value) {
    SetEnvironmentVariableW(wide(name).c_str(), wide(value).c_str());
    _wputenv_s(wide(name).c_str(), wide(value).c_str());
}

void unsetEnv(const std::string& name) {
    SetEnvironmentVariableW(wide(name).c_str(), nullptr);
    _wputenv_s(wide(name).c_str(), L"");
}

int runCommand(const std::string&, std::string* output) {
    if (output) *output = "no POSIX shell on Windows";
    return -1;
}

bool haveTool(const std::string&) {
    return false;
}

ProgramRun runProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
                      const ProgramOptions& options) {
    std::wstring line;
    appendQuoted(line, program.wstring());
    for (const auto& a : args) appendQuoted(line, wide(a));

    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    Handle inRead, inWrite, outRead, outWrite;
    if (!CreatePipe(&inRead.h, &inWrite.h, &inherit, 0) ||
        !CreatePipe(&outRead.h, &outWrite.h, &inherit, 0))
        return {};
    SetHandleInformation(inWrite.h, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(outRead.h, HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOW si{};
    si.cb = sizeof si;
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdInput = inRead.h;
    si.hStdOutput = outWrite.h;
    si.hStdError = outWrite.h;
    std::wstring env = options.home ? environmentWithHome(*options.home) : std::wstring();
    PROCESS_INFORMATION pi{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                        options.home ? env.data() : nullptr, nullptr, &si, &pi))
        return {-1, "CreateProcess failed: " + std::to_string(GetLastError())};
    Handle process{pi.hProcess}, thread{pi.hThread};
    inRead.reset();
    outWrite.reset();
    // Inputs are a few answers: they fit in the pipe, so writing first cannot block.
    DWORD n = 0;
    if (!options.input.empty())
        WriteFile(inWrite.h, options.input.data(), static_cast<DWORD>(options.input.size()), &n,
                  nullptr);
    inWrite.reset();

    ProgramRun run;
    char buf[4096];
    while (ReadFile(outRead.h, buf, sizeof buf, &n, nullptr) && n > 0) run.output.append(buf, n);
    WaitForSingleObject(process.h, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.h, &code);
    run.exitCode = static_cast<int>(code);
    return run;
}

void forgetInstallationRecord() {
    for (REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY})
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, wide(kUninstallKey).c_str(), view, 0);
}

ExclusiveHold::ExclusiveHold(const std::filesystem::path& file) {
    const HANDLE h = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h != INVALID_HANDLE_VALUE) handle_ = h;
}

ExclusiveHold::~ExclusiveHold() {
    if (handle_) CloseHandle(handle_);
}

}  // namespace tvk::test
