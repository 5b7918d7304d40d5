#pragma once
// The MP3 information reader: the first frame header, the Xing block and the ID3 tags
// of one file, and what follows from them (playing time, bit rate, header details).
// The file information panel makes one per MP3 file it shows.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "mp3/Mp3Frame.h"

namespace tvk {

struct Context;

class cMP3Info {
  public:
    explicit cMP3Info(Context& ctx);

    // Sets the file and reads it. A file that cannot be read goes to the error handler.
    void LetFilename(const std::filesystem::path& file);
    const std::filesystem::path& GetFileName() const { return file_; }
    bool FileExists() const;

    bool ValidMP3() const { return valid_; }
    // Bytes, less 128 when an ID3v1 tag ends the file.
    std::uint64_t FileSize() const { return fileSize_; }
    long BitRate() const { return bitRate_; }      // kilobits per second
    long Frequency() const { return frequency_; }  // samples per second
    long FrameLength() const { return frameLength_; }
    long NumFrames() const { return numFrames_; }
    bool isVBR() const { return vbr_; }
    long SongLength() const { return songLength_; }  // seconds
    // "nn:ss": minutes and seconds of the time of day, so hours are dropped.
    std::string FormattedTime() const;
    std::string MPEGVer() const;  // "1.0", "2.0", "2.5"
    int Layers() const;
    std::string MPEGLayer() const;                                   // "MPEG 1.0 Layer 3"
    bool Protected() const { return valid_ && f_.protection == 0; }  // a CRC follows
    bool CopyRighted() const { return valid_ && f_.copyright; }
    bool Original() const { return valid_ && f_.original; }
    bool Padding() const { return valid_ && f_.padding; }
    std::string ChannelMode() const;  // "Stereo", "Joint Stereo", ...
    std::string Emphasis() const;     // "None", "50/15 ms", "Reserved", "CCIT J.17"
    // Bytes before the first frame header (its offset from the file's start).
    std::uint64_t HeaderOffset() const { return headerOffset_; }

    void ClearInfo();

    // The same reading over the whole file held in memory; its divisions are whole-number
    // divisions where LetFilename's are not, so results may differ by a rounding.
    std::string ReadFileBinary(const std::filesystem::path& file);
    void ReadMp3Binary(std::string_view bytes);
    // Where the header search starts in `bytes`: after an ID3v2 tag, else 0.
    static std::uint64_t GetReadPos(std::string_view bytes);
    // The ID3v2 size of four bytes, 7 bits a byte.
    static std::uint32_t StringToSizeBin(std::string_view four);

    // Removes what stands before the first frame header (an ID3v2 tag, junk) and writes
    // the file back; then reads it again. False when there was nothing to remove.
    bool RemovePreHeader();
    // Cuts a trailing ID3v1 tag off the file; then reads it again.
    bool RemoveV1Tag();

  private:
    void ReadMp3();
    // Everything that follows from the header, the Xing block and the sizes.
    void derive(std::uint64_t length, bool v1Tag, const mp3::XingInfo& xing, bool wholeNumbers);

    Context* ctx_;  // a pointer, so readers can be assigned
    std::filesystem::path file_;
    mp3::FrameFields f_;
    bool valid_ = false;
    std::uint64_t fileSize_ = 0;
    std::uint64_t headerOffset_ = 0;
    long bitRate_ = 0, frequency_ = 0, frameLength_ = 0, numFrames_ = 0, songLength_ = 0;
    bool vbr_ = false;
};

}  // namespace tvk
