#include "ScheduleFixture.h"

#include <gtest/gtest.h>

namespace {

using Fired = std::vector<std::pair<int64_t, int>>;

struct SkipCase {
    const char* name;
    bool running;
    int32_t startAt; // position before the skip
    int32_t skip;
    std::vector<int> firedLines; // notes sounded by the skip itself
    int32_t position;            // afterwards
};

class PlayheadSkip : public testing::TestWithParam<SkipCase> {};

// Pattern of 800 ticks with events at ticks 100, 200 and 400.
TEST_P(PlayheadSkip, FiresWhatItPassesGoingForwardOnly) {
    const SkipCase& c = GetParam();
    ScheduleFixture f;
    f.Play({{64, 0}, {128, 1}, {256, 2}}, 512);
    if (!c.running)
        f.schedule.Stop();
    f.schedule.playhead.position = c.startAt;
    f.schedule.playhead.Seek();
    f.schedule.playhead.Skip(c.skip);
    f.Collect(-1);
    std::vector<int> lines;
    for (auto [tick, line] : f.fired)
        lines.push_back(line);
    EXPECT_EQ(lines, c.firedLines);
    EXPECT_EQ(f.schedule.playhead.position, c.position);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, PlayheadSkip,
    testing::Values(SkipCase{"forwardOverTwo", true, 50, 200, {0, 1}, 250},
                    SkipCase{"forwardStopped", false, 50, 200, {0, 1}, 250},
                    SkipCase{"forwardToJustBefore", true, 50, 50, {}, 100},
                    SkipCase{"forwardOverAllWraps", true, 0, 500, {0, 1, 2}, 500},
                    SkipCase{"pastTheEndFiresNothing", true, 700, 150, {}, 50},
                    SkipCase{"backward", true, 300, -250, {}, 50},
                    SkipCase{"belowZero", true, 50, -100, {}, -50},
                    SkipCase{"zero", true, 123, 0, {}, 123}),
    [](const testing::TestParamInfo<SkipCase>& i) { return std::string(i.param.name); });

TEST(Playhead, BackwardSkipDoesNotRepeatWhatAlreadySounded) {
    ScheduleFixture f;
    f.Play({{64, 0}, {128, 1}, {256, 2}}, 512);
    f.Run(250); // ticks 100 and 200 fired
    f.schedule.playhead.Skip(-200);
    f.Run(600); // positions 50 to 649
    EXPECT_EQ(f.fired, (Fired{{100, 0}, {200, 1}, {600, 2}}));
}

TEST(Playhead, ThreeSamplesOnALineStartTogether) {
    ScheduleFixture f;
    SoundBuffer* three[3] = {f.slots[0], f.slots[1], f.slots[2]};
    f.table[5] = three;
    f.counts[5] = 3;
    f.Play({{0, 5}}, 512);
    f.Run(1);
    EXPECT_EQ(f.fired, (Fired{{0, 0}, {0, 1}, {0, 2}}));
}

TEST(Playhead, NotReadyLeavesEventsAloneButKeepsTime) {
    ScheduleFixture f;
    f.Play({{0, 0}, {64, 1}}, 512);
    f.schedule.playhead.ready = 0;
    f.Run(5);
    EXPECT_EQ(f.schedule.playhead.position, 5);
    f.schedule.playhead.ready = 1;
    f.Run(1000); // the walker still waits on tick 0, reached in the next pass
    EXPECT_EQ(f.fired, (Fired{{800, 0}, {900, 1}}));
}

} // namespace
