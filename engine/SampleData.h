#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/mman.h>

// A decoded sample as the mixer plays it, left and right interleaved when
// stereo: 16-bit integers for 8 and 16-bit files (half the memory of floats,
// and half the bytes the mixer reads), 32-bit floats for the others; followed
// by two frames of silence so that the interpolation at the last frame reads
// inside the array. Made and freed on the GUI thread; the audio thread only
// reads it between Attach and Release.
struct SampleData {
    enum class Encoding : uint8_t { Float, Int16 };
    static constexpr int32_t PadFrames = 2;
    // Samples of this many bytes and more are mapped with their pages made
    // present in one call: faulting fresh memory in page by page costs more
    // than reading and decoding the file. Smaller ones come from the heap.
    static constexpr std::size_t MapFrom = std::size_t{1} << 20;

    // GUI thread. Throws std::bad_alloc when memory is short.
    SampleData(int32_t frameCount, int32_t channelCount, int32_t sampleRate, int32_t blockAlign,
               Encoding encoding = Encoding::Float)
        : allocatedBytes(static_cast<std::size_t>(frameCount + PadFrames) * channelCount *
                         (encoding == Encoding::Float ? sizeof(float) : sizeof(int16_t))),
          memory(Allocate(allocatedBytes)),
          samples(encoding == Encoding::Float ? static_cast<float*>(memory) : nullptr),
          words(encoding == Encoding::Int16 ? static_cast<int16_t*>(memory) : nullptr),
          frames(frameCount), channels(channelCount), rate(sampleRate), bytesPerFrame(blockAlign) {
        const std::size_t padBytes = FrameBytes() * PadFrames;
        std::memset(static_cast<char*>(memory) + allocatedBytes - padBytes, 0, padBytes);
    }
    // GUI thread.
    ~SampleData() {
        if (allocatedBytes >= MapFrom)
            munmap(memory, allocatedBytes);
        else
            std::free(memory);
    }
    SampleData(const SampleData&) = delete;
    SampleData& operator=(const SampleData&) = delete;

    // Sample i of the interleaved frames, as the mixer hears it: a 16-bit
    // value v is v / 32768.
    float Value(std::size_t i) const {
        return samples != nullptr ? samples[i] : static_cast<float>(words[i]) * (1.0f / 32768.0f);
    }

    // Bytes of one frame in memory.
    std::size_t FrameBytes() const {
        return static_cast<std::size_t>(channels) *
               (samples != nullptr ? sizeof(float) : sizeof(int16_t));
    }

    std::size_t allocatedBytes;
    void* memory;
    float* samples;        // the frames when they are floats, else null
    int16_t* words;        // the frames when they are 16-bit, else null
    int32_t frames;        // whole frames of sound, the pad not counted
    int32_t channels;      // 1 or 2
    int32_t rate;          // the sample's own rate, frames per second
    int32_t bytesPerFrame; // block align of the file: byte positions count in these

  private:
    static void* Allocate(std::size_t bytes) {
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
        return p;
    }
};
