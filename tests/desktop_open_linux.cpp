// Files handed to the desktop's own program (MIDI the media framework cannot play, PDF
// files, the manual): the opener's result is told, and it is never left a zombie.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "app/System.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

namespace fs = std::filesystem;

// Children of this process, running or ended but not waited for.
int childrenLeft() {
    int count = 0;
    for (const auto& proc : fs::directory_iterator("/proc")) {
        std::ifstream stat(proc.path() / "stat");
        std::string line;
        if (!std::getline(stat, line)) continue;
        const auto close = line.rfind(')');
        if (close == std::string::npos) continue;
        std::istringstream rest(line.substr(close + 2));
        char state = 0;
        long parent = 0;
        rest >> state >> parent;
        if (parent == getpid()) ++count;
    }
    return count;
}

TEST(DesktopOpen, TheOpenerSaysIfItWorkedAndIsNeverLeftBehind) {
    test::TempTree tree;
    const fs::path file = tree.write("Prelude.mid", "MThd");
    const fs::path bin = tree.mkdir("bin");
    const std::string path = std::getenv("PATH") ? std::getenv("PATH") : "/usr/bin:/bin";
    setenv("PATH", (bin.string() + ":" + path).c_str(), 1);
    // The desktop itself cannot exist here: a stand-in opener takes its place.
    const struct {
        const char* opener;
        bool opened;
    } cases[] = {{"exit 0", true},               // hands the file on at once
                 {"sleep 2; exit 0", true},      // runs the program in its place
                 {"exit 3", false},              // no program for the file
                 {"sleep 0.5; exit 3", false}};  // found none after trying several
    for (const auto& c : cases) {
        const fs::path opener =
            tree.write("bin/xdg-open", std::string("#!/bin/sh\n") + c.opener + "\n");
        fs::permissions(opener, fs::perms::owner_all);
        auto system = makePlatformSystem();
        EXPECT_EQ(system->openWithDefault(file), c.opened) << c.opener;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
        while (childrenLeft() > 0 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(childrenLeft(), 0) << c.opener;
    }
    setenv("PATH", path.c_str(), 1);
    EXPECT_FALSE(makePlatformSystem()->openWithDefault(tree.path("gone.mid")));
}

}  // namespace
}  // namespace tvk
