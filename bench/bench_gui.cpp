// The window's costs: from nothing to the first painted window, and a full
// repaint of a stack of lines with notes, split into the part under the
// engine lock (the rows record their drawing) and the replay with QPainter.
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MixerCommand.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "ui/CMainFrame.h"
#include "ui/CanvasPainter.h"
#include "ui/ViewWidget.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <benchmark/benchmark.h>

#include <chrono>
#include <mutex>

namespace {

int argc = 1;
char name[] = "bench_gui";
char* argv[] = {name, nullptr};

// The frame with its view, shown and painted once into an image.
void BM_StartToFirstPaintedWindow(benchmark::State& state) {
    for (auto _ : state) {
        QApplication app(argc, argv);
        Engine engine;
        ClockDisplay clocks;
        theEngine = &engine;
        theClockDisplay = &clocks;
        ViewWidget* view = new ViewWidget;
        view->CreateView();
        CMainFrame frame(view, view);
        frame.show();
        QImage image = frame.grab().toImage();
        benchmark::DoNotOptimize(image.bits());
        view->DeleteView();
        theEngine = nullptr;
        theClockDisplay = nullptr;
    }
}
BENCHMARK(BM_StartToFirstPaintedWindow)->Unit(benchmark::kMillisecond)->Iterations(5);

// Thirteen lines (with the sequencer box and the pattern row, 15 rows) and
// 1000 notes across them, all visible at zoom 3.
void BM_FullRepaint(benchmark::State& state) {
    QApplication app(argc, argv);
    Engine engine;
    ClockDisplay clocks;
    theEngine = &engine;
    theClockDisplay = &clocks;
    MixerCommandQueue queue;
    struct NoHost : ViewHost {
        void RequestRepaint() override {}
        void ScrollBarsChanged() override {}
        void AskFrame(FrameAsk, Line*) override {}
    } host;
    MainView view(&host);
    Instrument& inst = *view.Current();
    for (int l = 0; l < 13; ++l) {
        SoundBuffer* b = inst.NewBufferForNewLine();
        b->SetLoaded(l, &queue, "sample", "/s.wav", 300, 44100, 88200);
        b->MarkReady();
    }
    PlayPointList pattern(1024);
    for (int i = 0; i < 1000; ++i) {
        PlayPoint p{};
        p.time = i * 1024 / 1000;
        p.line = static_cast<uint8_t>(i % 13);
        pattern.Insert(p);
    }
    inst.GetBank()->SetPattern(0, pattern);
    view.SelectZoom3();
    QImage image(1280, 700, QImage::Format_RGB32);
    RecordingCanvas canvas;
    double lockedSeconds = 0;
    std::vector<CanvasRecord> records;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        {
            std::lock_guard<EngineMutex> guard(theEngineLock);
            canvas.records.swap(records);
            canvas.records.clear();
            view.Paint(canvas, image.width(), image.height());
            records.swap(canvas.records);
        }
        lockedSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        QPainter painter(&image);
        painter.fillRect(image.rect(), Qt::white);
        CanvasPainter(painter).Replay(records);
    }
    state.counters["locked_us"] = lockedSeconds * 1e6 / static_cast<double>(state.iterations());
    theEngine = nullptr;
    theClockDisplay = nullptr;
}
BENCHMARK(BM_FullRepaint)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc_, char** argv_) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc_, argv_);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
