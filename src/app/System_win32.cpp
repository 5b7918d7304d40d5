// Windows: the uninstall key in the registry (64- and 32-bit views), the shell's
// administrator query, a per-user mutex for the single instance, the shell's recycle
// bin, and CreateProcess / ShellExecute for starting programs.

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>

#include <vector>

#include "app/RuntimeError.h"
#include "app/System.h"
#include "app/Text.h"

namespace tvk {

namespace {

std::wstring widen(const std::string& utf8) {
    if (utf8.empty()) return {};
    const int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return out;
}

std::string narrow(const std::wstring& wide) {
    if (wide.empty()) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr,
                                      0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), out.data(), n,
                        nullptr, nullptr);
    return out;
}

HKEY rootKey(RegistryRoot root) {
    return root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

RuntimeError win32Error(DWORD code, const std::string& detail) {
    return RuntimeError::fromErrorCode(std::error_code(static_cast<int>(code), std::system_category()),
                                       detail);
}

std::optional<RegistryValue> queryView(HKEY root, const std::wstring& key, const std::wstring& name,
                                       REGSAM view) {
    HKEY h = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE | view, &h) != ERROR_SUCCESS)
        return std::nullopt;
    DWORD type = 0, size = 0;
    std::optional<RegistryValue> result;
    if (RegQueryValueExW(h, name.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS) {
        if (type == REG_SZ || type == REG_EXPAND_SZ) {
            std::vector<wchar_t> buf(size / sizeof(wchar_t) + 1, L'\0');
            DWORD bytes = static_cast<DWORD>(buf.size() * sizeof(wchar_t));
            if (RegQueryValueExW(h, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buf.data()),
                                 &bytes) == ERROR_SUCCESS)
                result = narrow(std::wstring(buf.data()));  // cut at the first zero
        } else if (type == REG_DWORD) {
            DWORD v = 0, bytes = sizeof v;
            if (RegQueryValueExW(h, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&v), &bytes) ==
                ERROR_SUCCESS)
                result = static_cast<std::uint32_t>(v);
        }
    }
    RegCloseKey(h);
    return result;
}

class WindowsSystem : public System {
public:
    explicit WindowsSystem(std::string commandLine) : commandLine_(std::move(commandLine)) {}
    ~WindowsSystem() override {
        if (mutex_) CloseHandle(mutex_);
    }

    std::optional<std::string> environment(const std::string& name) override {
        const std::wstring wname = widen(name);
        const DWORD n = GetEnvironmentVariableW(wname.c_str(), nullptr, 0);
        if (n == 0) return std::nullopt;
        std::wstring value(n, L'\0');
        const DWORD got = GetEnvironmentVariableW(wname.c_str(), value.data(), n);
        value.resize(got);
        return narrow(value);
    }

    std::string commandLine() override { return commandLine_; }

    bool isAdministrator() override { return IsUserAnAdmin() != FALSE; }

    std::optional<RegistryValue> regQuery(RegistryRoot root, const std::string& key,
                                          const std::string& name) override {
        // The installer may have written either view of the registry.
        for (REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY})
            if (auto v = queryView(rootKey(root), widen(key), widen(name), view)) return v;
        return std::nullopt;
    }

    void regSet(RegistryRoot root, const std::string& key, const std::string& name,
                const RegistryValue& value) override {
        HKEY h = nullptr;
        LONG rc = RegCreateKeyExW(rootKey(root), widen(key).c_str(), 0, nullptr, 0,
                                  KEY_SET_VALUE | KEY_WOW64_64KEY, nullptr, &h, nullptr);
        if (rc != ERROR_SUCCESS) throw win32Error(static_cast<DWORD>(rc), key);
        if (const auto* s = std::get_if<std::string>(&value)) {
            const std::wstring w = widen(*s);
            rc = RegSetValueExW(h, widen(name).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(w.c_str()),
                                static_cast<DWORD>((w.size() + 1) * sizeof(wchar_t)));
        } else {
            const DWORD v = std::get<std::uint32_t>(value);
            rc = RegSetValueExW(h, widen(name).c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&v),
                                sizeof v);
        }
        RegCloseKey(h);
        if (rc != ERROR_SUCCESS) throw win32Error(static_cast<DWORD>(rc), key + "\\" + name);
    }

    bool acquireSingleInstance() override {
        if (mutex_) return true;
        // "Local\" makes it per session (per user); the kernel frees it when a crashed
        // instance's process ends, so a stale lock cannot remain.
        HANDLE m = CreateMutexW(nullptr, TRUE, L"Local\\TavrinFileManager.SingleInstance");
        if (!m) return true;
        if (GetLastError() == ERROR_ALREADY_EXISTS) {
            CloseHandle(m);
            return false;
        }
        mutex_ = m;
        return true;
    }

    bool recycle(const std::filesystem::path& path) override {
        // SHFileOperation wants a list ended by two zero characters.
        std::wstring from = path.wstring();
        from.push_back(L'\0');
        from.push_back(L'\0');
        SHFILEOPSTRUCTW op{};
        op.wFunc = FO_DELETE;
        op.pFrom = from.c_str();
        op.fFlags = FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI;
        return SHFileOperationW(&op) == 0 && !op.fAnyOperationsAborted;
    }

    void runAndWait(const std::string& commandLine, const std::function<void()>& pump) override {
        STARTUPINFOW si{};
        si.cb = sizeof si;
        PROCESS_INFORMATION pi{};
        std::wstring cmd = widen(commandLine);
        if (!CreateProcessW(nullptr, cmd.data(), nullptr, nullptr, TRUE, NORMAL_PRIORITY_CLASS,
                            nullptr, nullptr, &si, &pi))
            throw win32Error(GetLastError(), commandLine);
        CloseHandle(pi.hThread);
        while (WaitForSingleObject(pi.hProcess, 0) == WAIT_TIMEOUT) {
            if (pump) pump();
            Sleep(10);
        }
        CloseHandle(pi.hProcess);
    }

    bool startDetached(const std::filesystem::path& program) override {
        const auto rc = reinterpret_cast<INT_PTR>(
            ShellExecuteW(nullptr, L"open", program.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
        return rc > 32;
    }

    bool openWithDefault(const std::filesystem::path& file) override { return startDetached(file); }

    std::filesystem::path documentsFolder() override {
        const auto drive = environment("SystemDrive").value_or("C:");
        const auto home = environment("HOMEPATH").value_or("\\");
        return pathFromUtf8(drive + home) / "Documents";
    }

private:
    std::string commandLine_;
    HANDLE mutex_ = nullptr;
};

}  // namespace

std::unique_ptr<System> makePlatformSystem(std::string commandLine) {
    return std::make_unique<WindowsSystem>(std::move(commandLine));
}

}  // namespace tvk
