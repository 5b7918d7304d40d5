#pragma once
// The usual core-test fixture: a Session on the fake System, scripted boxes and a
// temporary tree.

#include <gtest/gtest.h>

#include "app/Session.h"
#include "support/FakeSystem.h"
#include "support/ScriptedInteraction.h"
#include "support/TempTree.h"

namespace tvk::test {

struct SessionTest : ::testing::Test {
    TempTree tree;
    ScriptedInteraction ui;
    Session session{std::make_unique<FakeSystem>(), ui};
    Context ctx = session.context();
    // With the trace on, Abort ends the routine instead of the program.
    void traced() {
        session.trace.open(tree.path("TVK_ErrorLog.txt"));
        session.trace.debug = true;
    }
};

}  // namespace tvk::test
