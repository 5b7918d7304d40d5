#pragma once

#include <string>

namespace tvk {

inline constexpr int kVersionMajor = 2021;
inline constexpr int kVersionMinor = 922;
inline constexpr int kVersionRevision = 1101;

// The application's project name: the source the runtime names in its error reports.
inline constexpr const char* kProjectName = "TVK";
inline constexpr const char* kProductName = "Tavrin File Manager";

// "2021.0922.1101": each part formatted "0000".
std::string programVersionText();
// "2021.922.1101": each part formatted "####", as the error handler shows it.
std::string programVersionUnpadded();

}  // namespace tvk
