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
    ThumbDriveState stick;
    stick.root = "/media/me/ORGAN";  // a real stick's mount point is its own path
    const struct {
        const ThumbDriveState& drive;
        const char* text;
        const char* shown;
    } cases[] = {
        {image, "Copy \"/run/tvk/drives/77-1/TAVRIN/SUPSET01.LPG\" to \"/run/tvk/drives/77-1/x\"",
         "Copy \"demo-stick.img:/TAVRIN/SUPSET01.LPG\" to \"demo-stick.img:/x\""},
        {image, "Measure the free space of /run/tvk/drives/77-1",
         "Measure the free space of demo-stick.img:/"},
        {image, "/run/tvk/drives/77-10/TAVRIN", "/run/tvk/drives/77-10/TAVRIN"},  // another drive
        {image, "/home/me/lib/TAVRIN", "/home/me/lib/TAVRIN"},
        {stick, "/media/me/ORGAN/TAVRIN/A.LPG", "/media/me/ORGAN/TAVRIN/A.LPG"},
    };
    for (const auto& c : cases) EXPECT_EQ(shownText(c.drive, c.text), c.shown) << c.text;
}

}  // namespace
}  // namespace tvk
