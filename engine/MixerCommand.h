#pragma once

#include "engine/SpscRing.h"

#include <cstdint>

// One call on a voice of the mixer, as a plain record. Whoever holds the engine
// lock is the one producer; the audio thread drains the queue at each slice
// boundary, so a tick's commands take effect from that tick's first frame.
struct MixerCommand {
    enum Kind : uint8_t {
        Play,         // start the voice; a sounding voice goes on (the position follows)
        SetPosition,  // value: byte offset, rounded down to a whole frame
        SetVolume,    // value: hundredths of a dB, -10000 silence
        SetPan,       // value: hundredths of a dB, negative attenuates the right channel
        SetFrequency, // value: samples per second, 0 the sample's own rate
        Release,      // the voice's buffer is gone; the mixer lets go of its sample
    };
    uint8_t kind;
    int32_t voice;
    int32_t value;
};

using MixerCommandQueue = SpscRing<MixerCommand, 32768>;
