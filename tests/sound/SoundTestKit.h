#pragma once

#include "engine/Mixer.h"
#include "engine/SampleData.h"

#include <cstdint>
#include <vector>

// Samples with known values, and the mixer calls the tests make by hand.
namespace SoundTestKit {

// A mono sample whose frame i holds values[i].
inline SampleData* Mono(const std::vector<float>& values, int32_t rate = 44100) {
    SampleData* s = new SampleData(static_cast<int32_t>(values.size()), 1, rate, 2);
    for (size_t i = 0; i < values.size(); ++i)
        s->samples[i] = values[i];
    return s;
}

// A stereo sample of frames frames, every one (left, right).
inline SampleData* Constant(int32_t frames, float left, float right, int32_t rate = 44100) {
    SampleData* s = new SampleData(frames, 2, rate, 4);
    for (int32_t i = 0; i < frames; ++i) {
        s->samples[2 * i] = left;
        s->samples[2 * i + 1] = right;
    }
    return s;
}

// A mono sample whose frame i holds i, to read positions back from the output.
inline SampleData* Ramp(int32_t frames, int32_t rate = 44100) {
    std::vector<float> values(frames);
    for (int32_t i = 0; i < frames; ++i)
        values[i] = static_cast<float>(i);
    return Mono(values, rate);
}

inline void Send(Mixer& mixer, uint8_t kind, int32_t voice, int32_t value = 0) {
    mixer.Commands()->Push(MixerCommand{kind, voice, value, nullptr});
}

// Applies the queued commands and mixes frames; returns them interleaved.
inline std::vector<float> Render(Mixer& mixer, int32_t frames) {
    std::vector<float> out(2 * static_cast<size_t>(frames));
    mixer.ApplyCommands();
    mixer.Mix(out.data(), frames);
    return out;
}

// Frames (of an interleaved stereo buffer) with sound on either side.
inline int32_t SoundingFrames(const std::vector<float>& out) {
    int32_t n = 0;
    for (size_t i = 0; i < out.size(); i += 2)
        if (out[i] != 0.0f || out[i + 1] != 0.0f)
            ++n;
    return n;
}

} // namespace SoundTestKit
