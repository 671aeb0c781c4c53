#pragma once

#include <cstddef>
#include <cstdint>

// One note: a moment in a pattern at which one line sounds. Passed by value
// everywhere; its identity within a pattern is (time, line). The layout is the
// file's and the compiled arrays': 16 bytes in this field order.
struct PlayPoint {
    int32_t time;     // time units of 1/64 step; the sort key of every list
    uint8_t reserved; // travels with the record, never read
    uint8_t line;     // index of the line in its pattern bank
    int16_t length;   // fraction x 0.0001 of the sample, 0 the whole; not heard
    int16_t toeIn;    // start offset, milliseconds at playing
    int16_t volume;   // hundredths of a dB, 0 full, -10000 silence
    int16_t pitch;    // kept and stored, not heard
    int16_t pan;      // hundredths of a dB, -10000 left to 10000 right
};
static_assert(sizeof(PlayPoint) == 16, "PlayPoint is 16 bytes");
static_assert(offsetof(PlayPoint, line) == 5 && offsetof(PlayPoint, pan) == 14,
              "PlayPoint fields stand in file order");

// Field codes of the operations that set one value on notes.
enum PlayPointField {
    FieldVolume = 1,
    FieldPitch = 2,
    FieldPan = 3,
    FieldLength = 4,
    FieldToeIn = 5
};
