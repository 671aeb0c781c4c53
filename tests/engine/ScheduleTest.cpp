#include "ScheduleFixture.h"

#include <gtest/gtest.h>

namespace {

using Fired = std::vector<std::pair<int64_t, int>>;
using Points = std::vector<std::pair<int32_t, int>>;

struct FiringCase {
    const char* name;
    double stepMs;  // the tempo the pattern is compiled at
    double retempo; // a tempo set after compiling, 0 for none
    bool stopped;
    Points points;
    int32_t units;
    int ticks;
    Fired expected;
};

class Firing : public testing::TestWithParam<FiringCase> {};

TEST_P(Firing, NotesSoundOnTheirTicksEveryPass) {
    const FiringCase& c = GetParam();
    ScheduleFixture f;
    f.schedule.SetTempo(c.stepMs);
    f.Play(c.points, c.units);
    if (c.retempo != 0.0)
        f.schedule.SetTempo(c.retempo);
    if (c.stopped)
        f.schedule.Stop();
    f.Run(c.ticks);
    EXPECT_EQ(f.fired, c.expected);
    EXPECT_LT(f.schedule.playhead.position, f.schedule.lengthTicks);
}

// Rows: name, compiled tempo, later tempo (0: none), stopped, points, units, ticks run, fired.
// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Patterns, Firing,
    testing::Values(
        // 65 units is 101.56 ticks; 64 and 65 land one tick apart.
        FiringCase{"everyPass", 500, 0, false, {{0, 0}, {64, 1}, {65, 2}, {256, 3}}, 512, 1600,
                   {{0, 0}, {100, 1}, {101, 2}, {400, 3}, {800, 0}, {900, 1}, {901, 2}, {1200, 3}}},
        FiringCase{"oneTickInListOrder", 500, 0, false, {{10, 3}, {10, 1}, {10, 2}}, 512, 1600,
                   {{15, 3}, {15, 1}, {15, 2}, {815, 3}, {815, 1}, {815, 2}}},
        // 250 BPM: one unit is 0.75 ticks.
        FiringCase{"unitsShareATick", 240, 0, false, {{1, 0}, {2, 1}}, 256, 2, {{0, 0}, {1, 1}}},
        FiringCase{"waitsForTheNextPass", 500, 0, false, {{64, 0}, {128, 1}}, 512, 910,
                   {{100, 0}, {200, 1}, {900, 0}}},
        FiringCase{"stopped", 500, 0, true, {{0, 0}}, 512, 900, {}},
        // The tempo's rounded length falls short of the last unit's tick.
        FiringCase{"tempoNeverStrandsTheLast", 500, 60000.0 / 130, false, {{0, 0}, {1023, 1}},
                   1024, 2944, {{0, 0}, {1471, 1}, {1472, 0}, {2943, 1}}},
        // Shorter than a tick: the pattern still wraps, once a tick.
        FiringCase{"oneUnitCompiledFast", 240, 0, false, {{0, 0}}, 1, 3, {{0, 0}, {1, 0}, {2, 0}}},
        FiringCase{"oneUnitMadeFast", 500, 240, false, {{0, 0}}, 1, 3, {{0, 0}, {1, 0}, {2, 0}}}),
    [](const testing::TestParamInfo<FiringCase>& i) { return std::string(i.param.name); });
// clang-format on

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
    f.Play({}, 512, 0); // an empty pattern still wraps and tells
    f.Run(800);
    EXPECT_EQ(s.positions, (std::vector<int32_t>{799, 799}));
    f.schedule.DetachSequencer();
    f.Run(801);
    EXPECT_EQ(s.positions.size(), 2u);
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

TEST(Schedule, InsertsBeyondTheSpareRoomAllSound) {
    ScheduleFixture f;
    f.Play({{0, 0}}, 512);
    f.Run(10);
    for (int32_t t = 1; t <= 20; ++t)
        f.schedule.InsertPoint(ScheduleFixture::Point(t * 20, static_cast<uint8_t>(t % 8)));
    EXPECT_EQ(f.schedule.count, 21);
    f.fired.clear();
    f.Run(790);
    EXPECT_EQ(f.fired.size(), 20u);
    EXPECT_EQ(f.fired.front().first, 31); // 20 units is 31.25 ticks
}

// Edits find a point by time and line: a replace keeps its place or goes
// behind the points of equal time, a removal of a point not there does nothing.
TEST(Schedule, EditsMatchTimeAndLine) {
    using P = ScheduleFixture;
    ScheduleFixture f;
    f.Play({{0, 0}, {10, 1}, {10, 2}, {20, 1}, {30, 3}}, 512);
    PlayPoint changed = P::Point(10, 2);
    changed.volume = -300;
    f.schedule.ReplacePoint(changed);
    f.schedule.ReplacePoint(P::Point(10, 3));
    f.schedule.RemovePoint(P::Point(10, 4));
    f.schedule.RemovePoint(P::Point(10, 1));
    const PlayPoint gone[] = {P::Point(0, 0), P::Point(20, 1), P::Point(25, 1)};
    f.schedule.RemovePoints(gone, 3);
    Points left;
    for (int32_t i = 0; i < f.schedule.count; ++i)
        left.emplace_back(f.schedule.ticks[i], f.schedule.events[i].line);
    EXPECT_EQ(left, (Points{{15, 2}, {15, 3}, {46, 3}}));
    EXPECT_EQ(f.schedule.events[0].volume, -300);
}

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
