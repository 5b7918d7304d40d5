#pragma once
// The small routines every subsystem calls: existence tests, drive emptiness, the
// recycle bin, starting a program and waiting, and the installation record.

#include <filesystem>
#include <string>
#include <vector>

#include "app/Context.h"

namespace tvk {

// A plain file (hidden and system files count as absent).
bool FileExists(Context& ctx, const std::filesystem::path& path);
// A folder, or a file, of that name.
bool FolderExists(Context& ctx, const std::filesystem::path& path);
// True when the drive's root holds neither plain files nor folders. `ignore` names root
// entries that are not really there (the label entry a FUSE FAT driver shows).
bool DriveEmpty(Context& ctx, const std::filesystem::path& driveRoot,
                const std::vector<std::string>& ignore = {});
// Mode 1: to the platform's recycle bin. Any other mode: the user confirms, then the
// file is deleted for good. True when it is gone.
bool Recycle(Context& ctx, const std::filesystem::path& path, int mode);
// Starts a command line and returns when it has ended, letting the window run meanwhile.
void ExecCmd(Context& ctx, const std::string& commandLine);

void regCreate_Key_Value(Context& ctx, RegistryRoot root, const std::string& key,
                         const std::string& name, const RegistryValue& value);
// The value as text ("" when absent).
std::string regQuery_A_Key(Context& ctx, RegistryRoot root, const std::string& key,
                           const std::string& name);

}  // namespace tvk
