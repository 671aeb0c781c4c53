#include "engine/Engine.h"
#include "ScheduleFixture.h"
#include "engine/ClockDisplay.h"
#include "engine/SequencerRow.h"
#include "engine/TickDriver.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace {

TEST(Engine, RegistryKeepsOrderAcrossGrowthAndRemovesTheLastMatch) {
    Engine engine;
    std::vector<Schedule> schedules(40);
    for (Schedule& s : schedules)
        engine.AddPlayhead(s.GetPlayhead());
    engine.AddPlayhead(schedules[0].GetPlayhead());
    engine.RemovePlayhead(schedules[0].GetPlayhead());
    engine.RemovePlayhead(nullptr);
    ASSERT_EQ(engine.playheadCount, 40);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(engine.playheads[i], schedules[i].GetPlayhead());
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

// Three instruments in registry order, stopped or playing: the one that
// clock, transport and session follow.
TEST(Engine, LeadIsTheFirstThatPlays) {
    struct Case {
        std::array<bool, 3> running;
        int lead;
    } const cases[] = {
        {{false, false, false}, 0}, {{false, true, true}, 1}, {{false, false, true}, 2}};
    for (const Case& c : cases) {
        std::vector<Schedule> schedules(3);
        Engine engine;
        for (int i = 0; i < 3; ++i) {
            schedules[i].GetPlayhead()->running = c.running[i] ? 1 : 0;
            engine.AddPlayhead(schedules[i].GetPlayhead());
        }
        EXPECT_EQ(engine.LeadPlayhead(), schedules[c.lead].GetPlayhead()) << c.lead;
    }
    EXPECT_EQ(Engine().LeadPlayhead(), nullptr);
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
    EXPECT_TRUE(engine.PostKey(1, 6));
    engine.SilentTick();
    EXPECT_EQ(log.keys.size(), 5u) << "a silent tick leaves keys for the next sounding one";
}

// A clock display with one cell for each of the given instrument ids; the
// frames it hands to the screen tell what the clock pass sent.
struct ClockLog {
    explicit ClockLog(std::initializer_list<int32_t> cellIds) {
        for (int32_t id : cellIds) {
            rows.push_back(std::make_unique<SequencerRow>(nullptr, nullptr));
            rows.back()->id = id;
            display.AddCell(rows.back().get(), id, 0, id + 10, 10);
        }
    }
    // (measure, beat, id) of each text of the newest frame.
    std::vector<std::array<int32_t, 3>> Texts() {
        ClockFrame frame{};
        std::vector<std::array<int32_t, 3>> out;
        if (!display.TakeFrame(frame))
            return out;
        for (int32_t i = 0; i < frame.count; ++i)
            out.push_back({frame.texts[i].measure, frame.texts[i].beat, frame.texts[i].rect.left});
        return out;
    }
    std::vector<std::unique_ptr<SequencerRow>> rows;
    ClockDisplay display;
};

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
    ClockLog clock({7});
    engine.SetClockDisplay(&clock.display);
    engine.AddPlayhead(f.schedule.GetPlayhead());
    engine.refreshCounter = 31;
    TickDriver(engine).Run(1);
    EXPECT_EQ(clock.Texts(), (std::vector<std::array<int32_t, 3>>{{c.measure, c.beat, 7}}));
}

INSTANTIATE_TEST_SUITE_P(
    Positions, EngineClock,
    testing::Values(ClockCase{500.0, 0, true, 1, 1}, ClockCase{500.0, 99, true, 1, 1},
                    ClockCase{500.0, 100, true, 1, 2}, ClockCase{500.0, 400, true, 2, 1},
                    ClockCase{500.0, 700, true, 2, 4}, ClockCase{250.0, 400, true, 3, 1},
                    ClockCase{500.0, 400, false, 0, 0}));

TEST(Engine, ClockPassSendsAFrameOnlyWhenAClockChanged) {
    ScheduleFixture f;
    f.schedule.SetTempo(500.0);
    f.Play({}, 4096);
    f.schedule.Stop();
    f.schedule.SetClockId(7);
    Engine engine;
    ClockLog clock({7});
    engine.SetClockDisplay(&clock.display);
    engine.AddPlayhead(f.schedule.GetPlayhead());
    TickDriver ticks(engine);
    ticks.Run(32);
    EXPECT_EQ(clock.Texts(), (std::vector<std::array<int32_t, 3>>{{0, 0, 7}}));
    ticks.Run(64);
    EXPECT_TRUE(clock.Texts().empty()) << "a stopped clock is not sent again";
    clock.display.AddCell(clock.rows[0].get(), 20, 0, 30, 10);
    ticks.Run(32);
    EXPECT_EQ(clock.Texts(), (std::vector<std::array<int32_t, 3>>{{0, 0, 20}}))
        << "a moved cell is";
}

TEST(Engine, HighlightListHoldsThirtyOnceEachAndClearsThem) {
    Engine engine;
    std::vector<std::unique_ptr<SequencerRow>> rows;
    for (int i = 0; i < 31; ++i) {
        rows.push_back(std::make_unique<SequencerRow>(nullptr, nullptr));
        rows.back()->cueFlag = 1;
        engine.AddHighlightedSequencer(rows.back().get());
        engine.AddHighlightedSequencer(rows.back().get());
    }
    EXPECT_EQ(engine.highlightCount, 30);
    EXPECT_EQ(engine.highlightMode, 2);
    engine.ClearHighlights();
    EXPECT_EQ(engine.highlightCount, 0);
    EXPECT_EQ(rows[0]->cueFlag, 0);
    EXPECT_EQ(rows[30]->cueFlag, 1);
}

} // namespace
