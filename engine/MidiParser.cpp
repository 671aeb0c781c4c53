#include "engine/MidiParser.h"

namespace {

// Data bytes that follow a status byte below F8.
uint8_t DataLength(uint8_t status) {
    switch (status & 0xF0) {
    case 0xC0:
    case 0xD0:
        return 1;
    case 0xF0:
        return status == 0xF1 || status == 0xF3 ? 1 : status == 0xF2 ? 2 : 0;
    default:
        return 2;
    }
}

} // namespace

bool MidiParser::Feed(uint8_t byte, MidiMessage& out) {
    if (byte >= 0xF8) {
        out = {byte, 0, 0};
        return true;
    }
    if (byte >= 0x80) {
        inSysEx = byte == 0xF0;
        have = 0;
        status = byte == 0xF0 || byte == 0xF7 ? 0 : byte;
        needed = DataLength(byte);
        // A system common message without data is complete as it stands.
        if (status >= 0xF0 && needed == 0) {
            const bool known = status == 0xF6;
            out = {status, 0, 0};
            status = 0;
            return known;
        }
        return false;
    }
    if (inSysEx || status == 0)
        return false;
    data[have++] = byte;
    return have == needed && Complete(out);
}

// A whole message: system common ends running status, a channel message
// keeps it for the next data bytes.
bool MidiParser::Complete(MidiMessage& out) {
    out = {status, data[0], needed == 2 ? data[1] : uint8_t{0}};
    have = 0;
    if (status >= 0xF0)
        status = 0;
    else if ((status & 0xF0) == 0x90 && out.data2 == 0)
        out.status = static_cast<uint8_t>(0x80 | (status & 0x0F));
    return true;
}
