#pragma once
// Modification times as the file's directory entry holds them.
//
// fusefat hands the FAT entry's month (1-12) to the C library as if it counted from 0:
// it reports every date one month late and stores a date it is given one month early.
// The drive layer marks the folders such a driver serves; times read there are moved
// back a month and times written there forward one, so the entry ends up right. Days
// 29-31 followed by a shorter month come back from the driver already rolled into the
// month after and cannot always be told apart; they may show a few days off.

#include <chrono>
#include <filesystem>

namespace tvk {

using FileTime = std::chrono::system_clock::time_point;

// `mountDir` and everything under it reports months one too high (until forgotten).
void markMonthOneTooHigh(const std::filesystem::path& mountDir);
void forgetMonthOneTooHigh(const std::filesystem::path& mountDir);
bool monthOneTooHigh(const std::filesystem::path& file);

// The same local date and time, `months` calendar months later (earlier when negative).
FileTime shiftMonths(FileTime t, int months);

// What the driver reported, as the entry holds it; and what to give the driver so the
// entry holds `wanted`.
FileTime entryTime(const std::filesystem::path& file, FileTime reported);
FileTime timeToStore(const std::filesystem::path& file, FileTime wanted);

// The file's modification time as its entry holds it (throws as std::filesystem does).
FileTime modificationTime(const std::filesystem::path& file);

}  // namespace tvk
