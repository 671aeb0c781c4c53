#include "song/FileArchive.h"

#include <cstring>
#include <utility>

FileArchive::FileArchive(const uint8_t* bytes, size_t n, std::string name)
    : storing(false), fileName(std::move(name)), data(bytes), size(n) {}

FileArchive::FileArchive(std::string name) : storing(true), fileName(std::move(name)) {}

void FileArchive::Refuse(const std::string& reason) const {
    throw FileError(fileName, reason);
}

const uint8_t* FileArchive::ReadBytes(size_t n) {
    if (n > Remaining())
        Refuse("the file ends too early; it is cut short or is not an instrument file");
    const uint8_t* at = data + position;
    position += n;
    return at;
}

int32_t FileArchive::ReadInt32() {
    return static_cast<int32_t>(GetLE(ReadBytes(4), 4));
}

// One byte below 255 is the length; else two bytes below 0xFFFF are; else
// four bytes follow.
uint32_t FileArchive::ReadLength() {
    const uint8_t first = *ReadBytes(1);
    if (first != LengthEscape)
        return first;
    const uint32_t word = GetLE(ReadBytes(2), 2);
    if (word != 0xFFFF)
        return word;
    return GetLE(ReadBytes(4), 4);
}

std::string FileArchive::ReadString() {
    const uint32_t length = ReadLength();
    if (length > Remaining())
        Refuse("a name or path in it runs past the end of the file; it is cut short or damaged");
    const uint8_t* at = ReadBytes(length);
    return std::string(reinterpret_cast<const char*>(at), length);
}

void FileArchive::WriteInt32(int32_t value) {
    PutLE(AppendBytes(4), static_cast<uint32_t>(value), 4);
}

void FileArchive::WriteString(const std::string& text) {
    const size_t length = text.size();
    if (length > UINT32_MAX)
        Refuse("a name or path is too long to be stored");
    if (length < LengthEscape) {
        *AppendBytes(1) = static_cast<uint8_t>(length);
    } else if (length < LongText) {
        uint8_t* at = AppendBytes(3);
        at[0] = LengthEscape;
        PutLE(at + 1, static_cast<uint32_t>(length), 2);
    } else {
        uint8_t* at = AppendBytes(7);
        at[0] = LengthEscape;
        PutLE(at + 1, 0xFFFF, 2);
        PutLE(at + 3, static_cast<uint32_t>(length), 4);
    }
    if (length > 0)
        std::memcpy(AppendBytes(length), text.data(), length);
}

uint8_t* FileArchive::AppendBytes(size_t n) {
    const size_t at = out.size();
    out.resize(at + n);
    return out.data() + at;
}
