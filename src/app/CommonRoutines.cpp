#include "app/CommonRoutines.h"

#include <algorithm>

#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"

namespace tvk {

namespace {

bool traceExistence(Routine& r, const char* what, const std::filesystem::path& path, bool result) {
    r.detail("Checking " + pathToUtf8(path));
    r.detail(std::string("Check existing ") + what + ": " + pathToUtf8(path));
    r.detail(result ? "Result = TRUE" : "Result = FALSE");
    return result;
}

}  // namespace

bool FileExists(Context& ctx, const std::filesystem::path& path) {
    return routine(ctx, "CodeModule.FileExists",
                   [&](Routine& r) { return traceExistence(r, "file", path, isPlainFile(path)); })
        .value_or(false);
}

bool FolderExists(Context& ctx, const std::filesystem::path& path) {
    return routine(ctx, "CodeModule.FolderExists",
                   [&](Routine& r) {
                       std::error_code ec;
                       const bool found =
                           std::filesystem::exists(path, ec) && !isHiddenOrSystem(path);
                       return traceExistence(r, "folder", path, found);
                   })
        .value_or(false);
}

bool DriveEmpty(Context& ctx, const std::filesystem::path& driveRoot,
                const std::vector<std::string>& ignore) {
    return routine(
               ctx, "CodeModule.DriveEmpty",
               [&](Routine& r) {
                   bool empty = true;
                   r.step("Dir " + pathToUtf8(driveRoot), [&] {
                       empty = true;
                       // Files first, then folders, as the drive is searched.
                       for (int pass = 0; pass < 2 && empty; ++pass) {
                           for (const auto& e : std::filesystem::directory_iterator(driveRoot)) {
                               std::error_code ec;
                               const bool dir = e.is_directory(ec);
                               if ((pass == 0) == dir || isHiddenOrSystem(e.path())) continue;
                               const std::string name = fileNameUtf8(e.path());
                               if (std::find(ignore.begin(), ignore.end(), name) != ignore.end())
                                   continue;
                               empty = false;
                               break;
                           }
                       }
                   });
                   return empty;
               })
        .value_or(false);
}

bool Recycle(Context& ctx, const std::filesystem::path& path, int mode) {
    return routine(ctx, "CodeModule.Recycle",
                   [&](Routine& r) {
                       r.setTask("Delete " + pathToUtf8(path));
                       if (mode == 1) return ctx.system.recycle(path);
                       const Answer a = ctx.ui.message(Message{
                           "Delete File",
                           "Are you sure you want to permanently delete " + std::string(kQuote) +
                               fileNameUtf8(path) + std::string(kQuote) + "?",
                           Buttons::YesNo, Icon::Exclamation, 1});
                       if (a != Answer::Yes) return false;
                       std::error_code ec;
                       std::filesystem::remove_all(path, ec);
                       return !ec;
                   })
        .value_or(false);
}

void ExecCmd(Context& ctx, const std::string& commandLine) {
    routine(ctx, "frmMain.ExecCmd", [&](Routine& r) {
        r.step("Execute: " + commandLine,
               [&] { ctx.system.runAndWait(commandLine, [&] { ctx.ui.processEvents(); }); });
    });
}

void regCreate_Key_Value(Context& ctx, RegistryRoot root, const std::string& key,
                         const std::string& name, const RegistryValue& value) {
    routine(ctx, "frmInstaller.regCreate_Key_Value", [&](Routine& r) {
        r.step("RegSetValueEx " + registryRootName(root) + "\\" + key + " " + name,
               [&] { ctx.system.regSet(root, key, name, value); });
    });
}

std::string regQuery_A_Key(Context& ctx, RegistryRoot root, const std::string& key,
                           const std::string& name) {
    return routine(ctx, "frmInstaller.regQuery_A_Key",
                   [&](Routine& r) {
                       std::string text;
                       r.step("Subroutine #1", [&] {
                           if (const auto v = ctx.system.regQuery(root, key, name))
                               text = registryValueText(*v);
                       });
                       return text;
                   })
        .value_or(std::string{});
}

}  // namespace tvk
