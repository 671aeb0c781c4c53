// Keys in the tick: how long after a press the started note sounds, and what
// a tick that handles keys costs.
#include "KeyStage.h"

#include "engine/AudioCallback.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

// Enter pressed at every frame offset inside a tick, with the device pulling
// periods of range(0) frames. The press lands between two callbacks, so the
// first callback to see it is the next one; the note starts at the first
// tick boundary that callback renders, and the pattern's first note sounds
// one tick later, since a tick moves the playheads before it takes keys. So
// the delay stays under one period plus two ticks. Reports the worst and
// mean delay from the press to the note's first frame, at 48 kHz.
void BM_KeyToSound(benchmark::State& state) {
    const int32_t period = static_cast<int32_t>(state.range(0));
    const int32_t tickFrames = 48000 / TickTime::TicksPerSecond;
    int64_t worst = 0, sum = 0, trials = 0;
    for (auto _ : state) {
        Stage stage(1, 1);
        AudioCallback callback(&stage.engine, stage.mixer);
        callback.Prepare(48000);
        stage.Keys({{1, KeyMap::Grave}, {0, KeyMap::Grave}});
        std::vector<float> out(2 * static_cast<size_t>(period));
        int64_t frame = 0;
        for (int32_t offset = 0; offset < tickFrames; ++offset) {
            // The press at a frame with this offset in its tick, some ticks on.
            const int64_t press = (frame / tickFrames + 4) * tickFrames + offset;
            while (frame < press) { // periods already rendered when it comes
                callback.Render(out.data(), period);
                frame += period;
            }
            stage.engine.PostKey(1, KeyMap::Return);
            stage.engine.PostKey(0, KeyMap::Return);
            int64_t onset = -1;
            while (onset < 0) {
                callback.Render(out.data(), period);
                for (int32_t f = 0; f < period && onset < 0; ++f)
                    if (out[2 * f] != 0.0f)
                        onset = frame + f;
                frame += period;
            }
            worst = std::max(worst, onset - press);
            sum += onset - press;
            ++trials;
        }
    }
    state.counters["worst_frames"] = static_cast<double>(worst);
    state.counters["worst_ms"] = worst / 48.0;
    state.counters["mean_ms"] = static_cast<double>(sum) / trials / 48.0;
}
BENCHMARK(BM_KeyToSound)
    ->Arg(64)
    ->Arg(256)
    ->Arg(1024)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// One tick with three key events: Enter starts the highlighted sequencer's
// pattern of range(0) points (a full compile), its release, and F5.
void BM_TickWithThreeKeys(benchmark::State& state) {
    Stage stage(static_cast<int32_t>(state.range(0)));
    if (stage.view.Current()->GetBank()->GetPattern(0).count != state.range(0))
        state.SkipWithError("pattern not of the asked size");
    stage.Keys({{1, KeyMap::Grave}, {0, KeyMap::Grave}});
    for (auto _ : state) {
        stage.engine.PostKey(1, KeyMap::Return);
        stage.engine.PostKey(0, KeyMap::Return);
        stage.engine.PostKey(1, KeyMap::F5);
        stage.engine.OnTimer();
        state.PauseTiming();
        stage.mixer.ApplyCommands();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_TickWithThreeKeys)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace
