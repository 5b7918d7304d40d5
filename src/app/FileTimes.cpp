#include "app/FileTimes.h"

#include <algorithm>
#include <ctime>
#include <mutex>
#include <vector>

#include "app/Clock.h"

namespace tvk {

namespace fs = std::filesystem;

namespace {

std::mutex lock;
std::vector<fs::path>& skewedFolders() {
    static std::vector<fs::path> folders;
    return folders;
}

fs::path normal(const fs::path& p) {
    return p.lexically_normal();
}

bool isUnder(const fs::path& file, const fs::path& folder) {
    const auto [f, _] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return f == folder.end() || (std::next(f) == folder.end() && f->empty());
}

}  // namespace

void markMonthOneTooHigh(const fs::path& mountDir) {
    std::lock_guard guard(lock);
    skewedFolders().push_back(normal(mountDir));
}

void forgetMonthOneTooHigh(const fs::path& mountDir) {
    std::lock_guard guard(lock);
    auto& folders = skewedFolders();
    folders.erase(std::remove(folders.begin(), folders.end(), normal(mountDir)), folders.end());
}

bool monthOneTooHigh(const fs::path& file) {
    std::lock_guard guard(lock);
    const fs::path f = normal(file);
    return std::any_of(skewedFolders().begin(), skewedFolders().end(),
                       [&](const fs::path& folder) { return isUnder(f, folder); });
}

FileTime shiftMonths(FileTime t, int months) {
    using namespace std::chrono;
    const auto sub = t - time_point_cast<seconds>(t);
    std::tm local = localTime(system_clock::to_time_t(t));
    const int month = local.tm_mon + months;
    local.tm_year += month >= 0 ? month / 12 : (month - 11) / 12;
    local.tm_mon = ((month % 12) + 12) % 12;
    local.tm_isdst = -1;
    return system_clock::from_time_t(std::mktime(&local)) + sub;
}

FileTime entryTime(const fs::path& file, FileTime reported) {
    return monthOneTooHigh(file) ? shiftMonths(reported, -1) : reported;
}

FileTime timeToStore(const fs::path& file, FileTime wanted) {
    return monthOneTooHigh(file) ? shiftMonths(wanted, 1) : wanted;
}

FileTime modificationTime(const fs::path& file) {
    using namespace std::chrono;
    const auto written = fs::last_write_time(file);
    return entryTime(file, time_point_cast<system_clock::duration>(file_clock::to_sys(written)));
}

}  // namespace tvk
