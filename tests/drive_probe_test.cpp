// Reading volume identities from real images, and the Linux descriptions of volumes
// (mountinfo, udev data, sysfs) from this machine and from crafted samples.

#include <gtest/gtest.h>

#include <fstream>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "drive/MountInfo.h"
#include "drive/VolumeHelpers.h"
#include "drive/VolumeProbe.h"
#include "support/DriveImages.h"
#include "support/TempTree.h"

namespace tvk {
namespace {

using test::ImageRecipe;
using test::TempTree;

void patchByte(const std::filesystem::path& image, std::streamoff at, char value) {
    std::fstream f(image, std::ios::binary | std::ios::in | std::ios::out);
    f.seekp(at);
    f.put(value);
}

// The offset of the root directory's label entry: 11 name bytes then attribute 0x08.
std::streamoff labelEntryOffset(const std::filesystem::path& image, const std::string& label) {
    std::string padded = label;
    padded.resize(11, ' ');
    const std::string bytes = test::readFile(image);
    for (auto at = bytes.find(padded + '\x08'); at != std::string::npos;
         at = bytes.find(padded + '\x08', at + 1))
        if (at % 32 == 0) return static_cast<std::streamoff>(at);
    return -1;
}

TEST(DriveProbe, FatImagesGiveTypeLabelAndSerialAsWindowsReadsThem) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    struct Case {
        ImageRecipe recipe;
        std::string fileSystem;
        int bits;
        std::string serialHex;  // as the mirror folder's name carries it
    };
    const Case cases[] = {
        {{"fat12", 2, "SMALL", "1234ABCD"}, "FAT", 12, "1234ABCD"},
        {{"fat16", 32, "MY STICK", "0000ABCD"}, "FAT", 16, "ABCD"},
        {{"fat32", 40, "DEMO STICK", "00012345"}, "FAT32", 32, "12345"},
        {{"fat32", 40, "A B C", "0A1B2C3D"}, "FAT32", 32, "A1B2C3D"},
        {{"fat16", 20, "", "DEADBEEF"}, "FAT", 16, "DEADBEEF"},
    };
    TempTree tree;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.recipe.kind + " " + c.recipe.label);
        const auto probe = probeVolume(test::makeImage(tree, "v.img", c.recipe));
        ASSERT_TRUE(probe);
        EXPECT_EQ(probe->fileSystemName, c.fileSystem);
        EXPECT_EQ(probe->fatBits, c.bits);
        // No label entry means no label, though the boot sector says "NO NAME".
        EXPECT_EQ(probe->label, c.recipe.label);
        EXPECT_EQ(hexUpper(probe->serialNumber), c.serialHex);
        std::filesystem::remove(tree.path("v.img"));
    }
}

// The room a restore counts on an image stick (whose mount reports none): the free
// clusters of its FAT, as mtools counts them, for every FAT width and a cluster size that
// rounds small files up.
TEST(DriveProbe, FreeClustersAreCountedInTheFatAsMtoolsCountsThem) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    TempTree tree;
    for (const ImageRecipe& recipe :
         {ImageRecipe{"fat12", 2, "A", ""}, ImageRecipe{"fat16", 32, "B", ""},
          ImageRecipe{"fat32", 40, "C", ""}}) {
        SCOPED_TRACE(recipe.kind);
        const auto image = test::makeImage(tree, recipe.kind + ".img", recipe);
        // Files of odd sizes, one spanning clusters, one removed again (its clusters free).
        for (const auto& [name, size] :
             {std::pair<const char*, int>{"A.BIN", 1}, {"B.BIN", 70000}, {"C.BIN", 513}}) {
            test::writeFile(tree.path(name), std::string(size, 'x'));
            ASSERT_EQ(test::runCommand("MTOOLS_SKIP_CHECK=1 mcopy -i '" + pathToUtf8(image) +
                                       "' '" + pathToUtf8(tree.path(name)) + "' ::" + name),
                      0);
        }
        ASSERT_EQ(
            test::runCommand("MTOOLS_SKIP_CHECK=1 mdel -i '" + pathToUtf8(image) + "' ::B.BIN"), 0);
        std::string listing;
        test::runCommand("MTOOLS_SKIP_CHECK=1 mdir -i '" + pathToUtf8(image) + "' ::", &listing);
        const auto freeAt = listing.find(" bytes free");
        ASSERT_NE(freeAt, std::string::npos) << listing;
        std::string digits;
        for (auto i = listing.rfind('\n', freeAt) + 1; i < freeAt; ++i)
            if (listing[i] >= '0' && listing[i] <= '9') digits += listing[i];
        FileReader in(image);
        const auto fat = countFatFreeSpace(
            [&](std::uint64_t at, std::size_t size) { return in.readAt(at, size); });
        ASSERT_TRUE(fat);
        EXPECT_EQ(fat->freeClusters * fat->clusterBytes, std::stoull(digits));
    }
}

