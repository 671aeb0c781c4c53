// MIDI input: what parsing a message costs, what a tick that takes a full
// share of messages costs, and how long after a MIDI note's frame the note
// it starts sounds.
#include "KeyStage.h"

#include "engine/AudioCallback.h"
#include "engine/MidiParser.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

// A pad player's stream: notes on and off under running status, a pedal, and
// clock pulses in between.
void BM_ParseMessages(benchmark::State& state) {
    std::vector<uint8_t> bytes;
    for (int i = 0; i < 256; ++i) {
        const auto note = static_cast<uint8_t>(36 + i % 16);
        bytes.insert(bytes.end(), {0x99, note, 100, 0xF8, note, 0, 0xB0, 64,
                                   static_cast<uint8_t>(i % 2 ? 127 : 0)});
    }
    MidiParser parser;
    int64_t messages = 0;
    for (auto _ : state) {
        MidiMessage m;
        for (uint8_t b : bytes)
            if (parser.Feed(b, m)) {
                benchmark::DoNotOptimize(m);
                ++messages;
            }
    }
    state.SetItemsProcessed(messages);
}
BENCHMARK(BM_ParseMessages);

// One tick that takes its full share of 32 unmapped controller changes.
void BM_TickWithMidi(benchmark::State& state) {
    Stage stage(100);
    for (auto _ : state) {
        for (int i = 0; i < Engine::MidiPerTick; ++i)
            stage.engine.PostMidi(Engine::MidiFromJack, -1,
                                  {0xB0, 1, static_cast<uint8_t>(i % 2 ? 127 : 0)});
        stage.engine.OnTimer();
    }
}
BENCHMARK(BM_TickWithMidi)->Unit(benchmark::kMicrosecond);

// A MIDI note mapped to Enter, stamped at every frame offset inside a tick,
// reaches the engine with its period, as from JACK, and the device pulls
// periods of range(0) frames. The note's tick starts the pattern and its
// first note sounds at the next tick boundary; when the note's tick began
// in an earlier period (periods shorter than a tick, or crossing a tick
// boundary) it acts a tick later. Reports the worst and mean delay from the
// note's frame to the sound's first frame, at 48 kHz.
void BM_MidiToSound(benchmark::State& state) {
    OnsetDelays delays;
    for (auto _ : state) {
        Stage stage(1, 1);
        stage.engine.midiMap.Set({MidiBinding::Note, 10, 38}, KeyMap::Return);
        delays.Measure(stage, static_cast<int32_t>(state.range(0)), true, [&](int64_t at) {
            stage.engine.PostMidi(Engine::MidiFromJack, at, {0x99, 38, 100});
            stage.engine.PostMidi(Engine::MidiFromJack, at, {0x89, 38, 0});
        });
    }
    delays.Report(state);
}
BENCHMARK(BM_MidiToSound)
    ->Arg(64)
    ->Arg(256)
    ->Arg(1024)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
