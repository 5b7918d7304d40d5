#include "drive/VolumeProbe.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"

namespace tvk {

namespace {

// Code page 437, bytes 0x80..0xFF: the OEM code page FAT names are written in.
constexpr std::array<char16_t, 128> kCp437High = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF,
    0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,
    0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA,
    0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557,
    0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,
    0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9, 0x03B4,
    0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248,
    0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

std::uint32_t le(std::string_view b, std::size_t at, int bytes) {
    std::uint32_t v = 0;
    for (int i = bytes - 1; i >= 0; --i) {
        const std::size_t p = at + static_cast<std::size_t>(i);
        v = (v << 8) | (p < b.size() ? static_cast<unsigned char>(b[p]) : 0u);
    }
    return v;
}

std::string trimRight(std::string text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.pop_back();
    return text;
}

bool isPowerOfTwo(std::uint32_t v) {
    return v != 0 && (v & (v - 1)) == 0;
}

// exFAT labels are UTF-16: pairs are joined, a lone surrogate becomes U+FFFD.
std::string utf16ToUtf8(std::u16string_view units) {
    std::string out;
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        const bool high = c >= 0xD800 && c < 0xDC00;
        if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        appendUtf8(out, c);
    }
    return out;
}

// The length of the well-formed UTF-8 sequence `b` begins with, or 0 (no overlong forms,
// no surrogates, nothing above U+10FFFF).
std::size_t utf8SequenceAt(std::string_view b) {
    const auto in = [&](std::size_t i, unsigned lo, unsigned hi) {
        return i < b.size() && static_cast<unsigned char>(b[i]) >= lo &&
               static_cast<unsigned char>(b[i]) <= hi;
    };
    const auto lead = static_cast<unsigned char>(b[0]);
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return in(1, 0x80, 0xBF) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const bool second = in(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF);
        return second && in(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const bool second = in(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
        return second && in(2, 0x80, 0xBF) && in(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

// ext labels are UTF-8 by convention only: a byte that does not fit becomes U+FFFD.
std::string validUtf8(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const std::size_t n = utf8SequenceAt(bytes);
        if (n)
            out += bytes.substr(0, n);
        else
            appendUtf8(out, 0xFFFD);
        bytes.remove_prefix(n ? n : 1);
    }
    return out;
}

struct FatLayout {
    std::uint32_t bytesPerSector = 0, sectorsPerCluster = 0, reserved = 0, fats = 0;
    std::uint32_t rootEntries = 0, totalSectors = 0, fatSectors = 0, rootCluster = 0;
    std::uint32_t rootDirSectors = 0, firstDataSector = 0, clusters = 0;
    std::uint64_t sectorOffset(std::uint64_t sector) const { return sector * bytesPerSector; }
    std::uint64_t clusterOffset(std::uint32_t cluster) const {
        return sectorOffset(firstDataSector + std::uint64_t(cluster - 2) * sectorsPerCluster);
    }
};

// The BIOS parameter block, checked the way a careful driver checks it.
std::optional<FatLayout> readFatLayout(std::string_view bs) {
    if (bs.size() < 512) return std::nullopt;
    const auto jump = static_cast<unsigned char>(bs[0]);
    if (jump != 0xEB && jump != 0xE9) return std::nullopt;
    FatLayout l;
    l.bytesPerSector = le(bs, 11, 2);
    l.sectorsPerCluster = le(bs, 13, 1);
    l.reserved = le(bs, 14, 2);
    l.fats = le(bs, 16, 1);
    l.rootEntries = le(bs, 17, 2);
    l.totalSectors = le(bs, 19, 2) ? le(bs, 19, 2) : le(bs, 32, 4);
    l.fatSectors = le(bs, 22, 2) ? le(bs, 22, 2) : le(bs, 36, 4);
    l.rootCluster = le(bs, 44, 4);
    if (l.bytesPerSector < 512 || l.bytesPerSector > 4096 || !isPowerOfTwo(l.bytesPerSector) ||
        !isPowerOfTwo(l.sectorsPerCluster) || l.reserved == 0 || l.fats == 0 || l.fatSectors == 0 ||
        l.totalSectors == 0)
        return std::nullopt;
    l.rootDirSectors = (l.rootEntries * 32 + l.bytesPerSector - 1) / l.bytesPerSector;
    const std::uint64_t meta = l.reserved + std::uint64_t(l.fats) * l.fatSectors + l.rootDirSectors;
    if (meta >= l.totalSectors) return std::nullopt;
    l.firstDataSector = static_cast<std::uint32_t>(meta);
    l.clusters = (l.totalSectors - l.firstDataSector) / l.sectorsPerCluster;
    return l;
}

// The label entry of a directory block: attribute 0x08 without the long-name marks.
std::optional<std::string> findFatLabel(std::string_view dir, bool& ended) {
    for (std::size_t at = 0; at + 32 <= dir.size(); at += 32) {
        const auto first = static_cast<unsigned char>(dir[at]);
        if (first == 0x00) {
            ended = true;
            return std::nullopt;
        }
        const auto attr = static_cast<unsigned char>(dir[at + 11]);
        if (first == 0xE5 || (attr & 0x0F) == 0x0F || (attr & 0x18) != 0x08) continue;
        std::string name(dir.substr(at, 11));
        if (first == 0x05) name[0] = static_cast<char>(0xE5);
        return decodeOemName(trimRight(name));
    }
    return std::nullopt;
}

std::string fatRootLabel(const SectorReader& read, const FatLayout& l, int bits) {
    bool ended = false;
    if (bits != 32) {
        const auto at = l.sectorOffset(l.reserved + std::uint64_t(l.fats) * l.fatSectors);
        return findFatLabel(read(at, l.rootEntries * 32u), ended).value_or("");
    }
    // FAT32 keeps the root in a cluster chain; follow it a bounded number of links.
    const std::uint64_t clusterBytes = std::uint64_t(l.bytesPerSector) * l.sectorsPerCluster;
    std::uint32_t cluster = l.rootCluster;
    for (int hops = 0; hops < 64 && cluster >= 2 && cluster < l.clusters + 2 && !ended; ++hops) {
        if (auto label = findFatLabel(read(l.clusterOffset(cluster), clusterBytes), ended))
            return *label;
        const std::string entry = read(l.sectorOffset(l.reserved) + std::uint64_t(cluster) * 4, 4);
        cluster = le(entry, 0, 4) & 0x0FFFFFFF;
    }
    return {};
}

std::optional<VolumeProbe> probeFat(const SectorReader& read, std::string_view bs) {
    const auto layout = readFatLayout(bs);
    if (!layout) return std::nullopt;
    VolumeProbe p;
    // The cluster count decides the FAT type; the text in the boot sector is only a hint.
    p.fatBits = layout->clusters < 4085 ? 12 : layout->clusters < 65525 ? 16 : 32;
    p.fileSystemName = p.fatBits == 32 ? "FAT32" : "FAT";
    if (p.fatBits == 32 && layout->rootCluster < 2) return std::nullopt;
    const std::size_t sigAt = p.fatBits == 32 ? 66 : 38;
    const auto sig = static_cast<unsigned char>(bs[sigAt]);
    if (sig == 0x29 || sig == 0x28) {
        p.serialNumber = le(bs, sigAt + 1, 4);
        p.hasSerial = true;
    }
    p.totalBytes = std::uint64_t(layout->totalSectors) * layout->bytesPerSector;
    p.label = fatRootLabel(read, *layout, p.fatBits);
    return p;
}

}  // namespace

std::optional<FatFreeSpace> countFatFreeSpace(const SectorReader& read) {
    const auto layout = readFatLayout(read(0, 512));
    if (!layout) return std::nullopt;
    const FatLayout& l = *layout;
    const int bits = l.clusters < 4085 ? 12 : l.clusters < 65525 ? 16 : 32;
    // The first FAT, read whole: at most a few MB even for a large FAT32 stick.
    const std::uint64_t entries = std::uint64_t(l.clusters) + 2;
    const std::uint64_t needed = (entries * static_cast<unsigned>(bits) + 7) / 8;
    const std::uint64_t fatBytes =
        std::min<std::uint64_t>(needed, std::uint64_t(l.fatSectors) * l.bytesPerSector);
    const std::string fat = read(l.sectorOffset(l.reserved), static_cast<std::size_t>(fatBytes));
    FatFreeSpace space;
    space.clusterBytes = l.bytesPerSector * l.sectorsPerCluster;
    for (std::uint64_t c = 2; c < entries; ++c) {
        std::uint32_t value = 0;
        if (bits == 12) {
            const std::uint64_t at = c + c / 2;
            if (at + 2 > fat.size()) break;
            const std::uint32_t pair = le(fat, static_cast<std::size_t>(at), 2);
            value = (c & 1) ? pair >> 4 : pair & 0x0FFF;
        } else {
            const std::uint64_t at = c * static_cast<unsigned>(bits / 8);
            if (at + bits / 8 > fat.size()) break;
            value = le(fat, static_cast<std::size_t>(at), bits / 8);
            if (bits == 32) value &= 0x0FFFFFFF;
        }
        if (value == 0) ++space.freeClusters;
    }
    return space;
}

namespace {

std::optional<VolumeProbe> probeExfat(const SectorReader& read, std::string_view bs) {
    const std::uint32_t sectorShift = le(bs, 108, 1), clusterShift = le(bs, 109, 1);
    // Clusters are at most 32 MiB: the limit is on the two shifts together.
    if (sectorShift < 9 || sectorShift > 12 || sectorShift + clusterShift > 25) return std::nullopt;
    VolumeProbe p;
    p.fileSystemName = "exFAT";
    p.serialNumber = le(bs, 100, 4);
    p.hasSerial = true;
    p.totalBytes = (std::uint64_t(le(bs, 72, 4)) | std::uint64_t(le(bs, 76, 4)) << 32)
                   << sectorShift;
    const std::uint64_t heap = std::uint64_t(le(bs, 88, 4)) << sectorShift;
    const std::uint32_t root = le(bs, 96, 4);
    const std::uint64_t clusterBytes = std::uint64_t(1) << (sectorShift + clusterShift);
    if (root < 2) return p;
    const std::string dir = read(heap + (root - 2) * clusterBytes, clusterBytes);
    for (std::size_t at = 0; at + 32 <= dir.size(); at += 32) {
        const auto type = static_cast<unsigned char>(dir[at]);
        if (type == 0x00) break;
        if (type != 0x83) continue;
        const std::uint32_t count = std::min<std::uint32_t>(le(dir, at + 1, 1), 11);
        std::u16string units;
        for (std::uint32_t i = 0; i < count; ++i)
            units += static_cast<char16_t>(le(dir, at + 2 + i * 2, 2));
        p.label = utf16ToUtf8(units);
        break;
    }
    return p;
}

std::optional<VolumeProbe> probeExt(const SectorReader& read) {
    const std::string sb = read(1024, 1024);
    if (sb.size() < 1024 || le(sb, 56, 2) != 0xEF53) return std::nullopt;
    // Blocks run from 1 KiB to 64 KiB; anything larger is a damaged superblock.
    const std::uint32_t logBlockSize = le(sb, 24, 4);
    if (logBlockSize > 6) return std::nullopt;
    VolumeProbe p;
    const bool extents = le(sb, 96, 4) & 0x40, journal = le(sb, 92, 4) & 0x4;
    p.fileSystemName = extents ? "ext4" : journal ? "ext3" : "ext2";
    p.serialNumber = le(sb, 104, 4);
    p.hasSerial = true;
    p.label = validUtf8(trimRight(sb.substr(120, 16)));
    p.totalBytes = std::uint64_t(le(sb, 4, 4)) << (10 + logBlockSize);
    return p;
}

}  // namespace

std::string decodeOemName(std::string_view bytes) {
    std::string out;
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x80)
            out += ch;
        else
            appendUtf8(out, kCp437High[b - 0x80]);
    }
    return out;
}

std::optional<VolumeProbe> probeVolume(const SectorReader& read) {
    const std::string bs = read(0, 512);
    if (bs.size() == 512 && bs.compare(3, 8, "EXFAT   ") == 0) return probeExfat(read, bs);
    if (bs.size() == 512 && bs.compare(3, 8, "NTFS    ") == 0) {
        VolumeProbe p;
        p.fileSystemName = "NTFS";
        p.serialNumber = le(bs, 72, 4);
        p.hasSerial = true;
        return p;
    }
    if (auto fat = probeFat(read, bs)) return fat;
    return probeExt(read);
}

std::optional<VolumeProbe> probeVolume(const std::filesystem::path& deviceOrImage) {
    FileReader in(deviceOrImage);
    return probeVolume([&](std::uint64_t offset, std::size_t size) {
        // A size read from the boot sector never reads past the medium (readAt stops at its
        // end); a medium that fails a read is a device error whatever its driver says.
        try {
            return in.readAt(offset, size);
        } catch (const RuntimeError&) {
            throw RuntimeError(kErrDeviceIO, pathToUtf8(deviceOrImage));
        }
    });
}

std::string windowsFileSystemName(std::string_view type, std::string_view version) {
    const std::string t = toLowerAscii(type);
    if (t == "vfat" || t == "msdos" || t == "fat")
        return toUpperAscii(version) == "FAT32" ? "FAT32" : "FAT";
    if (t == "exfat") return "exFAT";
    if (t == "ntfs" || t == "ntfs3" || t == "ntfs-3g") return "NTFS";
    if (t == "iso9660") return "CDFS";
    if (t == "udf") return "UDF";
    return std::string(type);
}

}  // namespace tvk
