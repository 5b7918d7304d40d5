#pragma once
// A System for what cannot be had on this machine (an account without administrator
// rights, a second instance running elsewhere): environment and registry in memory.

#include <map>
#include <tuple>

#include "app/System.h"

namespace tvk::test {

class FakeSystem : public System {
  public:
    std::map<std::string, std::string> env;
    std::string commandLineText;
    bool administrator = true;
    bool otherInstanceRunning = false;
    std::map<std::tuple<RegistryRoot, std::string, std::string>, RegistryValue> registry;
    std::filesystem::path documents;
    std::filesystem::path current = ".";
    std::filesystem::path state;  // empty: no place for the trace but the program folder
    std::vector<std::filesystem::path> recycled;
    std::vector<std::filesystem::path> started;
    std::vector<std::filesystem::path> opened;

    std::optional<std::string> environment(const std::string& name) override {
        const auto it = env.find(name);
        if (it == env.end()) return std::nullopt;
        return it->second;
    }
    std::string commandLine() override { return commandLineText; }
    bool isAdministrator() override { return administrator; }
    std::optional<RegistryValue> regQuery(RegistryRoot root, const std::string& key,
                                          const std::string& name) override {
        const auto it = registry.find({root, key, name});
        if (it == registry.end()) return std::nullopt;
        return it->second;
    }
    void regSet(RegistryRoot root, const std::string& key, const std::string& name,
                const RegistryValue& value) override {
        registry[{root, key, name}] = value;
    }
    bool acquireSingleInstance() override { return !otherInstanceRunning; }
    bool recycle(const std::filesystem::path& path) override {
        std::error_code ec;
        if (!std::filesystem::exists(path, ec)) return false;
        recycled.push_back(path);
        std::filesystem::remove_all(path, ec);
        return !ec;
    }
    void runAndWait(const std::string&, const std::function<void()>& pump) override {
        if (pump) pump();
    }
    bool startDetached(const std::filesystem::path& program) override {
        started.push_back(program);
        return true;
    }
    bool openWithDefault(const std::filesystem::path& file) override {
        opened.push_back(file);
        return true;
    }
    std::filesystem::path currentDirectory() override { return current; }
    void setCurrentDirectory(const std::filesystem::path& dir) override { current = dir; }
    std::filesystem::path documentsFolder() override { return documents; }
    std::filesystem::path stateFolder() override { return state; }
};

}  // namespace tvk::test
