// The first sectors of any volume, damaged ones included, as an image file and as a
// medium in memory. Both readings agree, no read asks for more than the largest cluster
// any of the file systems allows, and what comes out is one of the known names with a
// label of valid UTF-8.

#include <set>

#include "FuzzSupport.h"
#include "drive/VolumeProbe.h"

using namespace tvk;

namespace {

constexpr std::size_t kLargestCluster = std::size_t(32) << 20;  // exFAT's limit

bool same(const std::optional<VolumeProbe>& a, const std::optional<VolumeProbe>& b) {
    if (!a || !b) return !a && !b;
    return a->fileSystemName == b->fileSystemName && a->fatBits == b->fatBits &&
           a->serialNumber == b->serialNumber && a->hasSerial == b->hasSerial &&
           a->label == b->label && a->totalBytes == b->totalBytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    const std::string_view medium = fuzz::asText(data, size);

    const auto inMemory = probeVolume([&](std::uint64_t offset, std::size_t count) {
        fuzz::check(count <= kLargestCluster, "a read larger than any cluster was asked for");
        if (offset >= medium.size()) return std::string();
        return std::string(medium.substr(static_cast<std::size_t>(offset), count));
    });
    const auto fromFile = probeVolume(f.file("stick.img", medium));
    fuzz::check(same(inMemory, fromFile), "the image file and the medium in memory disagree");
    if (!inMemory) return 0;

    static const std::set<std::string> kNames = {"FAT",  "FAT32", "exFAT", "NTFS",
                                                 "ext2", "ext3",  "ext4"};
    fuzz::check(kNames.count(inMemory->fileSystemName) == 1, "an unknown file-system name");
    const int bits = inMemory->fatBits;
    fuzz::check(inMemory->fileSystemName == "FAT"     ? bits == 12 || bits == 16
                : inMemory->fileSystemName == "FAT32" ? bits == 32
                                                      : bits == 0,
                "the FAT type does not match the file-system name");
    fuzz::check(fuzz::isValidUtf8(inMemory->label), "the label is not valid UTF-8");
    if (bits != 0 || inMemory->fileSystemName == "exFAT")
        fuzz::check(fuzz::utf8Characters(inMemory->label) <= 11, "a label longer than 11");
    return 0;
}
