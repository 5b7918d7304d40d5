#pragma once
// The five thumbdrive transfer buttons (btnUSB_Docs 0 to 4): update the stick's mirror
// folder in the library, restore the stick from it, add the whole stick to the library,
// and collect its presets and recordings into the two pools. Auto Backup and the offer to
// finish an interrupted restore run from the scan.
//
// None of them loses a file when the stick is pulled or a disk fills: the update brings
// the mirror folder up to date in place (each file replaced only by a complete copy, the
// files the stick no longer has sent to the recycle bin last), the restore checks that
// every file can be read and fits before it removes anything, keeps what it removes in
// the program's Recycle Bin and leaves a note on the stick until it is done, and the
// adding commands never replace a file.

#include <filesystem>
#include <string>
#include <vector>

#include "drive/ScanForUSBs.h"
#include "library/Copyfiles.h"

namespace tvk {

struct Context;

enum class TransferButton {
    Update = 0,
    Restore = 1,
    AddAll = 2,
    PoolPresets = 3,
    PoolRecordings = 4
};

inline constexpr const char* kTransferCaptions[] = {
    "&Update FROM Thumbdrive", "Restore TO &Thumbdrive", "&Add ALL to Computer",
    "Add &USB Presets to Pool", "Add &USB Recordings"};
inline constexpr const char* kTransferTooltips[] = {
    "This will copy the THUMBDRIVE's contents to the COMPUTER's corresponding folder, removing "
    "any files not on the thumbdrive",
    "This will Copy the COMPUTER's files on to the THUMBDRIVE from the corresponding folder, "
    "removing any files not on the computer",
    "This will create a new folder in the TVK Documents and copy ALL of the thumbdrive's contents",
    "This will copy all PRESET files to the Computer's Preset Pool",
    "This will copy all RECORDING files to the Computer's MUSIC RECORDINGS"};

// One file of a transfer as the console's dry run prints it: "copy", "replace",
// "unchanged" or "remove"; `to` is empty for a removal, and `where` says where a removed
// file goes.
struct TransferLine {
    std::string action, from, to, where;
};

struct TransferReport {
    std::vector<CopiedFile> copied;      // from the source name to the name it got
    std::vector<std::string> unchanged;  // already there with the same bytes
    std::vector<std::string> removed;    // files the command removed at the destination
    std::vector<TransferLine> lines;     // every file, in order, removals last
    std::vector<CopyFailure> failures;   // files the user went on without
    std::vector<std::string> skipped;    // not copied on the user's word (Cancel)
    int duplicates = 0;                  // taken names tried
    bool declined = false;               // the user said No at the first question
    bool completed = false;              // ran to its end and changed what it set out to
    bool stickRemoved = false;           // the stick was pulled part way
    bool finishedRestore = false;        // an update that ran an unfinished restore instead
};

// The attached stick's mirror folder in the library ("LABEL - SERIAL").
std::filesystem::path mirrorFolder(const Context& ctx);

// frmMain.btnUSB_Docs_Click: switches the view to series "ALL" and "A&ll Files", then
// runs the command of the button.
// With `dryRun`, update and restore change nothing and only fill the report's lines.
TransferReport btnUSB_Docs_Click(Context& ctx, int index, bool dryRun = false);

// Auto Backup for a stick the scan accepted: "&Add ALL to Computer" when the stick has no
// mirror folder yet, otherwise only the files whose bytes are nowhere in it.
TransferReport autoBackup(Context& ctx);

// What every caller of a scan does with its outcome: starts Auto Backup when wanted.
void afterScan(Context& ctx, ScanOutcome outcome);

// When the last restore of the accepted stick did not finish, says so and offers to run
// it again.
void offerRestoreRecovery(Context& ctx);

}  // namespace tvk
