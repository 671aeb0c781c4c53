// A tempo command from the timers bar: every open instrument recompiles the
// ticks of its playing pattern, all under one hold of the engine lock, while
// the tick waits for the lock. 30 instruments of 10 000 notes each.
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MixerCommand.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "ui/MainView.h"

#include "BenchKit.h"

#include <benchmark/benchmark.h>

#include <mutex>

namespace {

constexpr int Instruments = 30;
constexpr int Lines = 30;
constexpr int Points = 10000;

struct NoHost : ViewHost {
    void RequestRepaint() override {}
    void ScrollBarsChanged() override {}
    void AskFrame(FrameAsk, Line*) override {}
};

void BM_SetTempoAllUnderLock(benchmark::State& state) {
    Engine engine;
    ClockDisplay clocks;
    theEngine = &engine;
    theClockDisplay = &clocks;
    MixerCommandQueue queue;
    NoHost host;
    {
        MainView view(&host);
        view.RegisterCurrentPlayhead();
        int32_t voice = 0;
        for (int i = 0; i < Instruments; ++i) {
            if (i > 0)
                view.NewInstrument();
            Instrument& inst = *view.Current();
            FillAndStart(inst, Lines, Points, queue, voice);
        }
        int64_t compiled = 0;
        for (Instrument* inst : view.instruments)
            compiled += inst->GetSchedule()->count;
        state.counters["events"] = static_cast<double>(compiled);
        bool faster = false;
        for (auto _ : state) {
            faster = !faster;
            std::lock_guard<EngineMutex> guard(theEngineLock);
            view.SetTempoAll(faster ? 60000.0 / 121.0 : 500.0);
        }
    }
    theEngine = nullptr;
    theClockDisplay = nullptr;
}
BENCHMARK(BM_SetTempoAllUnderLock)->Unit(benchmark::kMicrosecond);

} // namespace
