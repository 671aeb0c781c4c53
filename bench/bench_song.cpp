// The heaviest tick of the song model: every instrument reaches its pattern
// end at once and a master restarts all the others, each compiling its
// pattern in the tick.
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/MixerCommand.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"

#include "BenchKit.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

constexpr int Instruments = 30;
constexpr int Lines = 30;
constexpr int Points = 1000;

void BM_PatternEndLaunchingFollowers(benchmark::State& state) {
    Engine engine;
    ClockDisplay clocks;
    theEngine = &engine;
    theClockDisplay = &clocks;
    MixerCommandQueue queue;
    std::vector<std::unique_ptr<Instrument>> instruments;
    int32_t voice = 0;
    for (int i = 0; i < Instruments; ++i) {
        instruments.push_back(std::make_unique<Instrument>());
        Instrument& inst = *instruments.back();
        FillAndStart(inst, Lines, Points, queue, voice);
        engine.AddPlayhead(inst.GetSchedule()->GetPlayhead());
        engine.AddHighlightedSequencer(inst.GetSequencer());
    }
    instruments[0]->GetSequencer()->cueFlag = 1;
    const int32_t length = instruments[0]->GetSchedule()->lengthTicks;
    MixerCommand drained;
    for (auto _ : state) {
        state.PauseTiming();
        while (queue.Pop(drained)) {
        }
        for (auto& inst : instruments) {
            Playhead& p = inst->GetSchedule()->playhead;
            p.position = length - 2;
            p.Seek();
        }
        state.ResumeTiming();
        engine.OnTimer(); // the notification tick
    }
    for (auto& inst : instruments)
        engine.RemovePlayhead(inst->GetSchedule()->GetPlayhead());
    instruments.clear();
    theEngine = nullptr;
    theClockDisplay = nullptr;
}
BENCHMARK(BM_PatternEndLaunchingFollowers)->Unit(benchmark::kMicrosecond);

} // namespace
