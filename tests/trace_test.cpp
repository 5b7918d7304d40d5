#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include "app/IniFile.h"
#include "app/Routine.h"
#include "support/TestContext.h"

namespace tvk {
namespace {

using test::TestContext;

const std::string kHeader = "Tavrin File Manager - Debugging Log\r\nVersion: 2021.0922.1101\r\n" +
                            std::string(42, '-') + "\r\n";

TEST(Trace, NestedRoutinesWriteBarredEnterAndExitLines) {
    TestContext t;
    t.traceToFile();
    Context ctx = t.ctx();
    routine(ctx, "frmMain.Form_Load", [&](Routine&) {
        routine(ctx, "frmMain.ScanForUSBs", [&](Routine& r) { r.detail("Checking E:\\"); });
    });
    EXPECT_EQ(t.traceText(), kHeader +
                                 "211015.143012- |frmMain.Form_Load - ENTER\r\n"
                                 "211015.143012- ||frmMain.ScanForUSBs - ENTER\r\n"
                                 "Checking E:\\\r\n"
                                 "211015.143012- ||frmMain.ScanForUSBs - EXIT\r\n"
                                 "211015.143012- |frmMain.Form_Load - EXIT\r\n");
    EXPECT_EQ(t.trace.depth(), 0);
}

TEST(Trace, UntracedRunWritesNothingButKeepsTheStack) {
    TestContext t;
    t.traceToFile();  // the log is open, so a line written while untraced would show
    t.trace.debug = false;
    Context ctx = t.ctx();
    std::string seen;
    routine(ctx, "A.Outer",
            [&](Routine&) { routine(ctx, "A.Inner", [&](Routine& r) { seen = r.entry(); }); });
    EXPECT_EQ(seen, "||A.Inner");
    EXPECT_EQ(t.traceText(), kHeader);
}

TEST(Trace, StackDeeperThan1000IsSubscriptOutOfRange) {
    TestContext t;
    Context ctx = t.ctx();
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    int deepest = 0;
    std::function<void(int)> dive = [&](int level) {
        routine(ctx, "T.Dive", [&](Routine&) {
            deepest = t.trace.depth();
            if (level < 1001) dive(level + 1);
        });
    };
    dive(1);
    EXPECT_EQ(deepest, 1001);
    ASSERT_EQ(t.ui.shown.size(), 1u);
    EXPECT_NE(t.ui.shown[0].text.find("Encountered Err#9\rSubscript out of range"),
              std::string::npos);
    EXPECT_EQ(t.trace.depth(), 0);
}

TEST(ErrorHandler, BoxAndTraceLinesAreExact) {
    TestContext t;
    t.traceToFile();
    Context ctx = t.ctx();
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);
    routine(ctx, "T.Step", [&](Routine& r) {
        r.step("Open x For Input As #1", [] { throw RuntimeError::fromErrno(ENOENT); });
    });
    ASSERT_EQ(t.ui.shown.size(), 1u);
    const Message& box = t.ui.shown[0];
    EXPECT_EQ(box.style(), 274);
    EXPECT_EQ(
        box.text,
        "Encountered Err#53\rFile not found\r\rRoutine: |T.Step\r    Task: Open x For Input As "
        "#1\r\rTVK Ver: 2021.922.1101");
    EXPECT_EQ(t.traceText(), kHeader +
                                 "211015.143012- |T.Step - ENTER\r\n"
                                 "211015.143012- ||frmMain.MainErrorHandler - ENTER\r\n"
                                 "TVK: RUNTIME ERROR\r\n\r\n"
                                 "Encountered Err#53\r\r\n"
                                 "File not found\r\r\r\n"
                                 "Routine: |T.Step\r\r\n"
                                 "    Task: Open x For Input As #1\r\r\r\n"
                                 "TVK Ver: 2021.922.1101\r\n"
                                 "211015.143012- IGNORE - ||frmMain.MainErrorHandler - EXIT\r\n"
                                 "211015.143012- |T.Step - EXIT\r\n");
}

struct AnswerCase {
    const char* name;
    bool debug;
    Answer answer;
    int attempts;     // how often the failing step ran
    bool reachedEnd;  // the statement after the step ran
    bool programEnded;
    const char* verdictLine;
};

class ErrorHandlerAnswers : public ::testing::TestWithParam<AnswerCase> {};

TEST_P(ErrorHandlerAnswers, DecideWhatTheRoutineDoesNext) {
    const AnswerCase& c = GetParam();
    TestContext t;
    if (c.debug) t.traceToFile();
    Context ctx = t.ctx();
    t.ui.expect("TVK: RUNTIME ERROR", c.answer);
    int attempts = 0;
    bool reachedEnd = false, programEnded = false;
    try {
        routine(ctx, "T.Copy", [&](Routine& r) {
            r.step("Copy a to b", [&] {
                if (++attempts == 1) throw RuntimeError(kErrDiskFull);
            });
            reachedEnd = true;
        });
    } catch (const ProgramEnd&) {
        programEnded = true;
    }
    EXPECT_EQ(attempts, c.attempts);
    EXPECT_EQ(reachedEnd, c.reachedEnd);
    EXPECT_EQ(programEnded, c.programEnded);
    EXPECT_EQ(t.trace.depth(), 0);
    if (c.debug) {
        EXPECT_NE(t.traceText().find(c.verdictLine), std::string::npos) << t.traceText();
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ErrorHandlerAnswers,
    ::testing::Values(
        AnswerCase{"RetryRepeatsTheStep", true, Answer::Retry, 2, true, false,
                   "- RETRY - ||frmMain.MainErrorHandler - EXIT"},
        AnswerCase{"IgnoreGoesOn", true, Answer::Ignore, 1, true, false,
                   "- IGNORE - ||frmMain.MainErrorHandler - EXIT"},
        AnswerCase{"AbortTracedEndsOnlyTheRoutine", true, Answer::Abort, 1, false, false,
                   "- ABORT - ||frmMain.MainErrorHandler - EXIT\r\n211015.143012- |T.Copy - EXIT"},
        AnswerCase{"AbortUntracedEndsTheProgram", false, Answer::Abort, 1, false, true, ""},
        AnswerCase{"RetryUntracedAlsoRepeats", false, Answer::Retry, 2, true, false, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ErrorHandler, TrapOffLetsTheErrorEndTheProgramWithoutTheBox) {
    TestContext t;
    t.trace.errorTrap = false;
    Context ctx = t.ctx();
    EXPECT_THROW(
        routine(ctx, "T.Copy",
                [&](Routine& r) { r.step([] { throw RuntimeError(kErrPermissionDenied); }); }),
        UntrappedError);
    EXPECT_TRUE(t.ui.shown.empty());
    EXPECT_EQ(t.trace.depth(), 0);

    t.ui.expect("TVK");
    reportUntrappedError(t.ui, RuntimeError(kErrPermissionDenied));
    ASSERT_EQ(t.ui.shown.size(), 1u);
    EXPECT_EQ(t.ui.shown[0].text, "Run-time error '70':\r\rPermission denied");
}

// After a settings write the trace file's handle is gone: each later trace write fails
// with error 52 and goes to the handler once, never in a loop.
TEST(ErrorHandler, TraceWritesAfterASettingsWriteFailWithBadFileNumber) {
    TestContext t;
    t.traceToFile();
    Context ctx = t.ctx();
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Ignore);  // the settings writer's own EXIT line
    WriteIniFile(ctx, false);
    t.ui.shown.clear();
    // One box for the ENTER line, one for the EXIT line; the handler's own lines fail
    // quietly instead of calling the handler again.
    t.ui.expect("TVK: RUNTIME ERROR", Answer::Ignore).expect("TVK: RUNTIME ERROR", Answer::Ignore);
    const bool finished = routine(ctx, "T.After", [](Routine&) {});
    EXPECT_TRUE(finished);
    ASSERT_EQ(t.ui.shown.size(), 2u);
    EXPECT_NE(t.ui.shown[0].text.find("Err#52\rBad file name or number\r\rRoutine: |T.After"),
              std::string::npos);
    EXPECT_EQ(t.trace.depth(), 0);
    const std::string log = t.traceText();
    EXPECT_NE(log.find("Closing all files\r\n"), std::string::npos);
    EXPECT_EQ(log.find("T.After"), std::string::npos);
}

TEST(RuntimeErrors, MapFromOsErrors) {
    const std::pair<int, int> cases[] = {
        {ENOENT, 53}, {ENOTDIR, 76}, {EEXIST, 58},   {ENOSPC, 61},       {EACCES, 70},
        {EROFS, 70},  {EIO, 57},     {ENOTCONN, 71}, {ENAMETOOLONG, 52}, {EBUSY, 75},
        {ENODEV, 71}, {EXDEV, 74},   {EMFILE, 67},   {ENOTEMPTY, 75},
    };
    for (const auto& [err, number] : cases) {
        EXPECT_EQ(RuntimeError::fromErrno(err).number(), number) << "errno " << err;
    }
    EXPECT_EQ(RuntimeError(61).description(), "Disk full");
    EXPECT_EQ(RuntimeError(13).description(), "Type mismatch");
}

}  // namespace
}  // namespace tvk
