// The MIDI clock's share of a JACK period of 256 frames at 48 kHz: the period's
// begin and end and the tick observer of the one or two ticks inside it, with
// the first instrument playing at 120 BPM (a pulse every 1000 frames).
#include "engine/AudioCallback.h"
#include "engine/MidiClock.h"
#include "engine/Playhead.h"

#include <benchmark/benchmark.h>

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

} // namespace
