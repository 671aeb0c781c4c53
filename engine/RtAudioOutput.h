#pragma once

#include "engine/AudioOutput.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

class RtAudio;

// The sound device through RtAudio: a running JACK server first, then
// PulseAudio (or PipeWire's PulseAudio service), then ALSA's "default" device.
// Float stereo at 48 kHz when the device offers it, else at the device's own
// rate; 256-frame periods unless the server dictates its own. On JACK the
// client is named after the program ("oxbowlantern:outport 0" and "1", the
// port names RtAudio gives) and its ports are connected to the system's
// playback ports.
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

    // Any thread: periods the device reported as played too late.
    uint64_t Underflows() const { return underflows.load(std::memory_order_relaxed); }

  private:
    bool TryApi(int api, AudioCallback& callback);
    static int Callback(void* output, void* input, unsigned int frames, double time,
                        unsigned int status, void* user);

    std::unique_ptr<RtAudio> audio;
    std::string apiName;
    int32_t rate = 0;
    int32_t period = 0;
    AudioCallback* callback = nullptr;
    std::atomic<uint64_t> underflows{0};
};
