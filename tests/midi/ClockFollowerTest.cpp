#include "engine/ClockFollower.h"

#include <gtest/gtest.h>

#include <random>

#include <cmath>

namespace {

struct Source {
    double bpm;
    int jitter; // frames, each pulse moved by -jitter, 0 or +jitter in turn
    int32_t rate;
};

class ClockFollowing : public testing::TestWithParam<Source> {};

// A steady source reads its own tempo once two steps of pulses have come,
// and keeps reading it; after one step it is within a hundredth.
TEST_P(ClockFollowing, SteadySourceGivesSteadyTempo) {
    const Source s = GetParam();
    const double perPulse = 60.0 * s.rate / (s.bpm * 24);
    ClockFollower follower;
    const int64_t origin = 123457;
    std::minstd_rand noise(12345);
    for (int64_t n = 0; n < 24 * 40; ++n) {
        const int offset = static_cast<int>(noise() % 3) - 1;
        follower.Pulse(origin + std::llround(n * perPulse) + offset * s.jitter, s.rate);
        if (n < 24)
            ASSERT_EQ(follower.StepMs(), 0.0) << "too few pulses at " << n;
        else if (n < 48)
            ASSERT_NEAR(60000.0 / follower.StepMs(), s.bpm, 0.0101) << "pulse " << n;
        else
            ASSERT_NEAR(60000.0 / follower.StepMs(), s.bpm, 1e-9) << "pulse " << n;
    }
    // The source goes away and comes back at another tempo.
    const int64_t later = origin + 100 * 24 * std::llround(perPulse);
    for (int64_t n = 0; n < 24 * 3; ++n)
        follower.Pulse(later + n * 1000, s.rate);
    EXPECT_NEAR(60000.0 / follower.StepMs(), 60.0 * s.rate / 24000.0, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Sources, ClockFollowing,
                         testing::Values(Source{97.3, 0, 48000}, Source{97.3, 1, 48000},
                                         Source{130.0, 0, 44100}, Source{130.0, 1, 48000},
                                         Source{97.3, 1, 96000}));

} // namespace
