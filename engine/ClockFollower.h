#pragma once

#include <atomic>
#include <cstdint>

// The tempo of an incoming MIDI clock, from the frames of its pulses (24 a
// step). The estimate is the best straight line through the last 24 to 48
// pulse intervals, so that frame rounding and a frame of jitter on each pulse
// move it by less than a hundredth of a BPM; it is reported rounded to 0.01 BPM and only moves
// when the estimate leaves the reported value by more than that rounding,
// so a steady source reads steady. A gap of more than four intervals (the
// source stopped or was switched) starts the count afresh, keeping the last
// report until there are enough new pulses.
//
// Pulse runs on the audio thread (in the tick): no waits, no allocation.
// StepMs may be read on any thread.
class ClockFollower {
  public:
    static constexpr int32_t MinIntervals = 24;
    static constexpr int32_t MaxIntervals = 48;

    // Audio thread: a pulse at `frame` on a clock of `rate` frames a second.
    void Pulse(int64_t frame, int32_t rate);
    // Audio thread: forgets the pulses and the estimate.
    void Reset();

    // Any thread: the step in milliseconds at the reported tempo, 0 when
    // there is none yet.
    double StepMs() const { return stepMs.load(std::memory_order_relaxed); }

  private:
    void Restart(int64_t frame, int32_t rate);
    double FramesPerPulse(int32_t intervals) const;

    int64_t frames[MaxIntervals + 1] = {}; // a ring of the latest pulses
    int32_t count = 0;                     // pulses in the ring
    int32_t newest = 0;                    // index of the latest
    int32_t clockRate = 0;
    double bpm = 0.0; // as reported
    std::atomic<double> stepMs{0.0};
};
