// Paths in boxes and status texts: an image drive's files by the image's name, never by
// the folder the program mounted it on.
#include <gtest/gtest.h>

#include "app/ShownPaths.h"

namespace tvk {
namespace {

TEST(ShownPaths, TheMountFolderNeverShows) {
    ThumbDriveState image;
    image.root = "/run/tvk/drives/77-1";
    image.shownRoot = "demo-stick.img:";
    const struct {
        const char* text;
        const char* shown;
    } cases[] = {
        {"Copy \"/run/tvk/drives/77-1/TAVRIN/SUPSET01.LPG\" to \"/run/tvk/drives/77-1/x\"",
         "Copy \"demo-stick.img:/TAVRIN/SUPSET01.LPG\" to \"demo-stick.img:/x\""},
        {"Measure the free space of /run/tvk/drives/77-1",
         "Measure the free space of demo-stick.img:/"},
        {"/run/tvk/drives/77-10/TAVRIN", "/run/tvk/drives/77-10/TAVRIN"},  // another drive
    };
    for (const auto& c : cases) EXPECT_EQ(shownText(image, c.text), c.shown) << c.text;
}

}  // namespace
}  // namespace tvk
