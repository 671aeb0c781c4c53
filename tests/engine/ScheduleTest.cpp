#include "ScheduleFixture.h"

#include <gtest/gtest.h>

namespace {

using Fired = std::vector<std::pair<int64_t, int>>;
using Points = std::vector<std::pair<int32_t, int>>;

struct UnitCase {
    double bpm;
    int32_t lengthUnits;
    int32_t time;
    int32_t compiledTick, compiledLength, tempoLength, liveTick;
};

class TimeUnitFormulas : public testing::TestWithParam<UnitCase> {};

TEST_P(TimeUnitFormulas, TruncateTowardZeroInDoubles) {
    const UnitCase c = GetParam();
    const double stepMs = 60000.0 / c.bpm;
    EXPECT_EQ(TimeUnits::CompiledTick(c.time, stepMs), c.compiledTick);
    EXPECT_EQ(TimeUnits::CompiledLength(c.lengthUnits, stepMs), c.compiledLength);
    EXPECT_EQ(TimeUnits::TempoLength(c.lengthUnits, stepMs), c.tempoLength);
    EXPECT_EQ(TimeUnits::LiveTick(c.time, c.compiledLength, c.lengthUnits), c.liveTick);
}

INSTANTIATE_TEST_SUITE_P(Tempos, TimeUnitFormulas,
                         testing::Values(UnitCase{120, 512, 64, 100, 800, 800, 100},
                                         UnitCase{120, 512, 1, 1, 800, 800, 1},
                                         UnitCase{130, 1024, 1023, 1475, 1476, 1472, 1474},
                                         UnitCase{130, 1024, 512, 738, 1476, 1472, 738},
                                         UnitCase{250, 256, 1, 0, 192, 192, 0},
                                         UnitCase{250, 256, 3, 2, 192, 192, 2},
                                         UnitCase{97, 512, 100, 193, 989, 984, 193}));

TEST(Schedule, NewScheduleHasDefaultsAndEmptyLineTable) {
    Schedule s;
    EXPECT_EQ(s.stepMs, 500.0);
    EXPECT_EQ(s.lengthUnits, 1024);
    EXPECT_EQ(s.lengthTicks, 1600);
    EXPECT_EQ(s.capacity, 100);
    EXPECT_EQ(s.count, 0);
    EXPECT_EQ(s.playhead.running, 0);
    EXPECT_EQ(s.playhead.ready, 1);
    for (int line = 0; line < 4; ++line)
        EXPECT_EQ(s.lineSampleCounts[line], 0);
}

TEST(Schedule, CommitWithoutStageDoesNothing) {
    ScheduleFixture f;
    f.schedule.CommitPattern(1, 0);
    EXPECT_EQ(f.schedule.playhead.running, 0);
    EXPECT_EQ(f.schedule.lengthTicks, 1600);
}

TEST(Schedule, CompileKeepsTwentySpareEntries) {
    ScheduleFixture f;
    f.Play({{0, 0}, {64, 1}, {128, 2}}, 512);
    EXPECT_EQ(f.schedule.count, 3);
    EXPECT_EQ(f.schedule.capacity, 23);
    EXPECT_EQ(f.schedule.lengthUnits, 512);
    EXPECT_EQ(f.schedule.lengthTicks, 800);
    EXPECT_EQ(f.schedule.staged, 0);
    EXPECT_EQ(f.schedule.playhead.running, 1);
}

TEST(Schedule, EventsFireOnTheirTicksEveryPass) {
    ScheduleFixture f;
    // 65 units is 101.56 ticks; 64 and 65 land one tick apart.
    f.Play({{0, 0}, {64, 1}, {65, 2}, {256, 3}}, 512);
    f.Run(1600);
    EXPECT_EQ(
        f.fired,
        (Fired{{0, 0}, {100, 1}, {101, 2}, {400, 3}, {800, 0}, {900, 1}, {901, 2}, {1200, 3}}));
}

TEST(Schedule, EventsOnOneTickFireOnceEachInListOrder) {
    ScheduleFixture f;
    f.Play({{10, 3}, {10, 1}, {10, 2}}, 512);
    f.Run(1600);
    EXPECT_EQ(f.fired, (Fired{{15, 3}, {15, 1}, {15, 2}, {815, 3}, {815, 1}, {815, 2}}));
}

TEST(Schedule, UnitsOneApartCanShareATick) {
    ScheduleFixture f;
    f.schedule.SetTempo(240.0); // 250 BPM: one unit is 0.75 ticks
    f.Play({{1, 0}, {2, 1}}, 256);
    f.Run(2);
    EXPECT_EQ(f.fired, (Fired{{0, 0}, {1, 1}}));
}

TEST(Schedule, EmptyPatternStillWrapsAndNotifies) {
    struct Counter : SequencerRow {
        Counter() : SequencerRow(nullptr, nullptr) {}
        void OnPatternEnding() override { ++n; }
        int n = 0;
    } counter;
    ScheduleFixture f;
    f.schedule.AttachSequencer(&counter);
    f.Play({}, 512);
    f.Run(1600);
    EXPECT_TRUE(f.fired.empty());
    EXPECT_EQ(counter.n, 2);
    EXPECT_EQ(f.schedule.playhead.position, 0);
}

// Records the position at each notification and can switch pattern there.
struct Switcher : SequencerRow {
    Switcher() : SequencerRow(nullptr, nullptr) {}
    void OnPatternEnding() override {
        positions.push_back(fixture->schedule.playhead.position);
        if (!next.empty() || nextUnits != 0)
            fixture->Play(next, nextUnits, 0);
        nextUnits = 0;
        next.clear();
    }
    ScheduleFixture* fixture = nullptr;
    Points next;
    int32_t nextUnits = 0;
    std::vector<int32_t> positions;
};

TEST(Schedule, NotificationComesOneTickBeforeTheWrap) {
    ScheduleFixture f;
    Switcher s;
    s.fixture = &f;
    f.schedule.AttachSequencer(&s);
    f.Play({{511, 0}}, 512); // tick 798
    f.Run(798);
    EXPECT_TRUE(s.positions.empty());
    f.Run(1);
    EXPECT_EQ(s.positions, (std::vector<int32_t>{799}));
    EXPECT_EQ(f.fired, (Fired{{798, 0}}));
    f.schedule.DetachSequencer();
    f.Run(801);
    EXPECT_EQ(s.positions.size(), 1u);
}

struct SwitchCase {
    const char* name;
    double stepMs;
    int32_t fromUnits;
    int32_t toUnits;
    Points to;
    Fired expected; // ticks counted from the first tick of the old pattern
};

class PatternSwitch : public testing::TestWithParam<SwitchCase> {};

TEST_P(PatternSwitch, KeepsThePlaceAtTheNotificationTick) {
    const SwitchCase& c = GetParam();
    ScheduleFixture f;
    Switcher s;
    s.fixture = &f;
    f.schedule.AttachSequencer(&s);
    f.schedule.SetTempo(c.stepMs);
    f.Play({}, c.fromUnits);
    s.next = c.to;
    s.nextUnits = c.toUnits;
    const int32_t oldLength = f.schedule.lengthTicks;
    f.Run(oldLength + 1700);
    f.fired.resize(std::min(f.fired.size(), c.expected.size()));
    EXPECT_EQ(f.fired, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, PatternSwitch,
    testing::Values(
        // Equal lengths: the new pattern's first tick comes after the wrap.
        SwitchCase{"equal", 500.0, 512, 512, {{511, 1}, {0, 2}}, {{800, 2}, {1598, 1}}},
        // At 501 ms a step, time 511 lands on the last tick (800 of 801): it
        // fires on the old pass's last tick, then the pass wraps to 0.
        SwitchCase{"equalLastTick", 501.0, 512, 512, {{511, 1}, {0, 2}}, {{800, 1}, {801, 2}}},
        // Longer: position 799 carries on inside the 1600-tick pattern.
        SwitchCase{"longer", 500.0, 512, 1024, {{0, 1}, {600, 2}}, {{937, 2}, {1600, 1}}},
        // Shorter: 1599 continues at 1599 mod 800 = 799.
        SwitchCase{"shorter", 500.0, 1024, 512, {{511, 1}, {0, 2}}, {{1600, 2}, {2398, 1}}}),
    [](const testing::TestParamInfo<SwitchCase>& i) { return std::string(i.param.name); });

TEST(Schedule, LiveInsertAheadSoundsThisPassBehindTheNext) {
    ScheduleFixture f;
    f.Play({{256, 0}}, 512); // tick 400
    f.Run(50);
    f.schedule.InsertPoint(ScheduleFixture::Point(64, 1)); // tick 100, ahead
    f.schedule.InsertPoint(ScheduleFixture::Point(0, 2));  // tick 0, behind
    f.Run(1550);
    EXPECT_EQ(f.fired, (Fired{{100, 1}, {400, 0}, {800, 2}, {900, 1}, {1200, 0}}));
}

TEST(Schedule, LiveTickFollowsTheCompiledLengthAfterATempoChange) {
    ScheduleFixture f;
    f.Play({}, 1024);
    f.schedule.SetTempo(60000.0 / 130); // length 1472
    f.schedule.InsertPoint(ScheduleFixture::Point(512, 0));
    EXPECT_EQ(f.schedule.ticks[0], 736);
}

TEST(Schedule, InsertsBeyondTheSpareRoomGrowByForty) {
    ScheduleFixture f;
    f.Play({{0, 0}}, 512);
    f.Run(10);
    for (int32_t t = 1; t <= 20; ++t)
        f.schedule.InsertPoint(ScheduleFixture::Point(t * 20, static_cast<uint8_t>(t % 8)));
    EXPECT_EQ(f.schedule.count, 21);
    EXPECT_EQ(f.schedule.capacity, 61);
    f.fired.clear();
    f.Run(790);
    EXPECT_EQ(f.fired.size(), 20u);
    EXPECT_EQ(f.fired.front().first, 31); // 20 units is 31.25 ticks
}

TEST(Schedule, ReplaceKeepsTheTickOrInsertsBehindEqualTimes) {
    ScheduleFixture f;
    f.Play({{64, 1}, {64, 2}}, 512);
    PlayPoint changed = ScheduleFixture::Point(64, 2);
    changed.volume = -300;
    f.schedule.ReplacePoint(changed);
    ASSERT_EQ(f.schedule.count, 2);
    EXPECT_EQ(f.schedule.events[1].volume, -300);
    f.schedule.ReplacePoint(ScheduleFixture::Point(64, 3));
    ASSERT_EQ(f.schedule.count, 3);
    EXPECT_EQ(f.schedule.events[2].line, 3);
    EXPECT_EQ(f.schedule.ticks[2], 100);
}

TEST(Schedule, RemovalsMatchTimeAndLine) {
    ScheduleFixture f;
    f.Play({{0, 0}, {10, 1}, {10, 2}, {20, 1}, {30, 3}}, 512);
    f.schedule.RemovePoint(ScheduleFixture::Point(10, 3));
    EXPECT_EQ(f.schedule.count, 5);
    f.schedule.RemovePoint(ScheduleFixture::Point(10, 2));
    EXPECT_EQ(f.schedule.count, 4);
    const PlayPoint gone[] = {ScheduleFixture::Point(0, 0), ScheduleFixture::Point(20, 1),
                              ScheduleFixture::Point(25, 1), ScheduleFixture::Point(30, 3)};
    f.schedule.RemovePoints(gone, 4);
    ASSERT_EQ(f.schedule.count, 1);
    EXPECT_EQ(f.schedule.events[0].time, 10);
    EXPECT_EQ(f.schedule.events[0].line, 1);
    f.schedule.RemovePoints(gone, 0);
    EXPECT_EQ(f.schedule.count, 1);
}

TEST(Schedule, LineRemovedRenumbersLinesAbove) {
    ScheduleFixture f;
    f.Play({{0, 0}, {1, 2}, {2, 5}}, 512);
    f.schedule.LineRemoved(2);
    EXPECT_EQ(f.schedule.events[0].line, 0);
    EXPECT_EQ(f.schedule.events[1].line, 2);
    EXPECT_EQ(f.schedule.events[2].line, 4);
}

TEST(Schedule, TempoChangeNeverStrandsAnEventPastTheEnd) {
    ScheduleFixture f;
    f.Play({{0, 0}, {1023, 1}}, 1024);
    f.schedule.SetTempo(60000.0 / 130);
    EXPECT_EQ(f.schedule.lengthTicks, 1472);
    EXPECT_EQ(f.schedule.playhead.lengthTicks, 1472);
    f.Run(1472 * 2);
    EXPECT_EQ(f.fired, (Fired{{0, 0}, {1471, 1}, {1472, 0}, {2943, 1}}));
}

TEST(Schedule, TempoChangeKeepsTheTickPositionOrResetsPastTheEnd) {
    ScheduleFixture f;
    f.Play({}, 512);
    f.Run(700);
    f.schedule.SetTempo(250.0); // 240 BPM: 400 ticks
    EXPECT_EQ(f.schedule.playhead.position, 0);
    f.Run(100);
    f.schedule.SetTempo(500.0);
    EXPECT_EQ(f.schedule.playhead.position, 100);
    EXPECT_EQ(f.schedule.playhead.stepMs, 500.0);
}

TEST(Schedule, AfterTheLastEventTheWalkerWaitsForTheNextPass) {
    ScheduleFixture f;
    f.Play({{64, 0}, {128, 1}}, 512);
    f.Run(250);
    EXPECT_EQ(f.schedule.playhead.index, 0);
    EXPECT_EQ(f.schedule.playhead.nextTick, 100);
    f.Run(660);
    EXPECT_EQ(f.fired, (Fired{{100, 0}, {200, 1}, {900, 0}}));
}

TEST(Schedule, StopKeepsCountingAndFiresNothing) {
    ScheduleFixture f;
    f.Play({{0, 0}}, 512);
    f.schedule.Stop();
    f.Run(900);
    EXPECT_TRUE(f.fired.empty());
    EXPECT_EQ(f.schedule.playhead.position, 100);
}

} // namespace

namespace {

// A batch of one line's points, live, against the same points one by one:
// entries, ticks, capacity and what the walker then plays must agree.
struct ScheduleBatchCase {
    const char* name;
    std::vector<std::pair<int32_t, int>> playing;
    std::vector<int32_t> batch; // times on line 1
    bool replace;
};

class ScheduleBatch : public testing::TestWithParam<ScheduleBatchCase> {};

TEST_P(ScheduleBatch, SameAsOneByOne) {
    const ScheduleBatchCase& c = GetParam();
    ScheduleFixture one, all;
    one.Play(c.playing, 512);
    all.Play(c.playing, 512);
    one.Run(100);
    all.Run(100);
    std::vector<PlayPoint> batch;
    for (int32_t t : c.batch) {
        PlayPoint p = ScheduleFixture::Point(t, 1);
        p.volume = -5;
        batch.push_back(p);
        c.replace ? one.schedule.ReplacePoint(p) : one.schedule.InsertPoint(p);
    }
    all.schedule.InsertPoints(batch.data(), static_cast<int32_t>(batch.size()), c.replace);
    ASSERT_EQ(all.schedule.count, one.schedule.count);
    EXPECT_EQ(all.schedule.capacity, one.schedule.capacity);
    for (int32_t i = 0; i < one.schedule.count; ++i) {
        EXPECT_EQ(all.schedule.ticks[i], one.schedule.ticks[i]) << i;
        EXPECT_EQ(all.schedule.events[i].line, one.schedule.events[i].line) << i;
        EXPECT_EQ(all.schedule.events[i].volume, one.schedule.events[i].volume) << i;
    }
    one.Run(1600);
    all.Run(1600);
    EXPECT_EQ(all.fired, one.fired);
    // Taking the batch out again leaves the pattern as it was.
    all.schedule.RemovePoints(batch.data(), static_cast<int32_t>(batch.size()));
    for (int32_t i = 0; i < all.schedule.count; ++i)
        EXPECT_NE(all.schedule.events[i].line, 1);
}

std::vector<int32_t> Spread(int32_t n) {
    std::vector<int32_t> out;
    for (int32_t i = 0; i < n; ++i)
        out.push_back(3 + i * 7);
    return out;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ScheduleBatch,
    testing::Values(
        ScheduleBatchCase{"AheadAndBehindThePlayhead", {{0, 0}, {256, 0}}, {32, 64, 300}, false},
        ScheduleBatchCase{"GrowsPastTheSpareRoom", {{0, 0}}, Spread(70), false},
        ScheduleBatchCase{"ReplacesOwnLineBehindOthers",
                          {{64, 0}, {64, 1}, {128, 2}, {192, 1}},
                          {64, 128, 192, 200},
                          true}),
    [](const auto& info) { return info.param.name; });

} // namespace
