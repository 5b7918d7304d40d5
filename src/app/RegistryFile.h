#pragma once
// The installation record where there is no registry: an INI-style file with one
// "[HKEY_...\key path]" section per key and "Name=value" lines. Numbers are written
// "dword:0000002a" as registry exports write them.

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "app/System.h"

namespace tvk {

class RegistryFile {
  public:
    explicit RegistryFile(std::filesystem::path file);

    std::optional<RegistryValue> query(RegistryRoot root, const std::string& key,
                                       const std::string& name) const;
    // Writes the whole file again (to a temporary name first, then renamed over it).
    void set(RegistryRoot root, const std::string& key, const std::string& name,
             const RegistryValue& value);

    const std::filesystem::path& file() const { return file_; }

  private:
    using Section = std::map<std::string, std::string>;
    std::map<std::string, Section> load() const;
    static std::string sectionName(RegistryRoot root, const std::string& key);

    std::filesystem::path file_;
};

}  // namespace tvk
