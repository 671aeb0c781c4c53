#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What a key of a MIDI device is: a note or a controller, on channel 1..16,
// numbered 0..127.
struct MidiBinding {
    enum Kind : uint8_t { Note, Controller };
    Kind kind;
    uint8_t channel; // 1..16
    uint8_t number;
};

// Which key position (a keyboard scan code) each note and controller plays.
// A fixed table: looking up never allocates, so the tick reads it under the
// engine lock; the GUI thread changes it under the same lock.
//
// Its text form holds one mapping a line, "note 10 36 = key 28" or
// "cc 1 64 = key 57" (channel, number, key position); blank lines and
// everything after a '#' are ignored.
class MidiMap {
  public:
    static constexpr uint32_t MaxKey = 255;

    // 0 when unmapped or not a binding (channel or number out of range).
    uint32_t KeyFor(MidiBinding b) const;
    // A key of 0 removes the mapping; a binding out of range is ignored.
    void Set(MidiBinding b, uint32_t key);
    void Remove(MidiBinding b) { Set(b, 0); }
    void Clear();

    struct Entry {
        MidiBinding binding;
        uint32_t key;
    };
    // Ordered by kind, channel, number.
    std::vector<Entry> Entries() const;
    // The text form, one line per entry, in the order of Entries.
    std::string ToText() const;
    // Replaces the map with the text's mappings. Returns one message per
    // broken line, "line N: <what is wrong>"; the other lines still map. A
    // binding given twice maps to its last key.
    std::vector<std::string> FromText(const std::string& text);

  private:
    static constexpr int Channels = 16;
    static constexpr int Numbers = 128;
    static constexpr int Slots = 2 * Channels * Numbers;
    static int Slot(MidiBinding b);

    uint8_t keys[Slots] = {};
};

// "note 10 36" / "cc 1 64".
std::string BindingText(MidiBinding b);
