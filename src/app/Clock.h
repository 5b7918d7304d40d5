#pragma once

#include <ctime>

namespace tvk {

// The local calendar time of a time_t, on every platform.
std::tm localTime(std::time_t t);

}  // namespace tvk
