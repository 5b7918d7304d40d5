#pragma once
// The operating system as the program's commands see it: environment, rights, the
// installation record (the registry on Windows, a registry file on Linux), the
// single-instance lock, the recycle bin and starting other programs. One
// implementation per platform (System_win32.cpp, System_linux.cpp).

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace tvk {

enum class RegistryRoot { LocalMachine, CurrentUser };
using RegistryValue = std::variant<std::string, std::uint32_t>;

std::string registryRootName(RegistryRoot root);  // "HKEY_LOCAL_MACHINE", ...
std::string registryValueText(const RegistryValue& value);

class System {
  public:
    virtual ~System() = default;

    virtual std::optional<std::string> environment(const std::string& name) = 0;
    // The whole command line as typed, without the program name.
    virtual std::string commandLine() = 0;
    virtual bool isAdministrator() = 0;

    virtual std::optional<RegistryValue> regQuery(RegistryRoot root, const std::string& key,
                                                  const std::string& name) = 0;
    // Creates the key when missing; throws RuntimeError on failure.
    virtual void regSet(RegistryRoot root, const std::string& key, const std::string& name,
                        const RegistryValue& value) = 0;

    // Takes the per-user single-instance lock; false when another running instance
    // holds it. A lock left behind by a crashed instance is taken over.
    virtual bool acquireSingleInstance() = 0;

    // Moves a file or folder to the platform's recycle bin (undo possible).
    virtual bool recycle(const std::filesystem::path& path) = 0;

    // Starts a command line and returns when it has ended, calling `pump` while waiting
    // so the window stays responsive. Throws RuntimeError when it cannot start.
    virtual void runAndWait(const std::string& commandLine, const std::function<void()>& pump) = 0;
    // Starts a program with a normal, focused window, without waiting.
    virtual bool startDetached(const std::filesystem::path& program) = 0;
    // Opens a file with the desktop's default program (the shell's "open" verb).
    virtual bool openWithDefault(const std::filesystem::path& file) = 0;

    // The process's working folder (std::filesystem on every platform).
    virtual std::filesystem::path currentDirectory();
    virtual void setCurrentDirectory(const std::filesystem::path& dir);
    // The user's Documents folder, where the library lives.
    virtual std::filesystem::path documentsFolder() = 0;
    // Where the trace goes when the program folder cannot be written (an installed
    // program folder under /usr); empty where the program folder is the only place.
    virtual std::filesystem::path stateFolder();
};

// The real system of the platform the program was built for.
// `commandLine` is what commandLine() reports: the switches the program was started with.
std::unique_ptr<System> makePlatformSystem(std::string commandLine = {});

}  // namespace tvk