TEST(DriveProbe, ClusterCountDecidesTheFatTypeAndOemBytesAreDecoded) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    TempTree tree;
    const auto image = test::makeImage(tree, "v.img", {"fat16", 32, "ABC", "11112222"});
    // The informational type text says FAT12; the cluster count still says FAT16.
    for (int i = 0; i < 8; ++i) patchByte(image, 54 + i, "FAT12   "[i]);
    const auto at = labelEntryOffset(image, "ABC");
    ASSERT_GE(at, 0);
    patchByte(image, at, '\x8E');  // code page 437: A with diaeresis
    const auto probe = probeVolume(image);
    ASSERT_TRUE(probe);
    EXPECT_EQ(probe->fileSystemName, "FAT");
    EXPECT_EQ(probe->label,
              "\xC3\x84"
              "BC");
}

TEST(DriveProbe, DamagedBootSectorsAreNotTakenForFat) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    struct Case {
        std::streamoff at;
        char value;
    };
    const Case cases[] = {{0, '\0'}, {11, '\x01'}, {12, '\0'}, {13, '\x03'}, {16, '\0'}};
    TempTree tree;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.at);
        const auto image = test::makeImage(tree, "v.img", {"fat16", 20, "X", ""});
        patchByte(image, c.at, c.value);
        EXPECT_FALSE(probeVolume(image));
        std::filesystem::remove(image);
    }
    EXPECT_THROW(probeVolume(tree.path("missing.img")), RuntimeError);
}

TEST(DriveProbe, OtherFileSystemsAreNamedAsWindowsNamesThemWithUtf8Labels) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    struct Case {
        ImageRecipe recipe;
        std::string fileSystem, label;
    };
    const Case cases[] = {
        // A character beyond the 16-bit range is a surrogate pair on exFAT.
        {{"exfat", 8, "K\xF0\x9F\x8E\xB9Z", ""}, "exFAT", "K\xF0\x9F\x8E\xB9Z"},
        // ext keeps whatever bytes it was given; one that is not UTF-8 shows as U+FFFD.
        {{"ext4", 8, "LI\xB1UX", ""}, "ext4", "LI\xEF\xBF\xBDUX"},
    };
    TempTree tree;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.recipe.kind);
        const auto probe = probeVolume(test::makeImage(tree, c.recipe.kind + ".img", c.recipe));
        ASSERT_TRUE(probe);
        EXPECT_EQ(probe->fileSystemName, c.fileSystem);
        EXPECT_EQ(probe->label, c.label);
        EXPECT_EQ(probe->fatBits, 0);
    }

    struct Name {
        const char *type, *version, *windows;
    };
    for (const Name n : {Name{"vfat", "FAT32", "FAT32"}, Name{"vfat", "FAT16", "FAT"},
                         Name{"vfat", "FAT12", "FAT"}, Name{"exfat", "", "exFAT"},
                         Name{"ntfs3", "", "NTFS"}, Name{"ext4", "1.0", "ext4"}})
        EXPECT_EQ(windowsFileSystemName(n.type, n.version), n.windows) << n.type << n.version;
}

