#pragma once

#include "engine/SampleData.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

// Why a wave file could not be used, or Ok.
enum class WaveStatus {
    Ok,
    Missing,     // the file cannot be opened
    NotWave,     // no RIFF header of form type WAVE
    NoFormat,    // no "fmt " chunk before the sample data, or one too short
    Unsupported, // compressed, more than two channels, or a sample size not taken
    NoData,      // no "data" chunk
    ShortData,   // the file ends inside the "data" chunk
    OutOfMemory, // the decoded sample does not fit in memory
};

// The format of a wave file as the sound buffer remembers it.
struct WaveFormat {
    int32_t channels = 0;
    int32_t rate = 0;
    int32_t blockAlign = 0;
    int32_t bitsPerSample = 0;
    bool isFloat = false;
};

// A wave file read whole and decoded to float frames.
struct WaveFile {
    WaveFormat format;
    uint32_t dataSize = 0; // bytes in the file's "data" chunk
    std::unique_ptr<SampleData> sample;

    // trunc(dataSize x 8 / (bits x channels x rate) x 1000.0), in doubles,
    // at most INT32_MAX.
    int32_t LengthMs() const;
    // The average bytes per second: block align x rate, whatever the file says.
    int32_t AverageBytesPerSecond() const { return format.blockAlign * format.rate; }
};

// GUI thread, no lock held: reads and decodes a RIFF wave file. Takes PCM
// 8-bit unsigned and 16, 24 and 32-bit signed, 32-bit float, and the
// extensible format with those sub-formats; one or two channels; any rate.
// Chunks before "fmt " are passed over, and so are chunks between it and "data".
// A chunk that claims more bytes than the file holds refuses the file before
// anything is allocated for it.
WaveStatus ReadWave(const std::string& path, WaveFile& wave);
// The same from a stream that can seek (a file, or bytes in memory).
WaveStatus ReadWave(std::istream& in, WaveFile& wave);
