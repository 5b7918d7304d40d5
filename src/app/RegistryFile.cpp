#include "app/RegistryFile.h"

#include "app/FileIO.h"

#include <cstdio>
#include <fstream>
#include <sstream>

#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

std::string registryRootName(RegistryRoot root) {
    return root == RegistryRoot::LocalMachine ? "HKEY_LOCAL_MACHINE" : "HKEY_CURRENT_USER";
}

std::string registryValueText(const RegistryValue& value) {
    if (const auto* s = std::get_if<std::string>(&value)) return *s;
    return std::to_string(std::get<std::uint32_t>(value));
}

RegistryFile::RegistryFile(std::filesystem::path file) : file_(std::move(file)) {}

std::string RegistryFile::sectionName(RegistryRoot root, const std::string& key) {
    return registryRootName(root) + "\\" + key;
}

std::map<std::string, RegistryFile::Section> RegistryFile::load() const {
    std::map<std::string, Section> sections;
    std::error_code missing;
    if (!std::filesystem::exists(file_, missing)) return sections;
    std::istringstream in(readWholeFile(file_));
    std::string line, current;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string t = trimWhitespace(line);
        if (t.empty() || t[0] == ';' || t[0] == '#') continue;
        if (t.front() == '[' && t.back() == ']') {
            current = t.substr(1, t.size() - 2);
            sections[current];
            continue;
        }
        const auto eq = t.find('=');
        if (eq == std::string::npos || current.empty()) continue;
        sections[current][trimWhitespace(t.substr(0, eq))] = t.substr(eq + 1);
    }
    return sections;
}

std::optional<RegistryValue> RegistryFile::query(RegistryRoot root, const std::string& key,
                                                 const std::string& name) const {
    const auto sections = load();
    const auto s = sections.find(sectionName(root, key));
    if (s == sections.end()) return std::nullopt;
    const auto v = s->second.find(name);
    if (v == s->second.end()) return std::nullopt;
    if (startsWith(v->second, "dword:")) {
        try {
            return static_cast<std::uint32_t>(std::stoul(v->second.substr(6), nullptr, 16));
        } catch (const std::exception&) {
            return v->second;
        }
    }
    return v->second;
}

void RegistryFile::set(RegistryRoot root, const std::string& key, const std::string& name,
                       const RegistryValue& value) {
    auto sections = load();
    std::string text;
    if (const auto* n = std::get_if<std::uint32_t>(&value)) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "dword:%08x", static_cast<unsigned>(*n));
        text = buf;
    } else {
        text = std::get<std::string>(value);
    }
    sections[sectionName(root, key)][name] = text;

    std::error_code ec;
    std::filesystem::create_directories(file_.parent_path(), ec);
    throwIfError(ec, pathToUtf8(file_.parent_path()));
    std::ostringstream out;
    bool first = true;
    for (const auto& [section, values] : sections) {
        if (!first) out << '\n';
        first = false;
        out << '[' << section << "]\n";
        for (const auto& [k, v] : values) out << k << '=' << v << '\n';
    }
    writeFileReplacing(file_, out.str());
}

}  // namespace tvk
