#pragma once

#include "engine/AlsaClockOut.h"
#include "engine/AlsaMidiIn.h"
#include "engine/AudioOutput.h"
#include "engine/MidiClock.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

class RtAudio;

// The sound device through RtAudio when no JACK server runs (JackOutput
// serves that case): PulseAudio (or PipeWire's PulseAudio service), then
// ALSA's "default" device. Float stereo at 48 kHz when the device offers it,
// else at the device's own rate; 256-frame periods unless the server
// dictates its own. The stream is named after the program. MIDI clock, when
// switched on, goes out through the ALSA sequencer, each pulse due at the
// instant its frame reaches the speakers.
class RtAudioOutput : public AudioOutput {
  public:
    static constexpr const char* ClientName = "oxbowlantern";
    static constexpr int32_t PreferredRate = 48000;
    static constexpr int32_t PreferredPeriod = 256;

    RtAudioOutput();
    ~RtAudioOutput() override;

    bool Start(AudioCallback& callback) override;
    void Stop() override;
    int32_t SampleRate() const override { return rate; }
    int32_t PeriodFrames() const override { return period; }
    std::string Describe() const override;
    // True when no period was pulled since the last time it was asked: a
    // server or a card that went away leaves RtAudio's stream thread
    // failing or waiting, without a word to the program.
    bool Lost() override;
    // What RtAudio said of each system it tried, in order.
    std::string Failure() const override { return failure; }

    // GUI thread: MIDI clock on or off; the transport is JACK's alone.
    void SetSync(bool midiClock, bool transportMaster) override;
    // Why MIDI cannot be sent or taken, or empty.
    std::string SyncNote() const override;

    // Any thread: periods the device reported as played too late.
    uint64_t Underflows() const { return underflows.load(std::memory_order_relaxed); }

  private:
    bool TryApi(int api, AudioCallback& callback);
    void Fail(int api, const std::string& reason);
    static int Callback(void* output, void* input, unsigned int frames, double time,
                        unsigned int status, void* user);
    void OpenClock();
    static void OnTick(void* self, int64_t tick);
    static void WriteMidi(void* self, int32_t offset, uint8_t byte);

    std::unique_ptr<RtAudio> audio;
    std::string apiName;
    std::string failure;
    int32_t rate = 0;
    int32_t period = 0;
    AudioCallback* callback = nullptr;
    std::atomic<uint64_t> underflows{0};
    std::atomic<uint64_t> periods{0};
    uint64_t periodsAsked = 0; // periods at the last Lost, GUI thread

    bool clockWanted = false;
    std::atomic<bool> clockOn{false};
    MidiClock clock;
    AlsaClockOut alsaClock;
    AlsaMidiIn midiIn;     // open while the stream is
    int64_t periodNs = 0;  // audio thread: when the period's first frame sounds
    int64_t latencyNs = 0; // the stream's latency, set at start
};
