#include "drive/ScanForUSBs.h"

#include "app/CommonRoutines.h"
#include "app/FileIO.h"
#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "app/Version.h"
#include "drive/StickLock.h"
#include "drive/VolumeCommands.h"
#include "library/SortRecovery.h"
#include "library/TransferCommands.h"
#include "organfiles/AnalyzeContent.h"

namespace tvk {

namespace {

const std::string kBr(kLineBreak), kBlank(kBlankLine), kQ(kQuote);

void enable(MainState& state, const std::string& control, bool on) {
    state.enabled[control] = on;
}

void setTransferButtons(MainState& state, bool update, bool restore, bool others) {
    enable(state, controlName("btnUSB_Docs", 0), update);
    enable(state, controlName("btnUSB_Docs", 1), restore);
    for (int i = 2; i < kTransferButtons; ++i) enable(state, controlName("btnUSB_Docs", i), others);
}

// No usable drive: the thumbdrive list shows nothing and the drive commands wait.
void showNoDrive(Context& ctx) {
    MainState& s = ctx.state;
    s.usbPattern = kNoDrivePattern;
    s.drive.present = false;
    setTransferButtons(s, false, false, false);
    enable(s, "btnSort", false);
    s.counts = ContentCounts{};
    s.driveInfoText.clear();
}

void forgetDrive(Context& ctx) {
    showNoDrive(ctx);
    ctx.state.drive = ThumbDriveState{};
    enable(ctx.state, "btnRenameVol", false);
    ctx.ui.setStatus(StatusPanel::Drive, "");
}

bool offerFormat(Context& ctx, const ThumbDriveState& d) {
    const std::string text = "This thumbdrive has the " + kQ + d.fileSystem + kQ + " File System." +
                             kBr + "It should have the " + kQ + "FAT" + kQ + " or " + kQ + "FAT32" +
                             kQ + " File System." + kBlank + "This thumbdrive is also EMPTY." +
                             kBlank +
                             "Do you want to FORMAT this thumbdrive to the correct File System?";
    return ctx.ui.message(Message{"WRONG FILE SYSTEM", text, Buttons::YesNo}) == Answer::Yes;
}

bool offerTavrinFolder(Context& ctx) {
    const std::string text =
        "This Thumbdrive is properly formatted but does not have a TAVRIN folder." + kBlank +
        "Do you want to create a TAVRIN folder on this thumbdrive?";
    return ctx.ui.message(Message{"NO TAVRIN FOLDER", text, Buttons::YesNo}) == Answer::Yes;
}

// The transfer buttons of a drive that passed the file-system and folder checks.
bool enableForNamedDrive(Context& ctx) {
    MainState& s = ctx.state;
    if (s.drive.volumeName.empty()) {
        ctx.ui.inform(kProjectName, "The attached thumbdrive needs a Volume Name.");
        setTransferButtons(s, false, false, false);
        return false;
    }
    // Updating and restoring need the drive's mirror folder; adding creates it.
    bool mirror = false;
    if (s.drive.serialHex != "0") {
        const auto folder = ctx.paths.libraryRoot /
                            pathFromUtf8(mirrorFolderName(s.drive.volumeName, s.drive.serialHex));
        mirror = FolderExists(ctx, folder);
    }
    setTransferButtons(s, mirror, mirror, true);
    return true;
}

void countContent(Context& ctx, Routine& r) {
    MainState& s = ctx.state;
    const auto ignore = ctx.volumes->systemEntries(s.drive.letter);
    std::size_t presets = 0, recordings = 0;
    r.step("Count the files of " + pathToUtf8(s.drive.tavrinFolder()), [&] {
        presets = listPlainFiles(s.drive.tavrinFolder(), "*.?pg", ignore).size();
        recordings = listPlainFiles(s.drive.tavrinFolder(), "*.?mr", ignore).size();
    });
    AnalyzeContent(ctx, s.drive.tavrinFolder());
    enable(s, "btnSort", s.drive.present && presets + recordings > 0);
    ctx.ui.setStatus(StatusPanel::Progress, std::to_string(presets + recordings) + " items");
}

// The drive's identity as the volume query gives it; the drive stays unaccepted for now.
bool readDrive(Context& ctx, Routine& r, const std::string& drive, const std::string& deviceId) {
    Volumes& volumes = *ctx.volumes;
    ThumbDriveState d;
    d.letter = drive;
    d.deviceId = deviceId;
    VolumeInfo info;
    const bool read = r.step("Read the volume information of drive " + drive, [&] {
        d.driveType = static_cast<int>(volumes.driveType(drive));
        d.root = volumes.rootPath(drive);
        d.shownRoot = volumes.shownRoot(drive);
        info = volumes.volumeInformation(drive);
    });
    if (!read) return false;
    d.serialHex = hexUpper(info.serialNumber);
    d.volumeName = info.volumeName;
    d.fileSystem = info.fileSystemName;
    d.fileSystemOk = d.fileSystem == "FAT" || d.fileSystem == "FAT32";  // exactly, case too
    d.tavrinPresent = FolderExists(ctx, d.tavrinFolder());
    ctx.state.drive = d;
    showNoDrive(ctx);
    enable(ctx.state, "btnRenameVol", false);
    return true;
}

// Drive kind, file system and TAVRIN folder, repairing what the user agrees to. A
// format scans again itself; its outcome is the scan's.
bool checkDrive(Context& ctx, Routine& r, ScanOutcome& rescanned) {
    ThumbDriveState& d = ctx.state.drive;
    const auto type = static_cast<DriveType>(d.driveType);
    const bool fit = (type == DriveType::Removable || type == DriveType::CdRom) && d.fileSystemOk &&
                     d.tavrinPresent;
    if (!fit) ctx.ui.setStatus(StatusPanel::Progress, "");  // no longer analyzing
    if (type != DriveType::Removable && type != DriveType::CdRom) {
        ctx.ui.inform(kProjectName, "The storage device attached is not USB or CD-ROM");
        return false;
    }
    if (!d.fileSystemOk) {
        if (DriveEmpty(ctx, d.root, ctx.volumes->systemEntries(d.letter))) {
            if (offerFormat(ctx, d)) rescanned = mnuFileFormat_Click(ctx);
        } else {
            ctx.ui.inform(kProjectName,
                          "This Thumbdrive is NOT formatted correctly for use in a Tavrin Organ.");
        }
        return false;
    }
    if (d.tavrinPresent) return true;
    if (!offerTavrinFolder(ctx)) return false;
    const auto folder = d.tavrinFolder();
    if (!r.step("Create " + pathToUtf8(folder), [&] { std::filesystem::create_directory(folder); }))
        return false;
    d.tavrinPresent = true;
    return true;
}

// A copy's temporary file is incomplete by definition (a complete one is renamed at
// once) and its source is still where it was, so one left by a stopped command goes, as
// went those the drive layer found half written under their own names. The sort's
// temporary names are its journal's; the caller keeps them while one is open.
void removeStrayTemporaries(Context& ctx, Routine& r) {
    const auto folder = ctx.state.drive.tavrinFolder();
    std::vector<std::filesystem::path> stray;
    r.step("List " + pathToUtf8(folder), [&] {
        stray.clear();
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (isTemporaryName(fileNameUtf8(entry.path()))) stray.push_back(entry.path());
    });
    int removed = 0;
    for (const auto& name : ctx.volumes->takeUnfinishedRemoved(ctx.state.drive.letter)) {
        r.detail("Removed the unfinished copy " + name);
        ++removed;
    }
    for (const auto& file : stray) {
        if (r.step("Remove the unfinished copy " + pathToUtf8(file),
                   [&] { std::filesystem::remove(file); }))
            ++removed;
    }
    if (removed > 0)
        ctx.ui.setStatus(StatusPanel::Second, "Removed " + std::to_string(removed) +
                                                  " unfinished copies left by a stopped command");
}

// What an earlier command left unfinished on the stick, while no other command of the
// program works on it (that one's temporary files are still being written).
void settleEarlierCommands(Context& ctx, Routine& r) {
    const auto lock = lockStickQuietly(ctx, StickUse::Write);
    if (!lock) {
        r.detail(
            "The thumbdrive is busy with another command; its leftovers wait for the next scan");
        return;
    }
    const bool sortSettled = offerSortRecovery(ctx);
    offerRestoreRecovery(ctx);
    if (sortSettled) removeStrayTemporaries(ctx, r);
}

ScanOutcome acceptDrive(Context& ctx, Routine& r) {
    MainState& s = ctx.state;
    enable(s, "btnRenameVol", true);
    s.drive.present = enableForNamedDrive(ctx);
    ctx.ui.setStatus(StatusPanel::Drive, driveStatusText(s.drive));
    s.usbPattern = s.pattern;
    settleEarlierCommands(ctx, r);  // before anything else works on the stick's files
    countContent(ctx, r);
    if (s.refreshLists) s.refreshLists();
    if (!s.drive.present) return ScanOutcome::Refused;
    return ctx.settings.autoBackup ? ScanOutcome::AutoBackupWanted : ScanOutcome::Accepted;
}

}  // namespace

std::string mirrorFolderName(const std::string& volumeName, const std::string& serialHex) {
    return volumeName + " - " + serialHex;
}

std::string driveStatusText(const ThumbDriveState& d) {
    return "Volume Name: " + d.volumeName + "  Serial Number:" + d.serialHex +
           "  DevID:" + d.deviceId;
}

ScanOutcome ScanForUSBs(Context& ctx, const DeviceNotice* notice) {
    auto outcome = ScanOutcome::Refused;
    routine(ctx, "frmMain.ScanForUSBs", [&](Routine& r) {
        std::string drive, deviceId;
        if (ctx.volumes) {
            r.step("Look for a removable drive", [&] {
                drive = notice ? notice->drive : firstRemovableDrive(*ctx.volumes);
                if (!drive.empty())
                    deviceId = notice ? notice->deviceId : ctx.volumes->deviceId(drive);
            });
        }
        if (drive.empty()) return forgetDrive(ctx);
        ctx.ui.setStatus(StatusPanel::Progress, "ANALYZING THUMBDRIVE, JUST A MOMENT...");
        if (!readDrive(ctx, r, drive, deviceId)) return forgetDrive(ctx);
        if (checkDrive(ctx, r, outcome)) outcome = acceptDrive(ctx, r);
    });
    return outcome;
}

ScanOutcome SysInfo1_DeviceArrival(Context& ctx, const DeviceNotice& notice) {
    auto outcome = ScanOutcome::Refused;
    routine(ctx, "frmMain.SysInfo1_DeviceArrival", [&](Routine& r) {
        const ThumbDriveState& current = ctx.state.drive;
        const bool inUse = current.present && current.letter != notice.drive && ctx.volumes &&
                           ctx.volumes->driveType(current.letter) == DriveType::Removable;
        if (inUse) {
            r.detail("Drive " + notice.drive + " ignored while " + current.letter + " is in use");
            return;
        }
        outcome = ScanForUSBs(ctx, &notice);
    });
    return outcome;
}

ScanOutcome SysInfo1_DeviceRemoveComplete(Context& ctx, const DeviceNotice& notice) {
    auto outcome = ScanOutcome::Refused;
    routine(ctx, "frmMain.SysInfo1_DeviceRemoveComplete", [&](Routine& r) {
        r.detail("DRIVE INFO:");
        outcome = ScanForUSBs(ctx);
        if (!ctx.state.drive.present) ctx.state.usbPattern = kNoDrivePattern;
    });
    return outcome;
}

}  // namespace tvk
