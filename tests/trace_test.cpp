#include <gtest/gtest.h>

#include "app/Routine.h"
#include "support/FakeSystem.h"
#include "support/ScriptedInteraction.h"

namespace tvk {
namespace {

TEST(Trace, PushBuildsBarsByDepth) {
    Trace t;
    EXPECT_EQ(t.push("frmMain.Form_Load"), "|frmMain.Form_Load");
    EXPECT_EQ(t.push("frmMain.ScanForUSBs"), "||frmMain.ScanForUSBs");
    t.pop();
    t.pop();
    EXPECT_EQ(t.depth(), 0);
}

}  // namespace
}  // namespace tvk
