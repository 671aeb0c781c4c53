// The instrument file at its largest, sixteen patterns of 10000 points in
// chords of four (about 2.5 MB, waves not counted), saved and loaded; and the
// headless render of 30 instruments for a minute of music at 48 kHz.
#include "engine/EngineLock.h"
#include "engine/RenderCommand.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/InstrumentFile.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <unistd.h>

namespace {

std::string TempPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() /
            ("oxbench-" + std::to_string(getpid()) + "-" + name))
        .string();
}

std::unique_ptr<Instrument> FullInstrument() {
    auto instrument = std::make_unique<Instrument>();
    instrument->SetName("Full");
    for (int32_t i = 0; i < PatternBank::PatternCount; ++i) {
        PlayPointList pattern(40960);
        for (int32_t k = 0; k < 10000; ++k) {
            PlayPoint p{};
            p.time = k / 4 * 16;
            p.line = static_cast<uint8_t>(k % 4 + i);
            p.volume = static_cast<int16_t>(-k % 3000);
            pattern.InsertOrReplace(p);
        }
        instrument->GetBank()->SetPattern(i, pattern);
    }
    return instrument;
}

// Save: the bytes under the engine lock, then the new file written, flushed
// to the disk and renamed over the old one.
void BM_SaveFullInstrument(benchmark::State& state) {
    auto instrument = FullInstrument();
    const std::string path = TempPath("full.nst");
    for (auto _ : state)
        SaveInstrumentAs(*instrument, path);
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
    std::remove(path.c_str());
}
BENCHMARK(BM_SaveFullInstrument)->Unit(benchmark::kMillisecond)->UseRealTime();

// The part of a save that holds the engine lock: the bytes in memory.
void BM_SerializeFullInstrument(benchmark::State& state) {
    auto instrument = FullInstrument();
    for (auto _ : state) {
        FileArchive archive("full.nst");
        instrument->Serialize(archive);
        benchmark::DoNotOptimize(archive.Bytes().data());
    }
}
BENCHMARK(BM_SerializeFullInstrument)->Unit(benchmark::kMillisecond);

// Load: the file read and checked into a new instrument, its patterns set.
void BM_LoadFullInstrument(benchmark::State& state) {
    const std::string path = TempPath("load.nst");
    SaveInstrumentAs(*FullInstrument(), path);
    for (auto _ : state) {
        std::unique_ptr<Instrument> loaded = LoadInstrument(path, nullptr);
        benchmark::DoNotOptimize(loaded.get());
    }
    std::remove(path.c_str());
}
BENCHMARK(BM_LoadFullInstrument)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole render command: 30 demo instruments loaded with their waves,
// then a minute of music ticked, mixed and written.
void BM_Render30InstrumentsForAMinute(benchmark::State& state) {
    RenderOptions options;
    options.files.assign(30, OX_SOURCE_DIR "/resources/demo.nst");
    options.output = TempPath("render.wav");
    options.seconds = 60.0;
    for (auto _ : state) {
        std::string error;
        if (Render(options, error) != 0)
            state.SkipWithError(error.c_str());
    }
    state.counters["x_realtime"] = benchmark::Counter(
        options.seconds * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    std::remove(options.output.c_str());
}
BENCHMARK(BM_Render30InstrumentsForAMinute)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

} // namespace
