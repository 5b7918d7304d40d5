#include "drive/VolumeCommands.h"

#include <optional>

#include "app/CommonRoutines.h"
#include "app/Routine.h"
#include "app/StickFaults.h"
#include "app/Text.h"
#include "app/Version.h"
#include "drive/ScanForUSBs.h"
#include "drive/Volumes.h"

namespace tvk {

namespace {

const std::string kBr(kLineBreak), kBlank(kBlankLine), kQ(kQuote);
constexpr const char* kFormatTitle = "FORMAT THUMBDRIVE";

bool confirmFormat(Context& ctx, const ThumbDriveState& d, bool empty) {
    const std::string where = "Drive: " + pathToUtf8(d.root) + "    VolumeName: " + d.volumeName;
    const std::string text =
        empty
            ? "YOU ARE ABOUT TO FORMAT THIS THUMBDRIVE" + kBr +
                  "Please confirm you want to format this thumbdrive currently known as " + kBr +
                  where
            : "YOU ARE ABOUT TO FORMAT THIS THUMBDRIVE" + kBr + "This thumbdrive it NOT EMPTY." +
                  kBr + "Do you want to FORMAT this thumbdrive, currently known as " + kBr + where;
    return ctx.ui.message(Message{kFormatTitle, text, Buttons::YesNo, Icon::Question, 2}) ==
           Answer::Yes;
}

// Hands the drive to the format; only removable drives are ever formatted, and nothing
// is written to any other.
std::optional<FormatOutcome> formatDrive(Context& ctx, Routine& r, const ThumbDriveState& d) {
    Volumes& volumes = *ctx.volumes;
    FormatOutcome outcome{0, {}};
    if (volumes.driveType(d.letter) != DriveType::Removable) {
        ctx.ui.inform(kFormatTitle, "Drive " + pathToUtf8(d.root) +
                                        " is not a removable drive, so it was not formatted.");
        return std::nullopt;
    }
    r.step("Format drive " + normaliseDriveText(d.letter) + " (drive number " +
               std::to_string(driveNumber(d.letter)) + ")",
           [&] { outcome = volumes.format(d.letter, d.volumeName); });
    if (!outcome.problem.empty())
        ctx.ui.inform(kFormatTitle,
                      "The thumbdrive was not formatted; its files are as they were." + kBlank +
                          outcome.problem,
                      Icon::Exclamation);
    return outcome;
}

}  // namespace

std::string volumeLabelFromAnswer(const std::string& answer) {
    return utf8ToUpper(utf8Left(answer, 11));
}

ScanOutcome btnRenameVol_Click(Context& ctx) {
    auto outcome = ScanOutcome::Refused;
    routine(ctx, "frmMain.btnRenameVol_Click", [&](Routine& r) {
        if (ctx.state.drive.present && !stickReady(ctx, r)) return;
        const auto answer =
            ctx.ui.prompt("RENAME VOLUME", "Enter a new Volume Name. Limit of 11 characters.");
        const std::string label = volumeLabelFromAnswer(answer.value_or(""));
        if (label.empty()) return;
        const Message confirm{"RENAME USB",
                              "Please confirm you want to rename this USB to " + kBr + label + "?",
                              Buttons::YesNo, Icon::Question};
        if (ctx.ui.message(confirm) != Answer::Yes) return;
        const ThumbDriveState& d = ctx.state.drive;
        if (d.letter.empty() || !ctx.volumes) {
            outcome = ScanForUSBs(ctx);
            return;
        }
        std::string problem;
        r.step("Rename drive " + normaliseDriveText(d.letter) + " to " + label,
               [&] { problem = ctx.volumes->setLabel(d.letter, label); });
        // A refused label is said, not shown as if it had been taken.
        if (problem.empty())
            ctx.ui.setStatus(StatusPanel::Drive,
                             "Volume Name: " + label + "        Serial Number:" + d.serialHex);
        else
            ctx.ui.inform("RENAME USB DRIVE", "The volume name was not changed." + kBlank + problem,
                          Icon::Exclamation);
        outcome = ScanForUSBs(ctx);
    });
    return outcome;
}

ScanOutcome mnuFileFormat_Click(Context& ctx) {
    auto outcome = ScanOutcome::Refused;
    routine(ctx, "frmMain.mnuFileFormat_Click", [&](Routine& r) {
        ThumbDriveState d = ctx.state.drive;
        if (d.letter.empty() || !ctx.volumes) {
            ctx.ui.inform(kFormatTitle, "There is no thumbdrive attached to format.");
            return;
        }
        if (!stickReady(ctx, r)) return;
        Volumes& volumes = *ctx.volumes;
        const bool empty = DriveEmpty(ctx, d.root, volumes.systemEntries(d.letter));
        if (!confirmFormat(ctx, d, empty)) return;
        if (volumes.hasFormatWindow())
            ctx.ui.inform(kProjectName, "In the next window, be sure to select " + kQ + "FAT" + kQ +
                                            " in the File System dropdown box.");
        const auto formatted = formatDrive(ctx, r, d);
        // A cancelled format window still gets its folder, as it always has; a format the
        // program itself could not do leaves the drive alone.
        if (formatted && formatted->problem.empty() &&
            (empty || formatted->result != kFormatError)) {
            r.step("Create the TAVRIN folder", [&] {
                // A stick that did not come back after the format has no root yet.
                d.root = volumes.rootPath(d.letter);
                if (d.root.empty()) Routine::raise(kErrDiskNotReady, d.letter);
                if (!std::filesystem::create_directory(d.tavrinFolder()))
                    Routine::raise(kErrPathFileAccess, pathToUtf8(d.tavrinFolder()));
            });
        }
        outcome = ScanForUSBs(ctx);
    });
    return outcome;
}

}  // namespace tvk
