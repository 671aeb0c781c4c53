#pragma once

#include "engine/MixerCommand.h"
#include "engine/SampleData.h"

#include <atomic>
#include <cstdint>
#include <vector>

// The state of one voice: the sample of one sound buffer and where it plays.
// Owned and changed by the audio thread only.
struct Voice {
    SampleData* sample = nullptr;
    uint64_t position = 0; // frames of the sample, 32.32 fixed point
    uint64_t step = 0;     // sample frames per output frame, 32.32 fixed point
    float gainLeft = 1.0f;
    float gainRight = 1.0f;
    int32_t volume = 0;    // hundredths of a dB, -10000 to 0
    int32_t pan = 0;       // hundredths of a dB, -10000 to 10000
    int32_t frequency = 0; // frames per second, 0 the sample's own rate
    bool playing = false;
};

// A voice table, with the numbers of its playing voices in ascending order.
// A grown table keeps a link to the one it replaced only when that one could
// not be handed back for freeing (see Mixer::Grow).
struct VoiceTable {
    explicit VoiceTable(int32_t size)
        : voices(new Voice[size]), playing(new int32_t[size]), capacity(size) {}
    ~VoiceTable() {
        delete[] voices;
        delete[] playing;
    }
    VoiceTable(const VoiceTable&) = delete;
    VoiceTable& operator=(const VoiceTable&) = delete;

    Voice* voices;
    int32_t* playing;
    int32_t capacity;
    int32_t playingCount = 0;
    VoiceTable* previous = nullptr;
};

// The program's own mixer: one voice per sound buffer, summed into float
// stereo at the device's rate. Voices are driven by MixerCommands; samples and
// voice tables are allocated and freed on the GUI thread only, and reach the
// audio thread through the command queue, so the audio thread never allocates.
class Mixer {
  public:
    // The voice table grows in fixed steps of this many voices.
    static constexpr int32_t TableStep = 64;
    // Highest rate SetFrequency takes; a call outside 100 to this fails.
    static constexpr int32_t MaxFrequency = 1000000;

    // GUI thread, before any output runs.
    Mixer();
    // GUI thread, after the output has stopped: frees every sample and table,
    // also those still travelling in either queue.
    ~Mixer();
    Mixer(const Mixer&) = delete;
    Mixer& operator=(const Mixer&) = delete;

    // The queue sound buffers send to; its producer is whoever holds the
    // engine lock. A command that finds it full is lost (the call fails and is
    // not heard); a lost Release leaves the sample on its voice until the
    // mixer itself goes.
    MixerCommandQueue* Commands() { return &commands; }

    // GUI thread, engine lock held: gives the sample a voice of its own and
    // returns the voice number, or -1 when the queue is full (the sample then
    // stays the caller's). Grows the voice table when every voice is taken.
    // Reuses only voices that Collect has made free again.
    int32_t Attach(SampleData* sample);

    // GUI thread, best without the engine lock (unmapping a large sample
    // takes long): frees the samples and tables the mixer has let go of, and
    // makes their voices free again.
    void Collect();

    // Audio thread, or any thread before the output starts: sets the device
    // rate the voices are resampled to.
    void SetOutputRate(int32_t rate);
    int32_t OutputRate() const { return outputRate; }

    // Audio thread: applies every queued command, in order. Never allocates.
    void ApplyCommands();

    // Audio thread: writes frames of float stereo, interleaved, summing all
    // sounding voices. Never allocates.
    void Mix(float* out, int32_t frames);

    // Audio thread, or tests when no output runs: a voice's state, null if
    // the number lies outside the table.
    const Voice* VoiceAt(int32_t voice) const;

    // Any thread: the number of voices that were sounding at the end of the
    // last Mix.
    int32_t SoundingVoices() const { return sounding.load(std::memory_order_relaxed); }

  private:
    void Apply(const MixerCommand& c);
    void Grow(VoiceTable* grown);
    void Retire(uint8_t kind, int32_t voice, void* data);
    void Retune(Voice& v) const;
    void List(int32_t voice);
    void Unlist(int32_t voice);

    MixerCommandQueue commands;
    MixerRetiredQueue retired;

    // Audio side.
    VoiceTable* table;
    int32_t outputRate = 48000;
    std::atomic<int32_t> sounding{0};

    // GUI side, engine lock held.
    int32_t reservedVoices; // size of the table once every queued Grow is applied
    int32_t nextVoice = 0;  // voices below this were handed out at least once
    std::vector<int32_t> freeVoices;
};
