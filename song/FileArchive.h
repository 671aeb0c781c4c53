#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

class SoundSystem;
struct MissingWave;

// A file that could not be read or written: the file's name and a reason in
// words a performer understands. what() gives both as one line.
class FileError : public std::runtime_error {
  public:
    FileError(const std::string& file, const std::string& reason)
        : std::runtime_error(file + ": " + reason), file(file), reason(reason) {}

    std::string file;
    std::string reason;
};

// The little-endian byte form of an instrument file, in one direction: a
// loading archive reads from the bytes of a whole file, a storing archive
// collects the bytes of a new one. No padding, no tags, nothing of its own.
// Used on the GUI thread; a loading archive touches nothing shared.
class FileArchive {
  public:
    // A string of this length or more takes the four-byte length form.
    static constexpr uint32_t LongText = 0xFFFE;
    static constexpr uint8_t LengthEscape = 0xFF;

    // Loading over size bytes; fileName is only for messages.
    FileArchive(const uint8_t* data, size_t size, std::string fileName);
    // Storing into Bytes().
    explicit FileArchive(std::string fileName);

    bool IsStoring() const { return storing; }
    const std::string& FileName() const { return fileName; }
    const std::vector<uint8_t>& Bytes() const { return out; }
    size_t Remaining() const { return size - position; }

    // Loading; each raises FileError when the file ends first.
    int32_t ReadInt32();
    std::string ReadString();
    // The next n bytes, which stay valid as long as the archive's data.
    const uint8_t* ReadBytes(size_t n);

    // Storing.
    void WriteInt32(int32_t value);
    void WriteString(const std::string& text);
    // Room for n more bytes at the end, for the caller to fill.
    uint8_t* AppendBytes(size_t n);
    // Memory for n bytes in all, so that the bytes need not move as they grow.
    void Reserve(size_t n) { out.reserve(n); }

    // Raises FileError with this archive's file name and the reason.
    [[noreturn]] void Refuse(const std::string& reason) const;

    // The loader for the wave files named in an instrument being read; null
    // reads the instrument without its samples.
    SoundSystem* sounds = nullptr;
    // Loading: where the waves that could not be loaded are listed, if set.
    std::vector<MissingWave>* missing = nullptr;

  private:
    uint32_t ReadLength();

    bool storing;
    std::string fileName;
    const uint8_t* data = nullptr;
    size_t size = 0;
    size_t position = 0;
    std::vector<uint8_t> out;
};

// Little-endian helpers over raw bytes.
inline void PutLE(uint8_t* at, uint32_t value, int width) {
    for (int i = 0; i < width; ++i)
        at[i] = static_cast<uint8_t>(value >> (8 * i));
}

inline uint32_t GetLE(const uint8_t* at, int width) {
    uint32_t value = 0;
    for (int i = 0; i < width; ++i)
        value |= static_cast<uint32_t>(at[i]) << (8 * i);
    return value;
}
