#include "engine/ClockFollower.h"

#include "engine/MidiClock.h"

#include <cmath>

namespace {
constexpr double BpmResolution = 0.01;
// How far the estimate may wander from the reported tempo before the report
// follows: just over half the resolution, so rounding alone never flips it.
constexpr double BpmHysteresis = 0.006;
} // namespace

// The least-squares slope of the latest pulses' frames against their
// numbers: a frame of jitter on one pulse moves it far less than it moves
// the span from the first pulse to the last.
double ClockFollower::FramesPerPulse(int32_t intervals) const {
    const int32_t n = intervals + 1;
    const int32_t oldest = (newest - intervals + MaxIntervals + 1) % (MaxIntervals + 1);
    const double meanX = intervals / 2.0;
    double meanY = 0.0;
    for (int32_t i = 0; i < n; ++i)
        meanY += static_cast<double>(frames[(oldest + i) % (MaxIntervals + 1)] - frames[oldest]);
    meanY /= n;
    double sxy = 0.0, sxx = 0.0;
    for (int32_t i = 0; i < n; ++i) {
        const double y =
            static_cast<double>(frames[(oldest + i) % (MaxIntervals + 1)] - frames[oldest]);
        sxy += (i - meanX) * (y - meanY);
        sxx += (i - meanX) * (i - meanX);
    }
    return sxy / sxx;
}

void ClockFollower::Reset() {
    count = 0;
    bpm = 0.0;
    stepMs.store(0.0, std::memory_order_relaxed);
}

void ClockFollower::Restart(int64_t frame, int32_t rate) {
    clockRate = rate;
    count = 1;
    newest = 0;
    frames[0] = frame;
}

void ClockFollower::Pulse(int64_t frame, int32_t rate) {
    if (count == 0 || rate != clockRate || frame <= frames[newest]) {
        Restart(frame, rate);
        return;
    }
    const int64_t last = frames[newest] - frames[newest == 0 ? MaxIntervals : newest - 1];
    if (count >= 2 && frame - frames[newest] > 4 * last) {
        Restart(frame, rate);
        return;
    }
    newest = newest == MaxIntervals ? 0 : newest + 1;
    frames[newest] = frame;
    if (count <= MaxIntervals)
        ++count;
    const int32_t intervals = count - 1;
    if (intervals < MinIntervals)
        return;
    const double estimate = 60.0 * rate / (FramesPerPulse(intervals) * PulseGrid::PulsesPerStep);
    if (bpm != 0.0 && std::fabs(estimate - bpm) <= BpmHysteresis)
        return;
    bpm = std::round(estimate / BpmResolution) * BpmResolution;
    stepMs.store(60000.0 / bpm, std::memory_order_relaxed);
}
