#pragma once

#include <cstddef>
#include <cstdint>

// A decoded sample as the mixer plays it: 32-bit float frames, left and right
// interleaved when stereo, followed by two frames of silence so that the
// interpolation at the last frame reads inside the array. Made and freed on
// the GUI thread; the audio thread only reads it between Attach and Release.
struct SampleData {
    static constexpr int32_t PadFrames = 2;

    // GUI thread. Throws std::bad_alloc when memory is short.
    SampleData(int32_t frameCount, int32_t channelCount, int32_t sampleRate, int32_t blockAlign)
        : samples(new float[static_cast<std::size_t>(frameCount + PadFrames) * channelCount]),
          frames(frameCount), channels(channelCount), rate(sampleRate), bytesPerFrame(blockAlign) {
        float* pad = samples + static_cast<std::size_t>(frames) * channels;
        for (int32_t i = 0; i < PadFrames * channels; ++i)
            pad[i] = 0.0f;
    }
    ~SampleData() { delete[] samples; }
    SampleData(const SampleData&) = delete;
    SampleData& operator=(const SampleData&) = delete;

    float* samples;
    int32_t frames;        // whole frames of sound, the pad not counted
    int32_t channels;      // 1 or 2
    int32_t rate;          // the sample's own rate, frames per second
    int32_t bytesPerFrame; // block align of the file: byte positions count in these
};
