#include "organfiles/FileLayout.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/PlainFiles.h"
#include "app/Routine.h"
#include "app/Text.h"
#include "organfiles/OrganFile.h"

namespace tvk {

namespace {

using Extensions = std::vector<std::string>;

std::optional<std::vector<std::string>> readNames(Context& ctx, const char* routineName,
                                                  const char* what, const Extensions& extensions,
                                                  const std::filesystem::path& folder) {
    return routine(ctx, routineName, [&](Routine& r) {
        std::vector<std::string> list;
        r.step(std::string("List the ") + what + " files of " + pathToUtf8(folder), [&] {
            list.clear();
            const std::vector<std::string> names = listPlainFiles(folder, "*");
            for (const std::string& ext : extensions) {
                const std::string pattern = "*." + ext;
                for (const auto& name : names) {
                    if (!matchesWildcard(name, pattern)) continue;
                    if (list.size() == kNameListEntries)
                        throw RuntimeError(kErrSubscriptOutOfRange, "more than 750 files");
                    list.push_back(name);
                }
            }
        });
        std::sort(list.begin(), list.end());
        return list;
    });
}

}  // namespace

std::string GetFileVersion(Context& ctx, const std::filesystem::path& file) {
    std::string version;
    routine(ctx, "frmMain.GetFileVersion", [&](Routine& r) {
        r.step("Read the file version of " + pathToUtf8(file),
               [&] { version = readFileVersion(file); });
    });
    return version;
}

std::string GetPresetName(Context& ctx, const std::filesystem::path& file) {
    std::string name;
    routine(ctx, "frmMain.GetPresetName", [&](Routine& r) {
        r.step("Read the name of " + pathToUtf8(file), [&] { name = readPresetName(file); });
    });
    return name;
}

std::string GetPresetName(Context& ctx, const std::filesystem::path& file, std::string_view head) {
    std::string name;
    routine(ctx, "frmMain.GetPresetName", [&](Routine& r) {
        r.step("Read the name of " + pathToUtf8(file), [&] {
            if (head.empty()) throw RuntimeError(kErrInputPastEndOfFile, pathToUtf8(file));
            name = nameFromLine(head.substr(0, head.find_first_of("\r\n")));
        });
    });
    return name;
}

std::int32_t CalcAddress(Context& ctx, std::string_view family, std::string_view kind,
                         std::string_view button) {
    std::int32_t position = 0;
    routine(ctx, "CodeModule.CalcAddress", [&](Routine& r) {
        r.step("Record position of " + std::string(button),
               [&] { position = calcAddress(family, kind, button); });
    });
    return position;
}

std::optional<std::vector<std::string>> ReadPresetNames(Context& ctx,
                                                        const std::filesystem::path& folder) {
    return readNames(ctx, "frmMain.ReadPresetNames", "preset", familyExtensions(FileKind::Preset),
                     folder);
}

std::optional<std::vector<std::string>> ReadRecordingsNames(Context& ctx,
                                                            const std::filesystem::path& folder) {
    return readNames(ctx, "frmMain.ReadRecordingsNames", "recording",
                     familyExtensions(FileKind::Recording), folder);
}

}  // namespace tvk
