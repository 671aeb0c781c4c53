#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

// A decoded sample as the mixer plays it: 32-bit float frames, left and right
// interleaved when stereo, followed by two frames of silence so that the
// interpolation at the last frame reads inside the array. Made and freed on
// the GUI thread; the audio thread only reads it between Attach and Release.
struct SampleData {
    static constexpr int32_t PadFrames = 2;
    // Samples of this many bytes and more are mapped with their pages made
    // present in one call: faulting fresh memory in page by page costs more
    // than reading and decoding the file. Smaller ones come from the heap.
    static constexpr std::size_t MapFrom = std::size_t{1} << 20;

    // GUI thread. Throws std::bad_alloc when memory is short.
    SampleData(int32_t frameCount, int32_t channelCount, int32_t sampleRate, int32_t blockAlign)
        : allocatedBytes(static_cast<std::size_t>(frameCount + PadFrames) * channelCount *
                         sizeof(float)),
          samples(Allocate(allocatedBytes)), frames(frameCount), channels(channelCount),
          rate(sampleRate), bytesPerFrame(blockAlign) {
        float* pad = samples + static_cast<std::size_t>(frames) * channels;
        for (int32_t i = 0; i < PadFrames * channels; ++i)
            pad[i] = 0.0f;
    }
    // GUI thread.
    ~SampleData() {
        if (allocatedBytes >= MapFrom)
            munmap(samples, allocatedBytes);
        else
            std::free(samples);
    }
    SampleData(const SampleData&) = delete;
    SampleData& operator=(const SampleData&) = delete;

    std::size_t allocatedBytes;
    float* samples;
    int32_t frames;        // whole frames of sound, the pad not counted
    int32_t channels;      // 1 or 2
    int32_t rate;          // the sample's own rate, frames per second
    int32_t bytesPerFrame; // block align of the file: byte positions count in these

  private:
    static float* Allocate(std::size_t bytes) {
        void* p;
        if (bytes >= MapFrom) {
            p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
            if (p == MAP_FAILED)
                p = nullptr;
        } else {
            p = std::malloc(bytes);
        }
        if (p == nullptr)
            throw std::bad_alloc();
        return static_cast<float*>(p);
    }
};
