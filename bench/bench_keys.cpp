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
    OnsetDelays delays;
    for (auto _ : state) {
        Stage stage(1, 1);
        delays.Measure(stage, static_cast<int32_t>(state.range(0)), false, [&](int64_t) {
            stage.engine.PostKey(1, KeyMap::Return);
            stage.engine.PostKey(0, KeyMap::Return);
        });
    }
    delays.Report(state);
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
