#include "cli/DriveSession.h"

#include "app/CommonRoutines.h"
#include "app/IniFile.h"
#include "app/Text.h"
#include "app/Version.h"
#include "cli/CliCommand.h"
#include "drive/Volumes.h"

namespace tvk::cli {

namespace {

std::shared_ptr<Volumes> attachVolumes(std::vector<std::string>& args) {
    VolumesOptions options;
    std::string image;
    while (takeOption(args, "--drive-image", image)) options.images.push_back(pathFromUtf8(image));
    options.systemVolumes = options.images.empty();
    return makePlatformVolumes(options);
}

}  // namespace

DriveSession::DriveSession(std::vector<std::string>& args, ConsoleInteraction& ui)
    : session(makePlatformSystem(), ui), ctx(session.context()) {
    session.volumes = attachVolumes(args);
    ctx.volumes = session.volumes.get();
    session.paths.libraryRoot = session.system->documentsFolder() / kProductName;
    if (FileExists(ctx, ctx.paths.settingsFile())) ReadIniFile(ctx);
}

bool DriveSession::lockStick(StickUse use) {
    stickLock = tvk::lockStick(ctx, use);
    return stickLock.has_value();
}

namespace {

bool findFirstDrive(Context& ctx) {
    Volumes& volumes = *ctx.volumes;
    if (const std::string id = firstRemovableDrive(volumes); !id.empty()) {
        ThumbDriveState& d = ctx.state.drive;
        d.letter = id;
        d.root = volumes.rootPath(id);
        d.deviceId = volumes.deviceId(id);
        d.driveType = static_cast<int>(DriveType::Removable);
        const VolumeInfo info = volumes.volumeInformation(id);
        d.volumeName = info.volumeName;
        d.serialHex = hexUpper(info.serialNumber);
        d.fileSystem = info.fileSystemName;
        return true;
    }
    return false;
}

}  // namespace

bool selectFirstDrive(Context& ctx, ConsoleInteraction& ui) {
    if (findFirstDrive(ctx)) return true;
    ui.err() << "tvk: no removable drive is attached (use --drive-image FILE for an image)\n";
    return false;
}

std::filesystem::path attachStick(Context& ctx) {
    if (!findFirstDrive(ctx)) return {};
    ThumbDriveState& d = ctx.state.drive;
    std::error_code ec;
    d.tavrinPresent = std::filesystem::is_directory(d.tavrinFolder(), ec);
    d.present = d.tavrinPresent;
    return d.present ? d.tavrinFolder() : std::filesystem::path();
}

std::optional<std::filesystem::path> folderArgument(Context& ctx, ConsoleInteraction& ui,
                                                    const std::string& word) {
    if (word != kStickWord) return pathFromUtf8(word);
    if (ctx.state.drive.present || !attachStick(ctx).empty()) return ctx.state.drive.tavrinFolder();
    ui.err() << "tvk: " << kStickWord
             << " needs an attached stick with a TAVRIN folder (use --drive-image FILE for an "
                "image)\n";
    return std::nullopt;
}

}  // namespace tvk::cli
