// The MIDI clock's share of a JACK period of 256 frames at 48 kHz: the period's
// begin and end and the tick observer of the one or two ticks inside it, with
// the first instrument playing at 120 BPM (a pulse every 1000 frames).
#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/JackTransport.h"
#include "engine/LinkSync.h"
#include "engine/MidiClock.h"
#include "engine/Playhead.h"

#include <benchmark/benchmark.h>
#include <ctime>

namespace {

struct Sink {
    uint8_t bytes[256];
    int32_t count = 0;
    static void Write(void* self, int32_t offset, uint8_t byte) {
        Sink& s = *static_cast<Sink*>(self);
        s.bytes[static_cast<uint8_t>(s.count++)] = byte;
        benchmark::DoNotOptimize(offset);
    }
};

void BM_MidiClockPeriod(benchmark::State& state) {
    constexpr int32_t Rate = 48000, Period = 256;
    Sink sink;
    MidiClock clock;
    clock.Prepare(Rate, Sink::Write, &sink);
    Playhead playhead(nullptr);
    playhead.lengthTicks = 400;
    playhead.running = 1;
    int64_t start = 0, tick = 0;
    for (auto _ : state) {
        clock.BeginPeriod(start, Period);
        for (; AudioCallback::TickFrame(tick, Rate) < start + Period; ++tick) {
            playhead.position = (playhead.position + 1) % playhead.lengthTicks;
            clock.AfterTick(tick, &playhead);
        }
        clock.EndPeriod();
        start += Period;
    }
    benchmark::DoNotOptimize(sink.count);
}
BENCHMARK(BM_MidiClockPeriod);

// Everything that playing with others adds to a JACK period of 256 frames at
// 48 kHz, with Link on (alone in its session): the session captured and its
// beat line worked out, the two clocks read for their offset (the second
// read stands in for jack_get_time, a clock_gettime in JACK), each of the
// period's tick boundaries placed on the session's beats, and the tick
// observer of the Link grid, the MIDI clock and the transport, the first
// instrument playing at 130 BPM with measures of 369 ticks.
void BM_LinkClockTransportPeriod(benchmark::State& state) {
    constexpr int32_t Rate = 48000, Period = 256;
    constexpr double PerFrame = 1e6 / Rate;
    LinkSync session;
    session.Enable(true);
    Sink sink;
    MidiClock clock;
    clock.Prepare(Rate, Sink::Write, &sink);
    JackTransport transport;
    Engine engine;
    Playhead playhead(nullptr);
    engine.AddPlayhead(&playhead);
    playhead.lengthTicks = 1476;
    playhead.stepMs = 60000.0 / 130.0;
    playhead.running = 1;
    int64_t start = 0, tick = 0, boundary = 0;
    const double origin = static_cast<double>(session.Micros());
    for (auto _ : state) {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC_RAW, &now);
        const double offset = static_cast<double>(session.Micros()) -
                              static_cast<double>(now.tv_sec * 1000000 + now.tv_nsec / 1000);
        benchmark::DoNotOptimize(offset);
        session.BeginPeriod(start, Period, origin + start * PerFrame, PerFrame, Rate);
        clock.BeginPeriod(start, Period);
        while (boundary < start + Period) {
            playhead.position = (playhead.position + 1) % playhead.lengthTicks;
            clock.AfterTick(tick, &playhead, boundary);
            transport.AfterTick(tick, &playhead);
            session.AfterTick(tick, &engine);
            const int64_t placed = session.PlaceTick(++tick, boundary);
            boundary = placed > boundary ? placed : boundary + 1;
        }
        clock.EndPeriod();
        start += Period;
    }
    benchmark::DoNotOptimize(sink.count);
}
BENCHMARK(BM_LinkClockTransportPeriod);

} // namespace
