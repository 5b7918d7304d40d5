// What Windows reports reaches the user as the classic error number support knows: the
// system's codes through std::error_code, and real failures of the file layer and of
// std::filesystem on a file another program holds open.

#include <gtest/gtest.h>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

int errorNumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (...) {
        return RuntimeError::fromCurrentException().number();
    }
    return 0;
}

TEST(WindowsErrors, ReachTheUserAsTheClassicNumbers) {
    test::TempTree tree;
    // A folder made in a missing folder: path not found, whatever the C library says.
    EXPECT_EQ(errorNumberOf([&] { std::filesystem::create_directory(tree.path("none/TAVRIN")); }),
              kErrPathNotFound);
    if (!test::kOnWindows) GTEST_SKIP() << "Windows only: its error codes and share modes";
    const std::pair<int, int> codes[] = {
        {21, kErrDiskNotReady},      // ERROR_NOT_READY: a card reader with no card
        {32, kErrPermissionDenied},  // ERROR_SHARING_VIOLATION
        {112, kErrDiskFull},        {2, kErrFileNotFound}, {3, kErrPathNotFound},
    };
    for (const auto& [code, number] : codes)
        EXPECT_EQ(
            RuntimeError::fromErrorCode(std::error_code(code, std::system_category())).number(),
            number)
            << "code " << code;

    const auto file = tree.write("TVK.ini", "settings");
    const struct {
        const char* what;
        std::function<void()> action;
        int number;
    } cases[] = {
        {"read", [&] { readWholeFile(file); }, kErrPermissionDenied},
        {"replace", [&] { writeFileReplacing(file, "new"); }, kErrPermissionDenied},
        {"remove", [&] { std::filesystem::remove(file); }, kErrPermissionDenied},
    };
    {
        test::ExclusiveHold hold(file);
        ASSERT_TRUE(hold.held());
        for (const auto& c : cases) EXPECT_EQ(errorNumberOf(c.action), c.number) << c.what;
    }
    EXPECT_EQ(tree.read("TVK.ini"), "settings");
}

}  // namespace
}  // namespace tvk
