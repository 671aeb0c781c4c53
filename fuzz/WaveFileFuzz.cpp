// Reads any bytes as a wave file. Whatever the header claims, the reader
// must refuse or decode without reading outside what it allocated, and a
// decoded sample must hold exactly the whole frames of its data chunk. The
// sanitizers report everything else.
#include "engine/WaveFile.h"

#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    WaveFile wave;
    if (ReadWave(in, wave) != WaveStatus::Ok)
        return 0;
    const int64_t frames = wave.dataSize / wave.format.blockAlign;
    if (wave.sample == nullptr || wave.sample->frames != frames || wave.dataSize > size ||
        wave.LengthMs() < 0)
        __builtin_trap();
    return 0;
}
