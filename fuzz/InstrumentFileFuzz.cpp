// Reads any bytes as an instrument file. A refused file must only raise
// FileError. A file that is taken writes back to bytes that read and write
// again to bytes of the same size and, since each load reverses the points of
// equal time, a second load and save gives the first bytes back. The
// sanitizers report everything else.
#include "song/FileArchive.h"
#include "song/Instrument.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// The instrument's file, or an empty vector when the bytes are refused.
std::vector<uint8_t> ReadAndWrite(const uint8_t* data, size_t size) {
    FileArchive in(data, size, "fuzzed.nst");
    Instrument instrument;
    try {
        instrument.Serialize(in);
    } catch (const FileError&) {
        return {};
    }
    FileArchive out("fuzzed.nst");
    instrument.Serialize(out);
    return out.Bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<uint8_t> first = ReadAndWrite(data, size);
    if (first.empty())
        return 0;
    const std::vector<uint8_t> second = ReadAndWrite(first.data(), first.size());
    const std::vector<uint8_t> third = ReadAndWrite(second.data(), second.size());
    if (second.size() != first.size() || third != first)
        __builtin_trap();
    return 0;
}
