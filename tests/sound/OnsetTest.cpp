#include "ClickKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/OfflineOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace {

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

// ---- Ticks that find the engine lock taken ---------------------------------

struct CatchUpCase {
    int32_t heldTicks; // boundaries that pass while the GUI thread holds the lock
    int32_t dropped;   // notes of the ticks older than MaxLateTicks
};

class CatchUp : public ::testing::TestWithParam<CatchUpCase> {};

// One note a tick, on lines 0 to 3 in turn. While the lock is held nothing
// sounds; at the release, the last few missed ticks play their notes late,
// together on the release tick's frame, and older ones are dropped.
TEST_P(CatchUp, LateTicksPlayLateOlderOnesAreDroppedWithoutABurst) {
    const CatchUpCase c = GetParam();
    Mixer mixer;
    std::vector<PlayPoint> notes;
    for (int32_t u = 0; u < 64; ++u)
        notes.push_back(ClickKit::Note(u, u % ClickKit::Lines));
    ClickKit kit(mixer, 48000, notes, 64);
    kit.schedule.SetTempo(320.0); // one unit a tick
    AudioCallback callback(&kit.engine, mixer);
    OfflineOutput output(48000, 240); // one tick a period
    output.Start(callback);
    output.PullPeriod(); // tick 0 on time
    std::atomic<bool> held{false}, release{false};
    std::thread gui([&] {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        held = true;
        while (!release)
            std::this_thread::yield();
    });
    while (!held)
        std::this_thread::yield();
    for (int32_t i = 0; i < c.heldTicks; ++i)
        EXPECT_TRUE(Onsets(output.PullPeriod(), 240).empty()) << "missed tick " << i + 1;
    release = true;
    gui.join();
    // Ticks 1 to heldTicks + 1 run now; the newest three of them sound.
    const int32_t released = c.heldTicks + 1;
    float heard = 0.0f;
    for (int32_t k = std::max(1, released - AudioCallback::MaxLateTicks); k <= released; ++k)
        heard += ClickKit::Height(k % ClickKit::Lines);
    const std::vector<std::pair<int64_t, float>> onsets = Onsets(output.PullPeriod(), 240);
    ASSERT_EQ(onsets.size(), 1u);
    EXPECT_EQ(onsets[0].first, 0);
    EXPECT_FLOAT_EQ(onsets[0].second, heard);
    EXPECT_EQ(callback.LateTicks(), static_cast<uint64_t>(c.heldTicks));
    EXPECT_EQ(callback.DroppedNotes(), static_cast<uint64_t>(c.dropped));
    // The playhead stands where the clock is: the next tick plays its own note.
    const std::vector<std::pair<int64_t, float>> next = Onsets(output.PullPeriod(), 240);
    ASSERT_EQ(next.size(), 1u);
    EXPECT_FLOAT_EQ(next[0].second, ClickKit::Height((released + 1) % ClickKit::Lines));
}

INSTANTIATE_TEST_SUITE_P(Holds, CatchUp,
                         ::testing::Values(CatchUpCase{1, 0}, CatchUpCase{2, 0}, CatchUpCase{3, 1},
                                           CatchUpCase{20, 18}));

} // namespace
