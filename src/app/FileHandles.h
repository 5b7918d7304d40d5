#pragma once
// The operating system's file handles under the file-I/O layer (FileIO.h), one
// implementation per platform. Every failure throws RuntimeError with the classic number.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace tvk::detail {

class InputFile {
  public:
    explicit InputFile(const std::filesystem::path& file);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // The file's size; a device's (a stick read as a whole) is its medium's.
    std::uintmax_t size() const;
    // Reads up to `count` bytes; returns how many were read, 0 at the end of the file.
    std::size_t read(char* buffer, std::size_t count);
    // As read, from `offset`; the sequential position is left alone where the platform can.
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count);

  private:
    friend class OutputFile;
    std::filesystem::path path_;
    std::intptr_t handle_;
    // Access and modification time (seconds, nanoseconds) as the file was opened, where
    // the platform reads them then: asking again after reading costs a FUSE stick a
    // whole directory scan.
    std::int64_t openedTimes_[4] = {};
};

class OutputFile {
  public:
    // Creates `file`, which must not exist yet.
    explicit OutputFile(const std::filesystem::path& file);
    ~OutputFile();  // closes without flushing; close() reports errors
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const char* bytes, std::size_t count);
    void flushToDisk();
    void copyTimesFrom(const InputFile& source);
    void close();

  private:
    std::filesystem::path path_;
    std::intptr_t handle_;
};

void renameReplacing(const std::filesystem::path& from, const std::filesystem::path& to);
// Fails with 58 when `to` exists.
void renameExclusive(const std::filesystem::path& from, const std::filesystem::path& to);
// As renameExclusive where the file system itself refuses to replace; false, with nothing
// renamed, where it cannot (FUSE drivers), so the caller can look in its own way.
bool renameRefusingByItself(const std::filesystem::path& from, const std::filesystem::path& to);
// Sets access and modification time (some FUSE drivers ignore a change of one alone).
// False when the file system refused.
bool setFileTimes(const std::filesystem::path& file, std::chrono::system_clock::time_point t);

}  // namespace tvk::detail
