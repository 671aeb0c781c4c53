// Costs of the engine's bookkeeping inside the 5 ms tick.
#include "engine/Engine.h"
#include "engine/Schedule.h"
#include "song/PlayPointList.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

PlayPointList Pattern(int32_t points, int32_t lengthUnits) {
    PlayPointList list(lengthUnits);
    for (int32_t i = 0; i < points; ++i) {
        PlayPoint p{};
        p.time = static_cast<int32_t>(static_cast<int64_t>(i) * lengthUnits / points);
        p.line = static_cast<uint8_t>(i % 4);
        list.Insert(p);
    }
    return list;
}

// One tick over 30 running playheads whose next events lie far ahead.
void BM_TickThirtyPlayheadsNoEvent(benchmark::State& state) {
    std::vector<Schedule> schedules(30);
    Engine engine;
    PlayPointList far(1 << 20);
    PlayPoint p{};
    p.time = (1 << 20) - 1;
    far.Insert(p);
    for (auto& s : schedules) {
        s.StagePattern(far);
        s.CommitPattern(1, 0);
        engine.AddPlayhead(s.GetPlayhead());
    }
    for (auto _ : state) {
        engine.OnTimer();
        if (schedules[0].playhead.position > 1000000)
            for (auto& s : schedules)
                s.playhead.position = 0;
    }
}
BENCHMARK(BM_TickThirtyPlayheadsNoEvent);

// A pattern switch as the sequencer makes it: stage, then commit keeping
// the place. After the first pass the arrays are reused.
void BM_PatternSwitch(benchmark::State& state) {
    Schedule schedule;
    const PlayPointList a = Pattern(static_cast<int32_t>(state.range(0)), 4096);
    const PlayPointList b = Pattern(static_cast<int32_t>(state.range(0)), 2048);
    bool flip = false;
    for (auto _ : state) {
        schedule.StagePattern(flip ? a : b);
        schedule.CommitPattern(0, 0);
        flip = !flip;
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PatternSwitch)->Arg(10000)->Unit(benchmark::kMicrosecond);

// A note added to a playing pattern, and taken out again so that the size
// stays put; the two are timed together and reported per insertion.
void BM_InsertPointIntoPlaying(benchmark::State& state) {
    Schedule schedule;
    schedule.StagePattern(Pattern(static_cast<int32_t>(state.range(0)), 4096));
    schedule.CommitPattern(1, 0);
    schedule.playhead.position = 3000;
    PlayPoint p{};
    p.line = 7;
    int32_t t = 0;
    for (auto _ : state) {
        p.time = t;
        t = (t + 997) % 4096;
        schedule.InsertPoint(p);
        schedule.RemovePoint(p);
    }
}
BENCHMARK(BM_InsertPointIntoPlaying)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace
