// MP3 files from anywhere. The file reader and the in-memory reader must agree on
// everything the header, the tags and the Xing block decide; only the playing time and
// frame length may differ by the rounding of their divisions. Both leave the routine
// stack balanced.

#include <cstdlib>

#include "FuzzSupport.h"
#include "mp3/cMP3Info.h"
#include "organfiles/DisplayFileInfo.h"

using namespace tvk;

namespace {

bool nearly(long a, long b, long by = 1) {
    return std::labs(a - b) <= by;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzContext& f = fuzz::fuzzContext();
    Context ctx = f.ctx();
    const std::string_view bytes = fuzz::asText(data, size);
    const auto path = f.file("song.mp3", bytes);

    cMP3Info file(ctx);
    file.LetFilename(path);
    fuzz::checkBalanced(f);
    cMP3Info memory(ctx);
    memory.ReadMp3Binary(memory.ReadFileBinary(path));
    fuzz::checkBalanced(f);
    fuzz::check(f.ui.errorBoxes == 0, "reading an MP3 file raised the error box");

    fuzz::check(file.ValidMP3() == memory.ValidMP3(), "the readers disagree on ValidMP3");
    fuzz::check(file.FileSize() == memory.FileSize(), "the readers disagree on FileSize");
    fuzz::check(file.HeaderOffset() == memory.HeaderOffset(),
                "the readers disagree on HeaderOffset");
    fuzz::check(file.MPEGLayer() == memory.MPEGLayer(), "the readers disagree on MPEGLayer");
    fuzz::check(file.Frequency() == memory.Frequency(), "the readers disagree on Frequency");
    fuzz::check(file.ChannelMode() == memory.ChannelMode() && file.Emphasis() == memory.Emphasis(),
                "the readers disagree on the channel mode or emphasis");
    fuzz::check(file.Protected() == memory.Protected() &&
                    file.CopyRighted() == memory.CopyRighted() &&
                    file.Original() == memory.Original() && file.Padding() == memory.Padding(),
                "the readers disagree on the header flags");
    fuzz::check(file.isVBR() == memory.isVBR(), "the readers disagree on isVBR");
    // Layer I counts four-byte slots, so its rounding difference is four times larger.
    fuzz::check(nearly(file.FrameLength(), memory.FrameLength(), file.Layers() == 1 ? 4 : 1),
                "the readers disagree on FrameLength");
    fuzz::check(nearly(file.SongLength(), memory.SongLength()),
                "the readers disagree on SongLength");
    // The frame count comes from the Xing block when it has one, from the sizes otherwise.
    if (file.ValidMP3()) {
        fuzz::check(file.Frequency() > 0 && file.HeaderOffset() < size,
                    "a valid MP3 without a frequency or with its frame past the end");
        const auto at = static_cast<std::size_t>(file.HeaderOffset());
        mp3::FrameFields fields;
        mp3::decodeHeader(data + at, fields);
        const mp3::XingInfo xing = mp3::readXing(bytes.substr(at), fields);
        if (xing.vbr && xing.frames)
            fuzz::check(file.NumFrames() == memory.NumFrames(),
                        "the readers disagree on NumFrames");
        else
            fuzz::check(file.BitRate() == memory.BitRate(), "the readers disagree on BitRate");
    }
    fuzz::check(file.FormattedTime().size() == 5, "the playing time is not nn:ss");

    DisplayFileInfo(ctx, path);
    fuzz::checkBalanced(f);
    return 0;
}
