#include "library/CopyNames.h"

#include <algorithm>

#include "app/FileIO.h"
#include "app/RuntimeError.h"
#include "app/Text.h"
#include "organfiles/FileLayout.h"
#include "organfiles/OrganFile.h"

namespace tvk {

FolderNames::FolderNames(std::filesystem::path folder, bool list) : folder_(std::move(folder)) {
    if (!list) return;
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
        add(fileNameUtf8(entry.path()));
    listed_ = true;
}

FolderNames FolderNames::planned(std::filesystem::path folder) {
    FolderNames names(std::move(folder), false);
    names.addedOnly_ = true;
    return names;
}

void FolderNames::add(const std::string& name) {
    names_.insert(name);
    upperNames_.insert(utf8ToUpper(name));
}

bool FolderNames::taken(const std::string& name) const {
    if (names_.count(name) != 0) return true;
    if (addedOnly_) return upperNames_.count(utf8ToUpper(name)) != 0;
    if (listed_ && upperNames_.count(utf8ToUpper(name)) == 0) return false;
    std::error_code ec;
    return std::filesystem::exists(
        std::filesystem::symlink_status(folder_ / pathFromUtf8(name), ec));
}

NameParts splitExtension(std::string_view name) {
    const std::size_t length = utf8Length(name);
    if (length >= 4 && utf8Right(name, 4).front() == '.')
        return {utf8Left(name, length - 4), "." + utf8ToUpper(utf8Right(name, 3))};
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {std::string(name), {}};
    return {std::string(name.substr(0, dot)), std::string(name.substr(dot))};
}

std::string freeOrganNumberName(const FolderNames& folder, std::string_view prefix, int& counter,
                                int digits, std::string_view extension) {
    for (;; ++counter) {
        std::string candidate =
            std::string(prefix) + zeroPad(counter, digits) + std::string(extension);
        if (!folder.taken(candidate)) return candidate;
    }
}

std::string freeSuffixName(const FolderNames& folder, const std::string& wanted,
                           const NameParts& parts, int& counter, int& duplicates) {
    std::string candidate = wanted;
    while (folder.taken(candidate)) {
        candidate = parts.base + " (" + std::to_string(counter) + ")" + parts.extension;
        ++counter;
        ++duplicates;
    }
    return candidate;
}

namespace {

std::string legalName(const std::string& name, const std::filesystem::path& file) {
    std::string safe = windowsSafeName(name);
    if (trimWhitespace(safe).empty()) safe = splitExtension(fileNameUtf8(file)).base;
    return safe;
}

}  // namespace

std::string readableName(Context& ctx, const std::filesystem::path& file,
                         std::optional<std::string_view> head) {
    return legalName(
        CheckName(ctx, head ? GetPresetName(ctx, file, *head) : GetPresetName(ctx, file)), file);
}

std::string readableName(const std::filesystem::path& file) {
    // An empty file has no header to read a name from; it keeps its own.
    if (std::filesystem::file_size(file) == 0) return legalName({}, file);
    return legalName(checkName(readPresetName(file)), file);
}

std::string readableName(const std::filesystem::path& file, std::string_view head) {
    if (head.empty()) return legalName({}, file);
    const std::size_t end = head.find_first_of("\r\n");
    if (end == std::string_view::npos && head.size() >= kNamedCopyHead) return readableName(file);
    return legalName(checkName(nameFromLine(head.substr(0, end))), file);
}

}  // namespace tvk
