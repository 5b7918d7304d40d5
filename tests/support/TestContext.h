#pragma once
// A complete Context for core tests: scripted boxes, a fake or real System, a fixed
// clock (2021-10-15 14:30:12, so stamps read "211015.143012") and a library root in a
// temporary tree.

#include <memory>

#include "app/Context.h"
#include "support/FakeSystem.h"
#include "support/ScriptedInteraction.h"
#include "support/TempTree.h"

namespace tvk::test {

std::tm fixedTime();

struct TestContext {
    explicit TestContext(std::unique_ptr<System> sys = nullptr);

    TempTree tree;
    ScriptedInteraction ui;
    Trace trace{&fixedTime};
    Settings settings;
    Paths paths;
    MainState state;
    std::unique_ptr<System> system;
    FakeSystem* fake = nullptr;  // set when the System is the fake one

    Context ctx();
    // Turns tracing on into tree/"prog/TVK_ErrorLog.txt" and returns that path.
    std::filesystem::path traceToFile();
    std::string traceText() const;
};

}  // namespace tvk::test
