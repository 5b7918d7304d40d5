#include "organfiles/MakeFiles.h"

#include "app/FileIO.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>

#include "app/Routine.h"
#include "app/Text.h"
#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"
#include "organfiles/PresetNames.h"

namespace tvk {

namespace {

// Whose registration it is, and what kind of music: "Grandpa's Swing".
constexpr std::array<const char*, 21> kOwners = {
    "Anna",   "Grandpa", "Grandma", "Uncle",   "Aunt",   "Teacher", "Pastor",
    "Sunday", "Evening", "Holiday", "Theatre", "Chapel", "Lounge",  "Ballroom",
    "Walter", "Maria",   "Henry",   "Dorothy", "Club",   "Cinema",  "Party"};
constexpr std::array<const char*, 5> kStyles = {"Jazz", "Swing", "Waltz", "Piano", "Organ"};

constexpr std::array<const char*, 10> kColours = {"Soft",   "Bright", "Full",  "Warm", "Light",
                                                  "Mellow", "Big",    "Sweet", "Solo", "Dark"};
constexpr std::array<const char*, 16> kVoices = {
    "Strings", "Piano", "Jazz",  "Flute",  "Brass", "Choir", "Tibia",   "Reeds",
    "Trumpet", "Vibes", "Bells", "Guitar", "Bass",  "Combo", "Theatre", "Diapason"};

constexpr char kSerialCharacters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

void putField(std::string& file, std::int32_t position, const std::string& bytes) {
    const auto at = static_cast<std::size_t>(position - 1);
    if (file.size() < at + bytes.size()) file.resize(at + bytes.size(), '\0');
    file.replace(at, bytes.size(), bytes);
}

// Every button code a family's files hold a record for.
std::vector<std::string> buttonCodes(Series family) {
    std::vector<std::string> codes = presetButtonCodes(family);
    if (family == Series::SU) codes.insert(codes.begin(), "A0");  // one record before A1
    return codes;
}

struct Job {
    Series family;
    FileKind kind;
    int count;
};

}  // namespace

std::string MakeRandomName(RandomSource& random) {
    const std::string first = kOwners[static_cast<std::size_t>(random.below(21))];
    const std::string second = kStyles[static_cast<std::size_t>(random.below(5))];
    return utf8Left(first + "'s " + second, kNameWidth);
}

std::string RandomSN(RandomSource& random) {
    std::string serial = "........";
    for (char& c : serial) c = kSerialCharacters[random.below(sizeof kSerialCharacters - 1)];
    return serial;
}

std::string makeRegistrationName(RandomSource& random) {
    return std::string(kColours[static_cast<std::size_t>(random.below(kColours.size()))]) + " " +
           kVoices[static_cast<std::size_t>(random.below(kVoices.size()))];
}

std::string buildTestFile(Series family, FileKind kind, const std::string& name,
                          RandomSource& random) {
    const bool preset = kind == FileKind::Preset;
    std::string file = organHeader(family) + fieldBytes(name, kNameWidth) +
                       (preset ? "Preset " : "Song   ") + "   " + std::string(kCrLf);
    for (const auto& code : buttonCodes(family)) {
        const std::int32_t position = calcAddress(family, kind, code);
        putField(file, position, fieldBytes(makeRegistrationName(random), kNameWidth));
        // Each record is full length, so the file ends after the last whole record.
        if (file.size() < static_cast<std::size_t>(position - 1 + recordLength(family)))
            file.resize(static_cast<std::size_t>(position - 1 + recordLength(family)), '\0');
    }
    return file;
}

namespace {

// Writes one family's files of one kind, numbering past taken names.
void writeJob(Routine& r, const Job& job, RandomSource& random, MakeFilesResult& result,
              int& done) {
    Interaction& ui = r.ctx.ui;
    const int limit = job.kind == FileKind::Preset ? kMaxPresetNumber : kMaxRecordingNumber;
    int number = 1;
    for (int made = 0; made < job.count; ++made) {
        std::string name = organFileName(job.family, job.kind, number);
        while (number <= limit && std::filesystem::exists(result.folder / pathFromUtf8(name)))
            name = organFileName(job.family, job.kind, ++number);
        if (number > limit) {
            result.notWritten += job.count - made;
            done += job.count - made;
            return;
        }
        ui.setStatus(StatusPanel::Progress, "Writing " + name);
        const std::string bytes =
            buildTestFile(job.family, job.kind, MakeRandomName(random), random);
        if (r.step("Write " + name,
                   [&] { writeFileReplacing(result.folder / pathFromUtf8(name), bytes); }))
            result.written.push_back(name);
        ++number;
        ui.setProgress(++done);
        ui.processEvents();
    }
}

}  // namespace

MakeFilesResult MakeFiles(Context& ctx, const MakeFilesRequest& request, RandomSource& random) {
    MakeFilesResult result;
    routine(ctx, "frmMakeFiles.MakeFiles", [&](Routine& r) {
        const std::string suffix = request.suffix.empty() ? RandomSN(random) : request.suffix;
        result.folder = request.parent / pathFromUtf8("FAKEPRFILES - " + suffix);
        if (!r.step("Create " + pathToUtf8(result.folder),
                    [&] { std::filesystem::create_directories(result.folder); }))
            return;

        std::vector<Job> jobs;
        for (const FileKind kind : {FileKind::Preset, FileKind::Recording})
            for (const Series family : {Series::SU, Series::A, Series::E})
                if (std::find(request.families.begin(), request.families.end(), family) !=
                    request.families.end())
                    jobs.push_back({family, kind,
                                    kind == FileKind::Preset ? request.presetsPerFamily
                                                             : request.songsPerFamily});
        int total = 0;
        for (const auto& job : jobs) total += std::max(0, job.count);
        ctx.ui.showProgress(std::max(total, 1));
        int done = 0;
        for (const auto& job : jobs) writeJob(r, job, random, result, done);
        ctx.ui.hideProgress();
        ctx.ui.setStatus(StatusPanel::Progress,
                         std::to_string(result.written.size()) + " test files written");
    });
    return result;
}

}  // namespace tvk
