#include "cli/DriveSession.h"

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
}

bool selectFirstDrive(Context& ctx, ConsoleInteraction& ui) {
    Volumes& volumes = *ctx.volumes;
    for (const auto& id : volumes.drives()) {
        if (volumes.driveType(id) != DriveType::Removable) continue;
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
    ui.err() << "tvk: no removable drive is attached (use --drive-image FILE for an image)\n";
    return false;
}

}  // namespace tvk::cli
