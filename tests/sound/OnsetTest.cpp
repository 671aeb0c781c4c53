#include "ClickKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/OfflineOutput.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// ---- Tick boundaries ------------------------------------------------------

struct BoundaryCase {
    int64_t tick;
    int32_t rate;
    int64_t frame;
};

class TickFrame : public ::testing::TestWithParam<BoundaryCase> {};

TEST_P(TickFrame, IsTheFloorOfTickTimesRateOver200) {
    const BoundaryCase c = GetParam();
    EXPECT_EQ(AudioCallback::TickFrame(c.tick, c.rate), c.frame);
}

INSTANTIATE_TEST_SUITE_P(Grid, TickFrame,
                         ::testing::Values(BoundaryCase{1, 48000, 240}, BoundaryCase{1, 44100, 220},
                                           BoundaryCase{2, 44100, 441}, BoundaryCase{3, 44100, 661},
                                           BoundaryCase{1, 96000, 480},
                                           // a day of ticks at 44.1 kHz does not drift
                                           BoundaryCase{17280000, 44100, 3810240000},
                                           BoundaryCase{17280001, 44100, 3810240220}));

// ---- Every note on its tick's frame, whatever the period ------------------

struct OnsetCase {
    int32_t rate;
    int32_t period;
};

class ExactOnsets : public ::testing::TestWithParam<OnsetCase> {};

TEST_P(ExactOnsets, EveryNoteStartsOnItsTicksFrame) {
    const OnsetCase c = GetParam();
    Mixer mixer;
    // Notes close together, on one tick and across lines, and the last unit
    // of the pattern, which wraps.
    const std::vector<PlayPoint> notes = {
        ClickKit::Note(0, 0),   ClickKit::Note(0, 1),  ClickKit::Note(1, 2),  ClickKit::Note(2, 3),
        ClickKit::Note(13, 0),  ClickKit::Note(40, 1), ClickKit::Note(41, 1), ClickKit::Note(64, 2),
        ClickKit::Note(100, 3), ClickKit::Note(127, 0)};
    ClickKit kit(mixer, 44100, notes, 128);
    AudioCallback callback(&kit.engine, mixer);
    OfflineOutput output(c.rate, c.period);
    output.Start(callback);

    const int64_t ticks = 2 * kit.schedule.lengthTicks + 7;
    const std::vector<float> out = output.Pull(AudioCallback::TickFrame(ticks, c.rate));

    std::vector<std::pair<int64_t, float>> expected;
    for (int64_t k = 0; k < ticks; ++k)
        if (const float h = kit.HeightAtTick(k); h != 0.0f)
            expected.emplace_back(AudioCallback::TickFrame(k, c.rate), h);
    ASSERT_GE(expected.size(), 2 * notes.size() - 2) << "every note, twice over";
    EXPECT_EQ(Onsets(out.data(), static_cast<int64_t>(out.size() / 2)), expected);
    uint64_t boundaries = 0; // ticks whose first frame has been rendered
    while (AudioCallback::TickFrame(boundaries, c.rate) <
           static_cast<int64_t>(callback.FramesRendered()))
        ++boundaries;
    EXPECT_EQ(callback.TicksRun(), boundaries);
    EXPECT_EQ(callback.LateTicks(), 0u);
}

std::vector<OnsetCase> OnsetCases() {
    std::vector<OnsetCase> cases;
    for (int32_t rate : {44100, 48000, 96000})
        for (int32_t period : {32, 64, 100, 240, 256, 441, 512, 1024, 4096})
            cases.push_back(OnsetCase{rate, period});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(RatesAndPeriods, ExactOnsets, ::testing::ValuesIn(OnsetCases()),
                         [](const ::testing::TestParamInfo<OnsetCase>& info) {
                             return std::to_string(info.param.rate) + "Hz_" +
                                    std::to_string(info.param.period);
                         });

// ---- A tick that finds the engine lock taken ------------------------------

// Counts the ticks and plays a click on voice 0 at tick 0.
struct TickProbe {
    MixerCommandQueue* queue;
    int64_t ticks = 0;
    static void Run(void* self) {
        TickProbe& p = *static_cast<TickProbe*>(self);
        if (p.ticks++ == 0)
            p.queue->Push(MixerCommand{MixerCommand::Play, 0, 0, nullptr});
    }
};

TEST(LateTick, RunsAtTheNextBoundaryAndIsCounted) {
    Mixer mixer;
    SampleData* click = new SampleData(1, 1, 48000, 2);
    click->samples[0] = 1.0f;
    ASSERT_EQ(mixer.Attach(click), 0);
    TickProbe probe{mixer.Commands()};
    AudioCallback callback(TickProbe::Run, &probe, mixer);
    OfflineOutput output(48000, 240);
    output.Start(callback);

    std::atomic<bool> held{false}, release{false};
    std::thread gui([&] {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        held = true;
        while (!release)
            std::this_thread::yield();
    });
    while (!held)
        std::this_thread::yield();
    const float* first = output.PullPeriod(); // tick 0 cannot run
    EXPECT_EQ(first[0], 0.0f);
    EXPECT_EQ(probe.ticks, 0);
    release = true;
    gui.join();
    const float* second = output.PullPeriod(); // ticks 0 and 1 run, the note one tick late
    EXPECT_EQ(second[0], 1.0f);
    EXPECT_EQ(probe.ticks, 2);
    EXPECT_EQ(callback.TicksRun(), 2u);
    EXPECT_EQ(callback.LateTicks(), 1u);
}

} // namespace