// Hand-made first sectors for the checks no mkfs tool lets one get wrong: sizes read from
// the boot sector must neither shift past the width of a number nor ask for more memory
// than the image holds.
TEST(DriveProbe, ImplausibleSizesInBootSectorsAreNotTrusted) {
    struct Case {
        const char* name;
        std::size_t size;
        std::vector<std::pair<std::size_t, unsigned char>> bytes;
        const char* fileSystem;  // nullptr: no file system recognised
    };
    const std::vector<std::pair<std::size_t, unsigned char>> extMagic = {{0x438, 0x53},
                                                                         {0x439, 0xEF}};
    auto ext = [&](unsigned char logBlockSize) {
        auto b = extMagic;
        b.push_back({0x418, logBlockSize});
        return b;
    };
    auto exfat = [](unsigned char sectorShift, unsigned char clusterShift) {
        std::vector<std::pair<std::size_t, unsigned char>> b;
        for (std::size_t i = 0; i < 8; ++i) b.push_back({3 + i, "EXFAT   "[i]});
        b.insert(b.end(), {{96, 2}, {108, sectorShift}, {109, clusterShift}});
        return b;
    };
    const Case cases[] = {
        {"ext 64 KiB blocks", 2048, ext(6), "ext2"},
        {"ext block size 2^46", 2048, ext(36), nullptr},
        {"ext block size 2^64", 2048, ext(54), nullptr},
        {"ext block size 2^265", 2048, ext(255), nullptr},
        {"exFAT 32 MiB clusters", 512, exfat(12, 13), "exFAT"},
        {"exFAT 16 GiB clusters", 512, exfat(9, 25), nullptr},
        {"exFAT 128 GiB clusters", 512, exfat(12, 25), nullptr},
        {"exFAT root beyond the image", 512, exfat(9, 16), "exFAT"},
    };
    TempTree tree;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string image(c.size, '\0');
        for (const auto& [at, value] : c.bytes) image[at] = static_cast<char>(value);
        test::writeFile(tree.path("v.img"), image);
        const auto probe = probeVolume(tree.path("v.img"));
        if (!c.fileSystem) {
            EXPECT_FALSE(probe);
            continue;
        }
        ASSERT_TRUE(probe);
        EXPECT_EQ(probe->fileSystemName, c.fileSystem);
        EXPECT_EQ(probe->label, "");
    }
}

TEST(DriveMountInfo, ParsesEscapesOptionalFieldsAndRejectsJunk) {
    const auto e = parseMountInfoLine(
        "36 35 8:17 / /media/user/MY\\040STICK\\011x\\134y rw,nosuid shared:1 master:2 - vfat "
        "/dev/sdb1 rw,fmask=0022");
    ASSERT_TRUE(e);
    EXPECT_EQ(e->major, 8u);
    EXPECT_EQ(e->minor, 17u);
    EXPECT_EQ(e->mountPoint, "/media/user/MY STICK\tx\\y");
    EXPECT_EQ(e->fsType, "vfat");
    EXPECT_EQ(e->source, "/dev/sdb1");
    EXPECT_FALSE(e->readOnly());

    const auto ro = parseMountInfoLine("40 1 11:0 / /media/cd ro,relatime - iso9660 /dev/sr0 ro");
    ASSERT_TRUE(ro);
    EXPECT_TRUE(ro->readOnly());
    for (const char* junk : {"", "36 35 8:17 / /mnt rw", "36 35 x:y / /mnt rw - vfat /dev/sdb1 rw",
                             "36 35 8:17 / /mnt rw shared:1 -"})
        EXPECT_FALSE(parseMountInfoLine(junk)) << junk;
}

TEST(DriveMountInfo, ThisMachinesMountTableParsesCompletely) {
    const std::string text = test::readFile("/proc/self/mountinfo");
    std::size_t lines = 0;
    for (char c : text) lines += c == '\n';
    const auto entries = parseMountInfo(text);
    EXPECT_EQ(entries.size(), lines);
    EXPECT_TRUE(std::any_of(entries.begin(), entries.end(),
                            [](const MountEntry& m) { return m.mountPoint == "/"; }));
}

TEST(DriveMountInfo, UdevDataGivesLabelAndSerialLikeTheBootSector) {
    TVK_LINUX_ONLY("volume images are made with mkfs");
    const auto props = parseUdevData(
        "S:disk/by-label/"
        "MY\\x20STICK\nE:ID_FS_LABEL_ENC=MY\\x20STICK\\x2fA\nE:ID_FS_UUID=0A1B-2C3D\n"
        "E:ID_FS_TYPE=vfat\nE:ID_FS_VERSION=FAT32\nG:systemd\n");
    EXPECT_EQ(decodeUdevEscapes(props.at("ID_FS_LABEL_ENC")), "MY STICK/A");
    EXPECT_EQ(props.at("ID_FS_VERSION"), "FAT32");
    EXPECT_EQ(props.count("disk/by-label/MY\\x20STICK"), 0u);

    const VolumeProbe fromUdev = probeFromUdev(props, "vfat");
    EXPECT_EQ(fromUdev.fileSystemName, "FAT32");
    EXPECT_EQ(fromUdev.label, "MY STICK/A");
    EXPECT_EQ(probeFromUdev({}, "vfat").fileSystemName, "FAT");
    EXPECT_FALSE(probeFromUdev({}, "vfat").hasSerial);

    // The same stick must get the same mirror folder on both systems.
    TempTree tree;
    const auto probe = probeVolume(test::makeImage(tree, "v.img", {"fat32", 40, "S", "0A1B2C3D"}));
    ASSERT_TRUE(probe);
    EXPECT_EQ(serialFromUuid(props.at("ID_FS_UUID")), probe->serialNumber);

    struct Uuid {
        const char* text;
        std::optional<std::uint32_t> serial;
    };
    for (const Uuid u : {Uuid{"1234-ABCD", 0x1234ABCD}, Uuid{"0000-00ff", 0xFF},
                         Uuid{"0123456789ABCDEF", 0x89ABCDEF}, Uuid{"", std::nullopt},
                         Uuid{"12G4-ABCD", std::nullopt}})
        EXPECT_EQ(serialFromUuid(u.text), u.serial) << u.text;
}

