#pragma once

#include "engine/AudioOutput.h"

#include <cstdint>
#include <vector>

// An output without a device: the caller pulls periods by hand, on its own
// thread, through the same callback code a device would run.
class OfflineOutput : public AudioOutput {
  public:
    OfflineOutput(int32_t sampleRate, int32_t periodFrames);

    bool Start(AudioCallback& callback) override;
    void Stop() override { callback = nullptr; }
    int32_t SampleRate() const override { return rate; }
    int32_t PeriodFrames() const override { return period; }
    std::string Describe() const override;

    // Renders one period; the frames stay valid until the next call.
    const float* PullPeriod();
    // Renders whole periods until at least frames frames have come, and
    // returns exactly frames of them, float stereo interleaved.
    std::vector<float> Pull(int64_t frames);

  private:
    int32_t rate;
    int32_t period;
    AudioCallback* callback = nullptr;
    std::vector<float> buffer;
    std::vector<float> spare; // frames of the last period that Pull did not return yet
};
