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
    const int32_t period = static_cast<int32_t>(state.range(0));
    const int32_t tickFrames = 48000 / TickTime::TicksPerSecond;
    int64_t worst = 0, sum = 0, trials = 0;
    for (auto _ : state) {
        Stage stage(1, 1);
        stage.engine.midiMap.Set({MidiBinding::Note, 10, 38}, KeyMap::Return);
        AudioCallback callback(&stage.engine, stage.mixer);
        callback.Prepare(48000);
        stage.Keys({{1, KeyMap::Grave}, {0, KeyMap::Grave}});
        std::vector<float> out(2 * static_cast<size_t>(period));
        int64_t frame = 0;
        for (int32_t offset = 0; offset < tickFrames; ++offset) {
            const int64_t note = (frame / tickFrames + 4) * tickFrames + offset;
            while (frame + period <= note) {
                callback.Render(out.data(), period);
                frame += period;
            }
            stage.engine.PostMidi(Engine::MidiFromJack, note, {0x99, 38, 100});
            stage.engine.PostMidi(Engine::MidiFromJack, note, {0x89, 38, 0});
            int64_t onset = -1;
            while (onset < 0) {
                callback.Render(out.data(), period);
                for (int32_t f = 0; f < period && onset < 0; ++f)
                    if (out[2 * f] != 0.0f)
                        onset = frame + f;
                frame += period;
            }
            worst = std::max(worst, onset - note);
            sum += onset - note;
            ++trials;
        }
    }
    state.counters["worst_frames"] = static_cast<double>(worst);
    state.counters["worst_ms"] = worst / 48.0;
    state.counters["mean_ms"] = static_cast<double>(sum) / trials / 48.0;
}
BENCHMARK(BM_MidiToSound)
    ->Arg(64)
    ->Arg(256)
    ->Arg(1024)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
