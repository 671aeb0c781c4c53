#pragma once

#include <cstdint>

// One MIDI message: a status byte and up to two data bytes (zero when the
// message has fewer). A note-on of velocity 0 arrives as a note-off.
struct MidiMessage {
    uint8_t status;
    uint8_t data1;
    uint8_t data2;
};

// Turns a MIDI byte stream into messages, one byte at a time, keeping its
// place across calls (a message may span two JACK events or two reads).
// Channel messages may use running status. Real-time bytes (F8..FF) come out
// at once, even inside another message, which goes on undisturbed. SysEx
// (F0 up to F7 or any other status byte) is skipped whatever its length.
// System common messages (F1, F2, F3, F6) come out with their data; they, and
// the undefined F4 and F5, end running status. Data bytes without a status
// are dropped. No allocation: safe on the audio thread.
class MidiParser {
  public:
    // Feeds one byte; true when it completes a message, then in `out`.
    bool Feed(uint8_t byte, MidiMessage& out);

  private:
    bool Complete(MidiMessage& out);

    uint8_t status = 0; // the running status, or 0 when there is none
    uint8_t needed = 0; // data bytes the message takes
    uint8_t have = 0;   // data bytes so far
    uint8_t data[2] = {};
    bool inSysEx = false;
};
