// The panels and the save command on the real frame: the tab key opening the
// popup volume panel, and the top panel refilled, with 30 instruments of 30
// lines each; and "Save Instrument" from the menu on an instrument of 2.5 MB,
// timed whole and for the time the engine lock was held, which a thread of
// its own measures by trying the lock as the tick does.
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MixerCommand.h"
#include "engine/SoundBuffer.h"
#include "engine/SoundSystem.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "ui/CMainFrame.h"
#include "ui/ViewWidget.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenuBar>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Guard = std::lock_guard<EngineMutex>;

int argc = 1;
char name[] = "bench_panels";
char* argv[] = {name, nullptr};

// The program's frame over a view with instruments of lines with samples.
struct Program {
    explicit Program(int instruments, int lines) {
        theEngine = &engine;
        theClockDisplay = &clocks;
        theSoundSystem = &sounds;
        view = new ViewWidget;
        view->CreateView();
        frame = new CMainFrame(view, view);
        view->SetFrame(frame);
        frame->show();
        view->CreatePanels();
        Guard guard(theEngineLock);
        MainView* v = view->View();
        for (int i = 0; i < instruments; ++i) {
            if (i > 0)
                v->NewInstrument();
            for (int l = 0; l < lines; ++l) {
                SoundBuffer* b = v->Current()->NewBufferForNewLine();
                const std::string path =
                    "/home/performer/sounds/kit/sample-" + std::to_string(l) + ".wav";
                b->SetLoaded(voice++, &queue, "sample-" + std::to_string(l), path, 300, 44100,
                             88200);
                b->MarkReady();
            }
        }
    }
    ~Program() {
        delete frame;
        theSoundSystem = nullptr;
        theEngine = nullptr;
        theClockDisplay = nullptr;
    }
    QApplication app{argc, argv};
    Engine engine;
    ClockDisplay clocks;
    SoundSystem sounds;
    MixerCommandQueue queue;
    ViewWidget* view;
    CMainFrame* frame;
    int32_t voice = 0;
};

// Tab with all 30 lines of the current instrument highlighted: the panel is
// filled in the tick's way and its window shown with its 20 columns.
void BM_TabOpensPopupPanel(benchmark::State& state) {
    Program p(30, 30);
    MainView* v = p.view->View();
    {
        Guard guard(theEngineLock);
        for (int32_t i = 0; i < v->rowList.Count(); ++i)
            v->rowList.Highlight(i);
    }
    for (auto _ : state) {
        {
            Guard guard(theEngineLock);
            v->ShowPopupVolumePanel();
        }
        p.view->SyncPanels();
        QApplication::processEvents();
        state.PauseTiming();
        {
            Guard guard(theEngineLock);
            v->HidePopupVolumePanel();
        }
        p.view->SyncPanels();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_TabOpensPopupPanel)->Unit(benchmark::kMillisecond);

// The top panel refilled with 30 instruments and their control groups shown,
// as after every change of an instrument, and its window updated.
void BM_TopPanelRefill(benchmark::State& state) {
    Program p(30, 30);
    MainView* v = p.view->View();
    {
        Guard guard(theEngineLock);
        v->topVolumePanel.ToggleControls();
    }
    for (auto _ : state) {
        {
            Guard guard(theEngineLock);
            v->RefreshPanelLists();
        }
        p.view->SyncPanels();
        QApplication::processEvents();
    }
}
BENCHMARK(BM_TopPanelRefill)->Unit(benchmark::kMillisecond);

// While running, adds up the time in which try_lock failed: the time the
// engine lock was held by someone else, seen as the tick sees it.
class LockProbe {
  public:
    LockProbe()
        : thread([this] {
              while (!stop.load(std::memory_order_relaxed)) {
                  if (theEngineLock.try_lock()) {
                      theEngineLock.unlock();
                      continue;
                  }
                  const auto start = Clock::now();
                  while (!theEngineLock.try_lock()) {
                  }
                  theEngineLock.unlock();
                  held += std::chrono::duration<double>(Clock::now() - start).count();
              }
          }) {}
    double Stop() {
        stop = true;
        thread.join();
        return held;
    }

  private:
    std::atomic<bool> stop{false};
    double held = 0;
    std::thread thread;
};

// Sixteen patterns of 10000 notes on 30 lines: a file of 2.5 MB, saved over
// its last version in the build folder by the menu entry.
void BM_SaveFromMenu(benchmark::State& state) {
    Program p(1, 30);
    Instrument* inst = p.view->View()->Current();
    {
        Guard guard(theEngineLock);
        PlayPointList pattern(64 * 4 * 64);
        for (int32_t i = 0; i < 10000; ++i) {
            PlayPoint n{};
            n.time = i * (64 * 4 * 64) / 10000;
            n.line = static_cast<uint8_t>(i % 30);
            pattern.Insert(n);
        }
        for (int32_t k = 0; k < PatternBank::PatternCount; ++k)
            inst->GetBank()->SetPattern(k, pattern);
    }
    inst->filePath = QDir::current().filePath("bench-save.nst").toStdString();
    inst->hasFile = 1;
    QAction* save = nullptr;
    for (QAction* menu : p.frame->menuBar()->actions())
        for (QAction* entry : menu->menu()->actions())
            if (entry->text() == "Save Instrument")
                save = entry;
    double locked = 0;
    for (auto _ : state) {
        LockProbe probe;
        save->trigger();
        state.PauseTiming();
        locked += probe.Stop();
        state.ResumeTiming();
    }
    state.counters["locked_ms"] = locked * 1e3 / static_cast<double>(state.iterations());
    // The steps the save takes under the lock, timed on their own: the
    // instrument looked up, each pattern copied.
    const auto start = Clock::now();
    p.view->CurrentInstrument();
    for (int32_t k = 0; k < PatternBank::PatternCount; ++k) {
        Guard guard(theEngineLock);
        const PlayPointList copy = inst->GetBank()->GetPattern(k);
        benchmark::DoNotOptimize(copy.items);
    }
    state.counters["lock_steps_ms"] =
        std::chrono::duration<double>(Clock::now() - start).count() * 1e3;
    state.counters["file_MB"] = QFileInfo(QString::fromStdString(inst->filePath)).size() / 1e6;
}
BENCHMARK(BM_SaveFromMenu)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc_, char** argv_) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc_, argv_);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
