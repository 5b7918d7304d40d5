// The installation record on Linux, a file anyone may edit: reading it never fails, and
// writing a value keeps every other value of the key and reads back what was written.

#include "FuzzSupport.h"
#include "app/Paths.h"
#include "app/RegistryFile.h"

using namespace tvk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    RegistryFile file(f.file("registry.ini", fuzz::asText(data, size)));

    const auto root = RegistryRoot::LocalMachine;
    const auto version = file.query(root, kUninstallKey, "DisplayVersion");
    file.query(root, kUninstallKey, "InstallLocation");
    file.query(RegistryRoot::CurrentUser, kUninstallKey, "InstallLocation");

    const std::string location = "/opt/tavrin file manager";
    file.set(root, kUninstallKey, "InstallLocation", location);
    const auto after = file.query(root, kUninstallKey, "InstallLocation");
    fuzz::check(
        after && std::get_if<std::string>(&*after) && std::get<std::string>(*after) == location,
        "a written value did not read back");
    fuzz::check(file.query(root, kUninstallKey, "DisplayVersion") == version,
                "writing one value changed another");

    file.set(root, kUninstallKey, "EstimatedSize", std::uint32_t{42});
    fuzz::check(
        file.query(root, kUninstallKey, "EstimatedSize") == RegistryValue{std::uint32_t{42}},
        "a number did not read back");
    return 0;
}
