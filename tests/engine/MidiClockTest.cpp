// The MIDI clock's pulses against frames worked out in whole numbers: a tempo
// of num/den BPM at 48 kHz puts 120000 x den / num frames between pulses.
#include "engine/MidiClock.h"
#include "engine/AudioCallback.h"
#include "engine/Playhead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int32_t Rate = 48000;

struct Tempo {
    int64_t num, den; // BPM = num / den
    double StepMs() const { return 60000.0 * static_cast<double>(den) / static_cast<double>(num); }
    int64_t PulseNum() const { return 120000 * den; } // frames per pulse = PulseNum / num
};

constexpr Tempo Tempos[] = {{30, 1}, {120, 1}, {973, 10}, {250, 1}};

TEST(PulseGrid, PulsesFallOnTheFramesOfTheirInstants) {
    for (const Tempo& t : Tempos) {
        const double perPulse = PulseGrid::FramesPerPulse(t.StepMs(), Rate);
        for (int64_t k = 0; k < 20000; ++k)
            ASSERT_EQ(PulseGrid::PulseOffset(0.0, k, perPulse), k * t.PulseNum() / t.num)
                << t.num << "/" << t.den << " BPM, pulse " << k;
    }
}

using Event = std::pair<int64_t, uint8_t>; // frame, byte

// The clock driven as the JACK output drives it: periods of 256 frames, the
// first instrument's playhead ticking on the tick boundaries inside them.
struct Case {
    Tempo from, to;
    int64_t change;      // ticks after the start at which the tempo becomes `to`
    int32_t lengthTicks; // of the pattern, wrapping
};

constexpr int64_t StartTick = 7, StopTick = StartTick + 2500, Ticks = StopTick + 40;

// The clock's bytes at their frames.
struct Sink {
    std::vector<Event> events;
    int64_t periodStart = 0;
    static void Write(void* self, int32_t offset, uint8_t byte) {
        Sink& s = *static_cast<Sink*>(self);
        s.events.emplace_back(s.periodStart + offset, byte);
    }
};

std::vector<Event> Drive(const Case& c) {
    Sink sink;
    MidiClock clock;
    clock.Prepare(Rate, Sink::Write, &sink);
    Playhead playhead(nullptr);
    playhead.lengthTicks = c.lengthTicks;
    playhead.stepMs = c.from.StepMs();
    int64_t tick = 0;
    for (int64_t start = 0; tick < Ticks; start += 256) {
        sink.periodStart = start;
        clock.BeginPeriod(start, 256);
        for (; AudioCallback::TickFrame(tick, Rate) < start + 256; ++tick) {
            if (tick == StartTick) {
                playhead.running = 1;
                playhead.position = 0;
            }
            if (tick == StartTick + c.change)
                playhead.stepMs = c.to.StepMs();
            if (tick == StopTick)
                playhead.running = 0;
            if (playhead.running)
                playhead.position = (playhead.position + 1) % playhead.lengthTicks;
            clock.AfterTick(tick, &playhead);
        }
        clock.EndPeriod();
    }
    return sink.events;
}

// Each pass starts pulse 0 on its first tick; within the pass that holds the
// tempo change, the pulses after it are spaced from the last one before it.
std::vector<Event> Expected(const Case& c) {
    const auto frame = [](int64_t t) { return t * Rate / 200; };
    const int64_t changeFrame = frame(StartTick + c.change), stopFrame = frame(StopTick);
    std::vector<Event> events{{frame(StartTick), MidiClock::Start}};
    for (int64_t pass = StartTick; pass < StopTick; pass += c.lengthTicks) {
        const int64_t s = frame(pass), end = std::min(frame(pass + c.lengthTicks), stopFrame);
        const bool changed = pass >= StartTick + c.change;
        const Tempo& t = changed ? c.to : c.from;
        const int64_t before = changed ? end : std::min(end, changeFrame);
        int64_t k = 0;
        for (; s + k * t.PulseNum() / t.num < before; ++k)
            events.emplace_back(s + k * t.PulseNum() / t.num, MidiClock::Pulse);
        if (changed || changeFrame >= end)
            continue;
        const int64_t j = k - 1, a = c.from.PulseNum(), b = c.from.num;
        const int64_t a2 = c.to.PulseNum(), b2 = c.to.num;
        for (int64_t m = 1;; ++m) {
            const int64_t at = s + (j * a * b2 + m * a2 * b) / (b * b2);
            if (at >= end)
                break;
            events.emplace_back(at, MidiClock::Pulse);
        }
    }
    events.emplace_back(stopFrame, MidiClock::Stop);
    return events;
}

TEST(MidiClock, PulsesKeepToTheTickGridAcrossTempoChangesAndPasses) {
    const Case cases[] = {
        {{120, 1}, {120, 1}, 100000, 100000}, // 1000 frames a pulse
        {{30, 1}, {250, 1}, 1001, 100000},    {{973, 10}, {120, 1}, 777, 100000},
        {{250, 1}, {973, 10}, 333, 100000},   {{120, 1}, {30, 1}, 1250, 100000},
        {{973, 10}, {973, 10}, 100000, 1973}, // a pass shorter than its 384 pulses
        {{250, 1}, {250, 1}, 100000, 60},     // 30 pulses a pass
        {{120, 1}, {973, 10}, 950, 400},      // a change inside a pass
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from.num << "/" << c.from.den << " to " << c.to.num
                                        << "/" << c.to.den << " BPM at tick " << c.change);
        const std::vector<Event> got = Drive(c), want = Expected(c);
        const auto [g, w] = std::mismatch(got.begin(), got.end(), want.begin(), want.end());
        EXPECT_TRUE(g == got.end() && w == want.end())
            << "byte " << g - got.begin() << " of " << got.size() << ": "
            << (g != got.end() ? g->first : -1) << ", expected at "
            << (w != want.end() ? w->first : -1) << " of " << want.size();
    }
}

// Started as keys start a pattern (the tick that starts it leaves it at
// position 0, so its first pass begins with the next tick), and started
// again after a stop: each start sends Start, then pulse 0 on the next tick's
// frame and one pulse a spacing, never a run of pulses at once.
TEST(MidiClock, AStartByKeySendsNoBurst) {
    Sink sink;
    MidiClock clock;
    clock.Prepare(Rate, Sink::Write, &sink);
    Playhead playhead(nullptr);
    playhead.lengthTicks = 100000;
    playhead.stepMs = 500.0; // 1000 frames a pulse
    const int64_t starts[] = {10, 700}, stop = 500;
    int64_t tick = 0;
    for (int64_t start = 0; tick < 900; start += 256) {
        sink.periodStart = start;
        clock.BeginPeriod(start, 256);
        for (; AudioCallback::TickFrame(tick, Rate) < start + 256; ++tick) {
            playhead.position += playhead.running;
            if (tick == starts[0] || tick == starts[1]) {
                playhead.running = 1;
                playhead.position = 0;
            }
            if (tick == stop)
                playhead.running = 0;
            clock.AfterTick(tick, &playhead);
        }
        clock.EndPeriod();
    }
    for (const int64_t s : starts) {
        const auto at = std::find(sink.events.begin(), sink.events.end(),
                                  Event{AudioCallback::TickFrame(s, Rate), MidiClock::Start});
        ASSERT_NE(at, sink.events.end()) << "start at tick " << s;
        EXPECT_EQ(at[1], Event(AudioCallback::TickFrame(s + 1, Rate), MidiClock::Pulse));
        EXPECT_EQ(at[2], Event(AudioCallback::TickFrame(s + 1, Rate) + 1000, MidiClock::Pulse));
    }
}

} // namespace
