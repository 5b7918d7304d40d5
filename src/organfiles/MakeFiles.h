#pragma once
// The test-file generator: sets of preset and song files of all three families, shaped
// as the organ writes them, for trying the program without an organ.

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "organfiles/OrganNames.h"

namespace tvk {

struct Context;

// Seedable, so tests get the same names every run.
class RandomSource {
  public:
    explicit RandomSource(std::uint32_t seed = std::random_device{}()) : engine_(seed) {}
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(engine_); }

  private:
    std::mt19937 engine_;
};

// "Anna's Jazz": a word from the first list (21 words), "'s ", one from the second (5).
// Never longer than the 16-character name field.
std::string MakeRandomName(RandomSource& random);
// Eight random letters and digits, written over "........".
std::string RandomSN(RandomSource& random);
// A registration name ("Bright Strings"), at most 15 characters so the SU limit holds.
std::string makeRegistrationName(RandomSource& random);

// One complete file: header, name and "Preset "/"Song   " line, then a 16-character
// registration name at every record position of the family (SU: bank A button 0 and
// buttons 1 to 10 of each bank; A and E: buttons 0 to 10), the rest zero bytes.
std::string buildTestFile(Series family, FileKind kind, const std::string& name,
                          RandomSource& random);

struct MakeFilesRequest {
    std::filesystem::path parent;  // the folder "FAKEPRFILES - ..." is made in
    std::string suffix;            // of the folder name; empty: RandomSN
    int presetsPerFamily = 10;
    int songsPerFamily = 5;
    std::vector<Series> families = {Series::SU, Series::A, Series::E};
};

struct MakeFilesResult {
    std::filesystem::path folder;
    std::vector<std::string> written;  // file names, in the order written
    int notWritten = 0;                // asked for but past the organ's number range
};

// Writes the set, numbering each family and kind from 1 and moving on past names that
// are taken. Shows progress; a failing write goes to the error handler.
MakeFilesResult MakeFiles(Context& ctx, const MakeFilesRequest& request, RandomSource& random);

}  // namespace tvk
