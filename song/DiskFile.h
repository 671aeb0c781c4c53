#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The whole content of a file, at most limit bytes. Raises FileError when the
// file cannot be opened or read, is no plain file, or is larger than limit.
// GUI thread, no lock held: blocking I/O.
std::vector<uint8_t> ReadWholeFile(const std::string& path, size_t limit);

// Writes a file so that whatever stood under the target's name stays whole
// until the new content is complete: the bytes go to a new file beside the
// target, which is renamed over it only when all of them are on the disk. A
// full disk, a missing permission or a crash leaves the old file as it was.
// Every failure raises FileError naming the target. GUI thread or the render
// command, no lock held: blocking I/O.
class ReplacingFile {
  public:
    explicit ReplacingFile(std::string target);
    // Removes the new file unless Commit succeeded.
    ~ReplacingFile();
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    void Write(const void* data, size_t n);
    // Flushes the new file to the disk and renames it over the target.
    void Commit();

  private:
    [[noreturn]] void Fail(const std::string& doing, int error);

    std::string target;
    std::string temp;
    int fd = -1;
    bool committed = false;
};