TEST(DriveSysfs, RemovableVolumesAreJudgedByTheirDiskAndListedInDeviceOrder) {
    TVK_LINUX_ONLY("the kernel's device tree is folder symlinks");
    TempTree sys;
    // A sysfs device folder and its /sys/dev/block link, as the kernel lays them out.
    const auto device = [&](const std::string& number, const std::string& path,
                            const char* removable, bool partition) {
        const auto dir = sys.mkdir("devices/" + path);
        const auto disk = partition ? dir.parent_path() : dir;
        test::writeFile(disk / "removable", std::string(removable) + "\n");
        if (partition) test::writeFile(dir / "partition", "1\n");
        sys.mkdir("dev/block");
        std::filesystem::create_directory_symlink(dir, sys.path("dev/block/" + number));
    };
    device("8:33", "pci0/usb2/2-1/host6/block/sdc/sdc1", "0", true);  // USB, partition
    device("8:2", "pci0/ata1/host0/block/sda/sda2", "0", true);       // internal disk
    device("8:16", "pci0/ata2/host1/block/sdb", "1", false);          // removable, whole
    device("7:0", "virtual/block/loop0", "0", false);
    device("11:0", "pci0/ata3/block/sr0", "1", false);
    device("65:161", "pci0/usb3/3-1/host9/block/sdaa/sdaa1", "1", true);
    const auto mounts = parseMountInfo(
        "30 1 8:2 / / rw - ext4 /dev/sda2 rw\n"
        "31 30 8:33 / /media/u/ORGAN\\040STICK rw - vfat /dev/sdc1 rw\n"
        "32 30 8:33 / /mnt/again rw - vfat /dev/sdc1 rw\n"
        "33 30 8:16 /sub /mnt/bind rw - vfat /dev/sdb rw\n"
        "34 30 8:16 / /media/u/WHOLE rw - vfat /dev/sdb rw\n"
        "35 30 7:0 / /mnt/loop rw - vfat /dev/loop0 rw\n"
        "36 30 11:0 / /media/cd ro - iso9660 /dev/sr0 ro\n"
        "37 30 65:161 / /media/u/LAST rw - vfat /dev/sdaa1 rw\n"
        "38 30 0:40 / /tmp/x rw - fuse.fusefat fusefat rw\n"
        "39 30 8:99 / /media/u/GONE rw - vfat /dev/sdz1 rw\n");
    std::vector<std::string> listed;
    for (const auto& v : removableVolumes(mounts, sys.root()))
        listed.push_back(v.id + " " + v.mount.mountPoint + " " +
                         std::to_string(static_cast<int>(v.type)));
    EXPECT_EQ(listed,
              (std::vector<std::string>{"sdb /media/u/WHOLE 2", "sr0 /media/cd 5",
                                        "sdc1 /media/u/ORGAN STICK 2", "sdaa1 /media/u/LAST 2"}));
}

TEST(DriveHelpers, DriveLettersNumbersAndUnitMasks) {
    EXPECT_EQ(driveNumber("E"), 4);
    EXPECT_EQ(driveNumber("a"), 0);
    EXPECT_EQ(normaliseDriveText("E"), "E:\\");
    EXPECT_EQ(normaliseDriveText("E:"), "E:\\");
    EXPECT_EQ(normaliseDriveText("E:\\"), "E:\\");
    EXPECT_EQ(GetDrive(1u << 4), "E");
    EXPECT_EQ(GetDrive((1u << 5) | (1u << 4)), "E");
    EXPECT_EQ(GetDrive(1u << 25), "Z");
    EXPECT_EQ(GetDrive(0), "");
}

}  // namespace
}  // namespace tvk
