#include "engine/WaveFile.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <fstream>
#include <istream>
#include <vector>

static_assert(std::endian::native == std::endian::little, "16-bit data is kept as read");

namespace {

constexpr uint16_t FormatPcm = 1;
constexpr uint16_t FormatFloat = 3;
constexpr uint16_t FormatExtensible = 0xFFFE;
// The 12 bytes that follow the format tag in the sub-format GUID of an
// extensible format chunk, for the plain PCM and float sub-formats.
constexpr unsigned char GuidTail[12] = {0x00, 0x00, 0x10, 0x00, 0x80, 0x00,
                                        0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
// Frames decoded per read; the scratch stays well inside the cache.
constexpr uint32_t FramesPerRead = 32768;

uint16_t U16(const unsigned char* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}
uint32_t U32(const unsigned char* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

bool ReadExact(std::istream& in, void* to, std::size_t n) {
    in.read(static_cast<char*>(to), static_cast<std::streamsize>(n));
    return in.gcount() == static_cast<std::streamsize>(n);
}

// Reads the next chunk header. False at the end of the file.
bool NextChunk(std::istream& in, char id[4], uint32_t& size) {
    unsigned char header[8];
    if (!ReadExact(in, header, 8))
        return false;
    std::memcpy(id, header, 4);
    size = U32(header + 4);
    return true;
}

// Bytes between the read position and the end of the stream.
int64_t Remaining(std::istream& in, int64_t total) {
    const std::streamoff at = in.tellg();
    return at < 0 ? 0 : total - static_cast<int64_t>(at);
}

// Passes over a chunk's body and its pad byte (chunks start on even offsets).
void SkipChunk(std::istream& in, uint32_t size) {
    in.seekg(static_cast<std::streamoff>(size) + (size & 1), std::ios::cur);
}

WaveStatus ParseFormat(const unsigned char* f, uint32_t size, WaveFormat& format) {
    uint16_t tag = U16(f);
    const int32_t channels = U16(f + 2);
    const uint32_t rate = U32(f + 4);
    const int32_t blockAlign = U16(f + 12);
    const int32_t bits = U16(f + 14);
    // An extensible chunk names its real format in the sub-format GUID; its
    // valid-bits field is not read: the container size decides the decoding.
    if (tag == FormatExtensible) {
        if (size < 40 || U16(f + 16) < 22 || std::memcmp(f + 28, GuidTail, 12) != 0 ||
            U16(f + 26) != 0)
            return WaveStatus::Unsupported;
        tag = U16(f + 24);
    }
    const bool pcm = tag == FormatPcm && (bits == 8 || bits == 16 || bits == 24 || bits == 32);
    const bool ieee = tag == FormatFloat && bits == 32;
    if (!pcm && !ieee)
        return WaveStatus::Unsupported;
    if (channels < 1 || channels > 2)
        return WaveStatus::Unsupported;
    // Rates above this are refused: the mixer's rate arithmetic stops there.
    if (rate < 1 || rate > 1000000)
        return WaveStatus::Unsupported;
    // A block align that disagrees with the sample size would make byte
    // positions and frames disagree; such a file is refused.
    if (blockAlign != channels * bits / 8)
        return WaveStatus::Unsupported;
    format.channels = channels;
    format.rate = static_cast<int32_t>(rate);
    format.blockAlign = blockAlign;
    format.bitsPerSample = bits;
    format.isFloat = ieee;
    return WaveStatus::Ok;
}

// Reads chunks up to and including "fmt ". Chunks before it are passed over;
// sample data before the format cannot be read and refuses the file.
WaveStatus ReadFormat(std::istream& in, int64_t total, WaveFormat& format) {
    char id[4];
    uint32_t size;
    while (NextChunk(in, id, size)) {
        if (std::memcmp(id, "data", 4) == 0)
            return WaveStatus::NoFormat;
        if (std::memcmp(id, "fmt ", 4) != 0) {
            SkipChunk(in, size);
            continue;
        }
        if (size < 16 || static_cast<int64_t>(size) > Remaining(in, total))
            return WaveStatus::NoFormat;
        unsigned char body[40] = {};
        const uint32_t taken = std::min<uint32_t>(size, sizeof body);
        if (!ReadExact(in, body, taken))
            return WaveStatus::NoFormat;
        in.seekg(static_cast<std::streamoff>(size - taken) + (size & 1), std::ios::cur);
        return ParseFormat(body, size, format);
    }
    return WaveStatus::NoFormat;
}

// 8 and 16-bit samples are kept as 16-bit words: an 8-bit value v becomes
// (v - 128) x 256, which the mixer hears as (v - 128) / 128.
void DecodeWords(const unsigned char* from, int16_t* to, std::size_t n, const WaveFormat& f) {
    if (f.bitsPerSample == 16) {
        std::memcpy(to, from, 2 * n);
        return;
    }
    for (std::size_t i = 0; i < n; ++i)
        to[i] = static_cast<int16_t>((static_cast<int32_t>(from[i]) - 128) * 256);
}

// 24 and 32-bit samples, and floats, as floats.
void Decode(const unsigned char* from, float* to, std::size_t n, const WaveFormat& f) {
    switch (f.bitsPerSample) {
    case 24:
        for (std::size_t i = 0; i < n; ++i) {
            const unsigned char* p = from + 3 * i;
            const int32_t v = static_cast<int32_t>(static_cast<uint32_t>(p[0]) << 8 |
                                                   static_cast<uint32_t>(p[1]) << 16 |
                                                   static_cast<uint32_t>(p[2]) << 24);
            to[i] = static_cast<float>(v) * 0x1p-31f;
        }
        return;
    default:
        if (f.isFloat) {
            std::memcpy(to, from, 4 * n);
            return;
        }
        for (std::size_t i = 0; i < n; ++i) {
            int32_t v;
            std::memcpy(&v, from + 4 * i, 4);
            to[i] = static_cast<float>(v) * 0x1p-31f;
        }
        return;
    }
}

// Reads the "data" chunk's size bytes and decodes its whole frames. A size
// larger than what the file holds is refused before anything is allocated.
WaveStatus ReadData(std::istream& in, uint32_t size, int64_t total, WaveFile& wave) {
    if (static_cast<int64_t>(size) > Remaining(in, total))
        return WaveStatus::ShortData;
    const WaveFormat& f = wave.format;
    const uint32_t frames = size / f.blockAlign;
    if (frames > static_cast<uint32_t>(INT32_MAX - SampleData::PadFrames))
        return WaveStatus::OutOfMemory;
    try {
        const bool words = f.bitsPerSample <= 16;
        wave.sample = std::make_unique<SampleData>(
            static_cast<int32_t>(frames), f.channels, f.rate, f.blockAlign,
            words ? SampleData::Encoding::Int16 : SampleData::Encoding::Float);
        std::vector<unsigned char> scratch(static_cast<std::size_t>(FramesPerRead) * f.blockAlign);
        std::size_t at = 0;
        for (uint32_t done = 0; done < frames;) {
            const uint32_t n = std::min(FramesPerRead, frames - done);
            if (!ReadExact(in, scratch.data(), static_cast<std::size_t>(n) * f.blockAlign))
                return WaveStatus::ShortData;
            const std::size_t count = static_cast<std::size_t>(n) * f.channels;
            if (words)
                DecodeWords(scratch.data(), wave.sample->words + at, count, f);
            else
                Decode(scratch.data(), wave.sample->samples + at, count, f);
            at += count;
            done += n;
        }
        // A part frame at the end is not heard, but the file must hold it.
        const uint32_t tail = size - frames * f.blockAlign;
        if (tail != 0 && !ReadExact(in, scratch.data(), tail))
            return WaveStatus::ShortData;
    } catch (const std::bad_alloc&) {
        wave.sample.reset();
        return WaveStatus::OutOfMemory;
    }
    wave.dataSize = size;
    return WaveStatus::Ok;
}

} // namespace

int32_t WaveFile::LengthMs() const {
    const double bitsPerSecond =
        static_cast<double>(format.bitsPerSample) * format.channels * format.rate;
    const double ms = static_cast<double>(dataSize) * 8.0 / bitsPerSecond * 1000.0;
    // A low rate with much data lasts longer than an int counts milliseconds.
    return ms < INT32_MAX ? static_cast<int32_t>(ms) : INT32_MAX;
}

WaveStatus ReadWave(std::istream& in, WaveFile& wave) {
    wave = WaveFile{};
    in.seekg(0, std::ios::end);
    const int64_t total = static_cast<int64_t>(in.tellg());
    in.seekg(0, std::ios::beg);
    unsigned char riff[12];
    if (total < 12 || !ReadExact(in, riff, 12) || std::memcmp(riff, "RIFF", 4) != 0 ||
        std::memcmp(riff + 8, "WAVE", 4) != 0)
        return WaveStatus::NotWave;
    WaveStatus status = ReadFormat(in, total, wave.format);
    if (status != WaveStatus::Ok)
        return status;
    char id[4];
    uint32_t size;
    while (NextChunk(in, id, size)) {
        if (std::memcmp(id, "data", 4) == 0) {
            status = ReadData(in, size, total, wave);
            if (status != WaveStatus::Ok)
                wave.sample.reset();
            return status;
        }
        SkipChunk(in, size);
    }
    return WaveStatus::NoData;
}

WaveStatus ReadWave(const std::string& path, WaveFile& wave) {
    std::ifstream in(path, std::ios::binary);
    if (!in.is_open()) {
        wave = WaveFile{};
        return WaveStatus::Missing;
    }
    return ReadWave(in, wave);
}
