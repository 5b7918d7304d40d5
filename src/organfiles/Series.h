#pragma once
// The organ series (family) a file belongs to, and the series the views filter on.

#include <cstdint>

namespace tvk {

enum class Series : std::uint8_t { All = 0, SU = 1, A = 2, E = 3 };

inline constexpr int kSeriesCount = 4;

// The series a stored number stands for (1 SU, 2 A, 3 E); ALL for anything else.
constexpr Series seriesFromNumber(int number) {
    return number >= 1 && number <= 3 ? static_cast<Series>(number) : Series::All;
}
constexpr int seriesNumber(Series series) {
    return static_cast<int>(series);
}

}  // namespace tvk
