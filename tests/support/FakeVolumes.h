#pragma once
// Windows-style drive letters for what cannot exist on this machine: several letters at
// once, CD-ROM and fixed drives, the shell's format window. Each letter's files live in a
// real folder.

#include <map>

#include "app/RuntimeError.h"
#include "drive/Volumes.h"
#include "support/SessionTest.h"

namespace tvk::test {

class FakeVolumes : public Volumes {
  public:
    struct Letter {
        DriveType type = DriveType::Removable;
        VolumeInfo info;
        std::filesystem::path root;
        int volumeError = 0;  // what the volume query fails with: 71 for an empty slot
    };
    std::map<std::string, Letter> letters;
    std::vector<std::pair<std::string, std::string>> labelsSet;
    std::vector<int> formattedDriveNumbers;
    int formatResult = 0;

    std::vector<std::string> drives() override {
        std::vector<std::string> all;
        for (char c = 'A'; c <= 'Z'; ++c) all.emplace_back(1, c);
        return all;
    }
    DriveType driveType(const std::string& d) override {
        const auto it = letters.find(d);
        return it == letters.end() ? DriveType::NoRootDir : it->second.type;
    }
    std::filesystem::path rootPath(const std::string& d) override { return letters.at(d).root; }
    VolumeInfo volumeInformation(const std::string& d) override {
        const auto it = letters.find(d);
        if (it == letters.end()) throw RuntimeError(kErrDiskNotReady, d);
        if (it->second.volumeError) throw RuntimeError(it->second.volumeError, d);
        return it->second.info;
    }
    std::string deviceId(const std::string& d) override {
        return std::to_string(1u << driveNumber(d));
    }
    std::vector<std::string> systemEntries(const std::string&) override { return {}; }
    std::string setLabel(const std::string& d, const std::string& label) override {
        labelsSet.emplace_back(d, label);
        letters.at(d).info.volumeName = label;
        return {};
    }
    bool hasFormatWindow() const override { return true; }
    FormatOutcome format(const std::string& d, const std::string&) override {
        formattedDriveNumbers.push_back(driveNumber(d));
        return {formatResult, {}};
    }
};

// A session whose drives are fake letters, each with its root under the test's tree.
struct LetterDrivesTest : SessionTest {
    std::shared_ptr<FakeVolumes> volumes = std::make_shared<FakeVolumes>();
    FakeVolumes::Letter& add(const std::string& letter, DriveType type,
                             const std::string& fileSystem, const std::string& label = "STICK",
                             bool tavrin = true) {
        auto& l = volumes->letters[letter];
        l.type = type;
        l.info = {label, 0x1234, fileSystem, 255, 6};
        l.root = tree.mkdir(letter);
        if (tavrin) tree.mkdir(letter + "/TAVRIN");
        return l;
    }
    Context letterContext() {
        session.volumes = volumes;
        session.paths.libraryRoot = tree.mkdir("lib");
        return session.context();
    }
};

}  // namespace tvk::test
