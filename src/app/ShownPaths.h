#pragma once
// Paths as the user knows them. The program mounts an image drive on a folder of its own;
// the user knows the stick as the image file, so its files are named by the image's name,
// a colon and the path inside it ("demo-stick.img:/TAVRIN/SUPSET01.LPG"). Boxes and status
// texts pass through here so the mount folder never shows.

#include <filesystem>
#include <string>

#include "drive/ThumbDriveState.h"

namespace tvk {

// `path` as the user knows it.
std::string shownPath(const ThumbDriveState& drive, const std::filesystem::path& path);

// `text` with every path on the drive in it as the user knows it.
std::string shownText(const ThumbDriveState& drive, std::string text);

}  // namespace tvk
