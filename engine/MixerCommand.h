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
        Attach,       // data: the SampleData the voice plays from now on
        Grow,         // data: a larger voice table, value: its size in voices
    };
    uint8_t kind = Play;
    int32_t voice = -1;
    int32_t value = 0;
    void* data = nullptr;
};

using MixerCommandQueue = SpscRing<MixerCommand, 32768>;

// What the mixer has let go of, on its way back to the GUI thread to be freed
// there: a sample after Release, or the voice table a Grow replaced.
struct MixerRetired {
    enum Kind : uint8_t { Sample, Table };
    uint8_t kind = Sample;
    int32_t voice = -1; // the voice that becomes free again, -1 for a table
    void* data = nullptr;
};

// As large as the command queue: at most one record comes back per command.
using MixerRetiredQueue = SpscRing<MixerRetired, 32768>;
