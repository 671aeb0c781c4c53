// The cost of editing a line of 10 000 notes while its pattern plays: each
// edit is timed with the engine lock held, as the GUI or the tick holds it,
// the list, the working pattern and the schedule all taking the change. And
// the recording of that line's drawing after an edit.
#include "editing/Line.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MixerCommand.h"
#include "engine/Schedule.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/InstrumentView.h"
#include "song/PatternBank.h"
#include "ui/RecordingCanvas.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <vector>

namespace {

constexpr int32_t Notes = 10000;
constexpr int32_t Measures = 80; // 20 480 units: a note every other unit

struct QuietView : InstrumentView {
    void RefreshInstrument() override {}
    void PatternLengthChanged() override {}
    void LineSelectionChanged(Line*) override {}
    void FocusSequencer(SequencerRow*) override {}
    void AddFocusSequencer(SequencerRow*) override {}
};

// One instrument with one line whose pattern holds a note on every even
// unit and is playing; the line shows the whole pattern on a 1041 pixel row.
struct Pattern {
    Pattern() {
        theEngine = &engine;
        theClockDisplay = &clocks;
        SoundBuffer* b = inst.NewBufferForNewLine();
        b->SetLoaded(0, &queue, "s", "/s.wav", 300, 44100, 88200);
        b->MarkReady();
        bank = inst.GetBank();
        line = bank->GetLine(0);
        line->rect = Rect{0, 100, 1041, 140};
        line->SetWindow(Measures, 0);
        Reset();
        bank->Play(0, 0, 1);
    }
    ~Pattern() {
        theEngine = nullptr;
        theClockDisplay = nullptr;
    }
    void Reset() {
        PlayPointList list(Measures * 256);
        std::vector<PlayPoint> all(Notes);
        for (int32_t i = 0; i < Notes; ++i) {
            all[i] = PlayPoint{};
            all[i].time = 2 * i;
        }
        list.InsertSorted(all.data(), Notes, false);
        bank->SetPattern(0, list);
        if (bank->playing == 0)
            bank->Play(0, 0, 1);
        SelectAll();
    }
    void SelectAll() { Select(0, Measures * 256 - 1); }
    void Select(int32_t first, int32_t last) {
        line->selectionFirst = first;
        line->selectionLast = last;
        line->pointsHighlighted = 1;
    }

    Engine engine;
    ClockDisplay clocks;
    MixerCommandQueue queue;
    QuietView view;
    Instrument inst{&view};
    PatternBank* bank;
    Line* line;
};

// Times the edit under the engine lock; prepare runs before each, untimed.
// The 99th percentile of the holds goes into the counter p99_us: on a
// shared machine the longest one measures the scheduler, not the edit.
void TimeLocked(benchmark::State& state, const std::function<void()>& prepare,
                const std::function<void()>& edit) {
    std::vector<double> holds;
    for (auto _ : state) {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        {
            std::lock_guard<EngineMutex> guard(theEngineLock);
            edit();
        }
        const double held =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        holds.push_back(held);
        state.SetIterationTime(held);
    }
    auto p99 = holds.begin() + static_cast<std::ptrdiff_t>(holds.size() * 99 / 100);
    std::nth_element(holds.begin(), p99, holds.end());
    state.counters["p99_us"] = *p99 * 1e6;
}

void BM_NudgeAllNotes(benchmark::State& state) {
    Pattern p;
    int32_t direction = 1;
    TimeLocked(
        state, [] {},
        [&] {
            p.line->Nudge(direction);
            direction = -direction;
        });
    state.counters["notes"] = p.line->points->count;
}
BENCHMARK(BM_NudgeAllNotes)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_DeleteAllNotes(benchmark::State& state) {
    Pattern p;
    TimeLocked(
        state, [&] { p.Reset(); }, [&] { p.line->DeleteSelection(); });
}
BENCHMARK(BM_DeleteAllNotes)->UseManualTime()->Unit(benchmark::kMicrosecond);

// 10 000 notes pasted between the 10 000 there.
void BM_PasteTenThousand(benchmark::State& state) {
    Pattern p;
    std::vector<PlayPoint> clip(Notes);
    for (int32_t i = 0; i < Notes; ++i) {
        clip[i] = PlayPoint{};
        clip[i].time = 2 * i + 1;
    }
    TimeLocked(
        state, [&] { p.Reset(); }, [&] { p.line->PasteAt(0, clip.data(), Notes, 8, 120); });
    state.counters["notes"] = p.line->points->count;
}
BENCHMARK(BM_PasteTenThousand)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The first measure copied over the 79 after it, erasing them first.
void BM_DestructiveFill(benchmark::State& state) {
    Pattern p;
    TimeLocked(
        state,
        [&] {
            p.Reset();
            p.Select(0, 255);
        },
        [&] { p.line->FillFromSelection(1, 0); });
    state.counters["notes"] = p.line->points->count;
}
BENCHMARK(BM_DestructiveFill)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_NoteValueOfAllNotes(benchmark::State& state) {
    Pattern p;
    int16_t volume = -100;
    TimeLocked(
        state, [] {},
        [&] {
            p.line->SetNoteValue(FieldVolume, volume, false);
            volume = static_cast<int16_t>(-volume - 200);
        });
}
BENCHMARK(BM_NoteValueOfAllNotes)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The row's drawing recorded after a nudge, as the view records it under
// the lock.
void BM_RepaintAfterEdit(benchmark::State& state) {
    Pattern p;
    RecordingCanvas canvas;
    p.line->Place(p.line->rect, &canvas);
    int32_t direction = 1;
    TimeLocked(
        state,
        [&] {
            p.line->Nudge(direction);
            direction = -direction;
            canvas.records.clear();
        },
        [&] { p.line->Paint(); });
    state.counters["records"] = static_cast<double>(canvas.records.size());
}
BENCHMARK(BM_RepaintAfterEdit)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
