// Reads any bytes as a MIDI stream and as a MIDI map's text. Every message
// the parser gives must be well formed, and any map the text gives must come
// back whole from its own text form. The sanitizers report everything else.
#include "engine/MidiMap.h"
#include "engine/MidiParser.h"

#include <cstdint>
#include <string>

namespace {

bool WellFormed(const MidiMessage& m) {
    const bool noteOnWithoutVelocity = (m.status & 0xF0) == 0x90 && m.data2 == 0;
    return (m.status & 0x80) != 0 && m.data1 < 0x80 && m.data2 < 0x80 && m.status != 0xF0 &&
           m.status != 0xF7 && !noteOnWithoutVelocity;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MidiParser parser;
    MidiMessage message{};
    for (size_t i = 0; i < size; ++i)
        if (parser.Feed(data[i], message) && !WellFormed(message))
            __builtin_trap();

    MidiMap map;
    map.FromText(std::string(reinterpret_cast<const char*>(data), size));
    MidiMap again;
    if (!again.FromText(map.ToText()).empty() || again.ToText() != map.ToText())
        __builtin_trap();
    return 0;
}
