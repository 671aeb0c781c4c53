// MIDI taken in the tick: each message acts in the tick its frame falls in,
// or, when that tick began before the message's period came, in the next;
// with the device pulling periods of several sizes. A flood waits its turn.
#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/Mixer.h"
#include "engine/TickDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

// Records each key event with the tick it came in; the tick is known from
// the callback's observer, which runs after every tick.
struct TickLog : KeyTarget {
    void OnKey(uint8_t pressed, uint32_t code) override {
        keys.push_back({tick, pressed, static_cast<int64_t>(code)});
    }
    static void Observe(void* self, int64_t t) { static_cast<TickLog*>(self)->tick = t + 1; }
    int64_t tick = 0;
    std::vector<std::array<int64_t, 3>> keys; // tick, pressed, key
};

MidiMessage NoteOn(uint8_t note) {
    return {0x90, note, 100};
}

constexpr int32_t Rate = 44100; // ticks of 220 and 221 frames

struct Stamped {
    int64_t frame;
    uint8_t note; // played as key position `note`
    int64_t tick;
};

// Tick k holds frames floor(220.5 k) up to the next tick's first frame.
const Stamped Events[] = {{0, 1, 0},      {219, 2, 0},     {220, 3, 1},    {440, 4, 1},
                          {441, 5, 2},    {1023, 6, 4},    {1024, 7, 4},   {10000, 8, 45},
                          {10142, 9, 45}, {10143, 10, 46}, {10143, 11, 46}};

class MidiTick : public testing::TestWithParam<int32_t> {};

TEST_P(MidiTick, MessagesActInTheTickOfTheirFrame) {
    const int32_t period = GetParam();
    Engine engine;
    TickLog log;
    engine.SetKeyTarget(&log);
    for (const Stamped& e : Events)
        engine.midiMap.Set({MidiBinding::Note, 1, e.note}, e.note);
    Mixer mixer;
    AudioCallback callback(&engine, mixer);
    callback.SetTickObserver(TickLog::Observe, &log);
    callback.Prepare(Rate);
    std::vector<float> out(2 * static_cast<size_t>(period));
    // As the JACK output does: a period's messages are queued before it renders.
    size_t next = 0;
    for (int64_t start = 0; start < 12000; start += period) {
        for (; next < std::size(Events) && Events[next].frame < start + period; ++next)
            engine.PostMidi(Engine::MidiFromJack, Events[next].frame, NoteOn(Events[next].note));
        callback.Render(out.data(), period);
    }
    // A message reaches the engine with its period; when its tick began in
    // an earlier period and has run, it acts in the next tick to begin.
    const auto firstTickFrom = [](int64_t frame) {
        int64_t k = 0;
        while (AudioCallback::TickFrame(k, Rate) < frame)
            ++k;
        return k;
    };
    std::vector<std::array<int64_t, 3>> expected;
    for (const Stamped& e : Events)
        expected.push_back({std::max(e.tick, firstTickFrom(e.frame / period * period)), 1, e.note});
    EXPECT_EQ(log.keys, expected);

    // Without a frame, a message acts in the first tick of the next period.
    log.keys.clear();
    const int64_t end = (12000 + period - 1) / period * period;
    engine.PostMidi(Engine::MidiFromAlsa, -1, NoteOn(1));
    for (int i = 0; i < 4; ++i)
        callback.Render(out.data(), period);
    EXPECT_EQ(log.keys, (std::vector<std::array<int64_t, 3>>{{firstTickFrom(end), 1, 1}}));
    engine.SetKeyTarget(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Periods, MidiTick, testing::Values(64, 256, 1024));

// A flood of controller values: each tick takes its share in order, the
// note behind the flood still plays, and what the inbox cannot hold is
// counted as dropped. Only crossings of 64 press and release, and only a
// rise is heard for learning.
TEST(MidiTickFlood, TakenInTurnWithDropsCounted) {
    Engine engine;
    TickLog log;
    engine.SetKeyTarget(&log);
    const MidiBinding fader{MidiBinding::Controller, 1, 7};
    engine.midiMap.Set(fader, 57);
    engine.midiMap.Set({MidiBinding::Note, 1, 36}, 28);
    const uint8_t values[] = {100, 127, 30, 0, 64, 63};
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(engine.PostMidi(0, -1, {0xB0, 7, values[i % 6]}));
    ASSERT_TRUE(engine.PostMidi(0, -1, NoteOn(36)));
    int lost = 0;
    for (int i = 0; i < 2000; ++i)
        lost += !engine.PostMidi(0, -1, {0xB0, 7, 0});
    EXPECT_EQ(lost, 2000 - (1024 - 1001));
    EXPECT_EQ(engine.MidiDropped(), static_cast<uint64_t>(lost));

    TickDriver ticks(engine);
    for (int t = 0; t < 40; ++t) {
        log.tick = t;
        ticks.Run(1);
    }
    // 1000 values: 333 rises and as many falls; the note is message 1001,
    // taken in tick 31 at 32 a tick.
    ASSERT_EQ(log.keys.size(), 667u);
    EXPECT_EQ(log.keys[0], (std::array<int64_t, 3>{0, 1, 57}));
    EXPECT_EQ(log.keys[1], (std::array<int64_t, 3>{0, 0, 57}));
    EXPECT_EQ(log.keys.back(), (std::array<int64_t, 3>{31, 1, 28}));

    MidiBinding b;
    while (engine.TakeHeardMidi(b)) {
    }
    engine.PostMidi(0, -1, {0xB0, 7, 100});
    engine.PostMidi(0, -1, {0xB0, 7, 0});
    engine.PostMidi(0, -1, {0x81, 36, 0});
    engine.PostMidi(0, -1, {0x91, 36, 1}); // unmapped, still heard
    ticks.Run(1);
    std::vector<std::string> heard;
    while (engine.TakeHeardMidi(b))
        heard.push_back(BindingText(b));
    EXPECT_EQ(heard, (std::vector<std::string>{"cc 1 7", "note 2 36"}));
    engine.SetKeyTarget(nullptr);
}

} // namespace
