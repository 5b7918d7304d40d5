// tvk mp3 FILE: every property of the MP3 information reader.

#include <iostream>

#include "app/Session.h"
#include "app/Text.h"
#include "cli/CliCommand.h"
#include "cli/ConsoleInteraction.h"
#include "mp3/cMP3Info.h"

namespace tvk::cli {
namespace {

const char* yesNo(bool value) {
    return value ? "True" : "False";
}

int runMp3(std::vector<std::string>& args, ConsoleInteraction& ui) {
    if (args.size() != 1) {
        ui.err() << "usage: tvk mp3 FILE\n";
        return 2;
    }
    Session session(makePlatformSystem(), ui);
    Context ctx = session.context();
    cMP3Info m(ctx);
    m.LetFilename(pathFromUtf8(args[0]));
    auto& o = ui.out();
    o << "ValidMP3: " << yesNo(m.ValidMP3()) << "\n"
      << "FileSize: " << m.FileSize() << "\n"
      << "BitRate: " << m.BitRate() << "\n"
      << "Frequency: " << m.Frequency() << "\n"
      << "FrameLength: " << m.FrameLength() << "\n"
      << "NumFrames: " << m.NumFrames() << "\n"
      << "isVBR: " << yesNo(m.isVBR()) << "\n"
      << "SongLength: " << m.SongLength() << "\n"
      << "FormattedTime: " << m.FormattedTime() << "\n"
      << "MPEGVer: " << m.MPEGVer() << "\n"
      << "Layers: " << m.Layers() << "\n"
      << "MPEGLayer: " << m.MPEGLayer() << "\n"
      << "Protected: " << yesNo(m.Protected()) << "\n"
      << "CopyRighted: " << yesNo(m.CopyRighted()) << "\n"
      << "Original: " << yesNo(m.Original()) << "\n"
      << "Padding: " << yesNo(m.Padding()) << "\n"
      << "ChannelMode: " << m.ChannelMode() << "\n"
      << "Emphasis: " << m.Emphasis() << "\n"
      << "HeaderOffset: " << m.HeaderOffset() << "\n";
    return 0;
}

}  // namespace

TVK_CLI_COMMAND(mp3, {"mp3", "FILE", "every property the MP3 information reader finds", runMp3});

}  // namespace tvk::cli
