// Windows drives: the letters "A" to "Z" as the drive-type and volume-information
// queries see them; rename and format through the kernel and the shell.

#include <shlobj.h>
#include <windows.h>

#include <system_error>

#include "app/RuntimeError.h"
#include "drive/VolumeHelpers.h"
#include "drive/Volumes.h"

namespace tvk {

namespace {

std::wstring widen(const std::string& utf8) {
    if (utf8.empty()) return {};
    const int n =
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return out;
}

std::string narrow(const wchar_t* text) {
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (n <= 1) return {};
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    out.resize(static_cast<std::size_t>(n - 1));
    return out;
}

std::wstring rootOf(const std::string& drive) {
    return widen(normaliseDriveText(drive));
}

// No "insert a disk" box from the system while an empty card reader is asked.
class QuietErrors {
  public:
    QuietErrors() : old_(SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX)) {}
    ~QuietErrors() { SetErrorMode(old_); }

  private:
    UINT old_;
};

class WindowsVolumes : public Volumes {
  public:
    std::vector<std::string> drives() override {
        std::vector<std::string> letters;
        for (char c = 'A'; c <= 'Z'; ++c) letters.emplace_back(1, c);
        return letters;
    }

    DriveType driveType(const std::string& drive) override {
        const UINT type = GetDriveTypeW(rootOf(drive).c_str());
        return type <= DRIVE_RAMDISK ? static_cast<DriveType>(type) : DriveType::Unknown;
    }

    std::filesystem::path rootPath(const std::string& drive) override {
        return std::filesystem::path(rootOf(drive));
    }

    VolumeInfo volumeInformation(const std::string& drive) override {
        QuietErrors quiet;
        wchar_t name[MAX_PATH + 1] = {}, fileSystem[MAX_PATH + 1] = {};
        DWORD serial = 0, maxLength = 0, flags = 0;
        if (!GetVolumeInformationW(rootOf(drive).c_str(), name, MAX_PATH + 1, &serial, &maxLength,
                                   &flags, fileSystem, MAX_PATH + 1)) {
            const std::error_code ec(static_cast<int>(GetLastError()), std::system_category());
            throw RuntimeError::fromErrorCode(ec, normaliseDriveText(drive));
        }
        VolumeInfo info;
        info.volumeName = narrow(name);
        info.serialNumber = serial;
        info.fileSystemName = narrow(fileSystem);
        info.maxComponentLength = maxLength;
        info.fileSystemFlags = flags;
        return info;
    }

    // The unit mask a device notice for this drive carries.
    std::string deviceId(const std::string& drive) override {
        const int number = driveNumber(drive);
        return number >= 0 && number < 26 ? std::to_string(1u << number) : std::string();
    }

    std::vector<std::string> systemEntries(const std::string&) override { return {}; }

    std::string setLabel(const std::string& drive, const std::string& label) override {
        SetVolumeLabelW(rootOf(drive).c_str(), widen(label).c_str());
        return {};
    }

    bool hasFormatWindow() const override { return true; }

    FormatOutcome format(const std::string& drive, const std::string&) override {
        const DWORD result =
            SHFormatDrive(static_cast<HWND>(ownerWindow), static_cast<UINT>(driveNumber(drive)),
                          SHFMT_ID_DEFAULT, SHFMT_OPT_FULL);
        return {static_cast<int>(result), {}};
    }
};

}  // namespace

std::shared_ptr<Volumes> makePlatformVolumes(const VolumesOptions& options) {
    if (!options.images.empty())
        throw RuntimeError(kErrInvalidProcedureCall, "image drives are attached on Linux only");
    return std::make_shared<WindowsVolumes>();
}

bool waitForNotices(Volumes&, int) {
    return false;
}

}  // namespace tvk
