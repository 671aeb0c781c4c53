#include "engine/Engine.h"
#include "ScheduleFixture.h"
#include "engine/ClockDisplay.h"
#include "engine/TickDriver.h"
#include "ui/Row.h"

#include <gtest/gtest.h>

#include <array>

namespace {

struct CapacityCase {
    int added;
    int32_t capacity;
};

class EngineRegistry : public testing::TestWithParam<CapacityCase> {};

TEST_P(EngineRegistry, GrowsEveryFiveAdditions) {
    Engine engine;
    std::vector<Schedule> schedules(40);
    for (int i = 0; i < GetParam().added; ++i)
        engine.AddPlayhead(schedules[i].GetPlayhead());
    EXPECT_EQ(engine.playheadCount, GetParam().added);
    EXPECT_EQ(engine.playheadCapacity, GetParam().capacity);
    for (int i = 0; i < GetParam().added; ++i)
        EXPECT_EQ(engine.playheads[i], schedules[i].GetPlayhead());
}

INSTANTIATE_TEST_SUITE_P(Steps, EngineRegistry,
                         testing::Values(CapacityCase{0, 10}, CapacityCase{9, 10},
                                         CapacityCase{10, 15}, CapacityCase{14, 15},
                                         CapacityCase{15, 20}, CapacityCase{40, 45}));

TEST(Engine, RemovePlayheadTakesTheLastMatchAndClosesTheGap) {
    Engine engine;
    Schedule a, b, c;
    for (Playhead* p : {a.GetPlayhead(), b.GetPlayhead(), a.GetPlayhead(), c.GetPlayhead()})
        engine.AddPlayhead(p);
    engine.RemovePlayhead(a.GetPlayhead());
    engine.RemovePlayhead(nullptr);
    ASSERT_EQ(engine.playheadCount, 3);
    EXPECT_EQ(engine.playheads[0], a.GetPlayhead());
    EXPECT_EQ(engine.playheads[1], b.GetPlayhead());
    EXPECT_EQ(engine.playheads[2], c.GetPlayhead());
}

TEST(Engine, PlayheadsTickInRegistryOrder) {
    ScheduleFixture first, second;
    second.schedule.SetLineTable(first.table, first.counts); // one queue for both
    first.Play({{0, 1}}, 512);
    second.Play({{0, 2}}, 512);
    Engine engine;
    engine.AddPlayhead(second.schedule.GetPlayhead());
    engine.AddPlayhead(first.schedule.GetPlayhead());
    TickDriver(engine).Run(1);
    first.Collect(0);
    EXPECT_EQ(first.fired, (std::vector<std::pair<int64_t, int>>{{0, 2}, {0, 1}}));
}

struct KeyLog : KeyTarget {
    void OnKey(uint8_t pressed, uint32_t scanCode) override {
        keys.push_back({pressed, scanCode});
        if (reenter != nullptr)
            reenter->OnKeyEvent(1, 99); // dropped: the dispatcher is busy
    }
    std::vector<std::pair<uint8_t, uint32_t>> keys;
    Engine* reenter = nullptr;
};

TEST(Engine, AtMostThreeKeysATickTheRestWaitInOrder) {
    Engine engine;
    KeyLog log;
    log.reenter = &engine;
    engine.SetKeyTarget(&log);
    for (uint32_t code = 1; code <= 5; ++code)
        EXPECT_TRUE(engine.PostKey(code % 2, code));
    TickDriver ticks(engine);
    ticks.Run(1);
    EXPECT_EQ(log.keys.size(), 3u);
    ticks.Run(1);
    EXPECT_EQ(log.keys,
              (std::vector<std::pair<uint8_t, uint32_t>>{{1, 1}, {0, 2}, {1, 3}, {0, 4}, {1, 5}}));
    ticks.Run(1);
    EXPECT_EQ(log.keys.size(), 5u);
}

struct ClockLog : ClockDisplay {
    void Update(const int32_t* m, const int32_t* b, const int32_t* ids, int32_t n) override {
        calls.push_back({});
        for (int32_t i = 0; i < n; ++i)
            calls.back().push_back({m[i], b[i], ids[i]});
    }
    std::vector<std::vector<std::array<int32_t, 3>>> calls;
};

TEST(Engine, ClockPassRunsEveryThirtySecondTickAlsoWithNothingRegistered) {
    Engine engine;
    ClockLog clock;
    engine.SetClockDisplay(&clock);
    TickDriver(engine).Run(31);
    EXPECT_TRUE(clock.calls.empty());
    TickDriver(engine).Run(33);
    ASSERT_EQ(clock.calls.size(), 2u);
    EXPECT_TRUE(clock.calls[0].empty());
}

struct ClockCase {
    double stepMs;
    int32_t position; // seen by the clock pass
    bool running;
    int32_t measure, beat;
};

class EngineClock : public testing::TestWithParam<ClockCase> {};

TEST_P(EngineClock, MeasureAndBeatFromThePosition) {
    const ClockCase& c = GetParam();
    ScheduleFixture f;
    f.schedule.SetTempo(c.stepMs);
    f.Play({}, 4096);
    if (!c.running)
        f.schedule.Stop();
    f.schedule.SetClockId(7);
    f.schedule.playhead.position = c.position - 1;
    Engine engine;
    ClockLog clock;
    engine.SetClockDisplay(&clock);
    engine.AddPlayhead(f.schedule.GetPlayhead());
    engine.refreshCounter = 31;
    TickDriver(engine).Run(1);
    ASSERT_EQ(clock.calls.size(), 1u);
    EXPECT_EQ(clock.calls[0], (std::vector<std::array<int32_t, 3>>{{c.measure, c.beat, 7}}));
}

INSTANTIATE_TEST_SUITE_P(
    Positions, EngineClock,
    testing::Values(ClockCase{500.0, 0, true, 1, 1}, ClockCase{500.0, 99, true, 1, 1},
                    ClockCase{500.0, 100, true, 1, 2}, ClockCase{500.0, 400, true, 2, 1},
                    ClockCase{500.0, 700, true, 2, 4}, ClockCase{250.0, 400, true, 3, 1},
                    ClockCase{500.0, 400, false, 0, 0}));

TEST(Engine, ClockPassCoversTheFirstThirtyInRegistryOrder) {
    std::vector<Schedule> schedules(35);
    Engine engine;
    ClockLog clock;
    engine.SetClockDisplay(&clock);
    for (int i = 0; i < 35; ++i) {
        schedules[i].SetClockId(100 + i);
        engine.AddPlayhead(schedules[i].GetPlayhead());
    }
    TickDriver(engine).Run(32);
    ASSERT_EQ(clock.calls.size(), 1u);
    ASSERT_EQ(clock.calls[0].size(), 30u);
    EXPECT_EQ(clock.calls[0][29][2], 129);
}

struct Highlightable : SequencerRow {
    void ClearHighlight() override { ++cleared; }
    int cleared = 0;
};

TEST(Engine, HighlightListStopsAtThirtyAndClearsEach) {
    Engine engine;
    std::vector<Highlightable> rows(31);
    for (auto& r : rows)
        engine.AddHighlightedSequencer(&r);
    EXPECT_EQ(engine.highlightCount, 30);
    EXPECT_EQ(engine.highlightMode, 2);
    engine.ClearHighlights();
    EXPECT_EQ(engine.highlightMode, 0);
    EXPECT_EQ(engine.highlightCount, 0);
    EXPECT_EQ(rows[0].cleared, 1);
    EXPECT_EQ(rows[29].cleared, 1);
    EXPECT_EQ(rows[30].cleared, 0);
}

TEST(Engine, OnlyALineCanBeTheHighlightedLine) {
    Engine engine;
    Row pattern(Row::PatternRowKind), line(Row::LineRow);
    engine.HighlightLine(&pattern);
    EXPECT_EQ(engine.highlightMode, 0);
    engine.HighlightLine(&line);
    EXPECT_EQ(engine.highlightMode, 1);
    EXPECT_EQ(engine.highlightedLine, &line);
    engine.ClearHighlights(); // mode 1: no sequencer is told
    EXPECT_EQ(engine.highlightMode, 0);
}

} // namespace
