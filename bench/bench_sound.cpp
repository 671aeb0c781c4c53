// Costs of the sound path: refusing a wave header that lies, mixing voices,
// loading wave files, and how often a tick runs late while another thread
// keeps taking the engine lock.
#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/Mixer.h"
#include "engine/OfflineOutput.h"
#include "engine/Schedule.h"
#include "engine/SoundBuffer.h"
#include "engine/WaveFile.h"
#include "song/PlayPointList.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int32_t OutputRate = 48000;
constexpr int32_t Period = 256;

// ---- A header that claims more than the file holds --------------------------

// Peak resident memory of the process so far, in bytes.
int64_t PeakRss() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<int64_t>(usage.ru_maxrss) * 1024;
}

// A 60-byte stereo 16-bit file whose "data" chunk claims 512 MiB. Refusing it
// must cost neither time nor memory. Registered first, so that the peak
// memory of the benchmarks after it cannot hide what it takes.
void BM_RefuseWaveClaiming512MiB(benchmark::State& state) {
    const std::string path =
        "/tmp/oxbench-" + std::to_string(static_cast<long>(getpid())) + "-liar.wav";
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        auto put = [&](uint32_t v, int n) {
            for (int i = 0; i < n; ++i)
                out.put(static_cast<char>(v >> (8 * i)));
        };
        out.write("RIFF", 4);
        put(52, 4);
        out.write("WAVEfmt ", 8);
        for (uint32_t v : {16u, 1u | 2u << 16, 44100u, 176400u, 4u | 16u << 16})
            put(v, 4);
        out.write("data", 4);
        put(512u << 20, 4);
        out.write("0123456789abcdef", 16);
    }
    const int64_t peakBefore = PeakRss();
    for (auto _ : state) {
        WaveFile wave;
        if (ReadWave(path, wave) != WaveStatus::ShortData) {
            state.SkipWithError("the file was not refused as short");
            break;
        }
    }
    state.counters["peak_rss_growth_kB"] = static_cast<double>(PeakRss() - peakBefore) / 1024.0;
    std::remove(path.c_str());
}
BENCHMARK(BM_RefuseWaveClaiming512MiB)->Unit(benchmark::kMicrosecond);

// A second of stereo noise at 44.1 kHz, kept as the loader keeps a file of
// that sample size: 16-bit words for 16 bits, floats for 24.
SampleData* NoiseSample(std::mt19937& random, int bits) {
    const int32_t frames = 44100;
    std::uniform_int_distribution<int> value(-32768, 32767);
    if (bits == 16) {
        SampleData* s = new SampleData(frames, 2, 44100, 4, SampleData::Encoding::Int16);
        for (int32_t i = 0; i < 2 * frames; ++i)
            s->words[i] = static_cast<int16_t>(value(random));
        return s;
    }
    SampleData* s = new SampleData(frames, 2, 44100, 6);
    for (int32_t i = 0; i < 2 * frames; ++i)
        s->samples[i] = static_cast<float>(value(random)) / 32768.0f;
    return s;
}

// Mixer with n stereo voices of the given sample size, each at a random rate
// between half and twice the sample's own, all sounding.
struct MixSetup {
    explicit MixSetup(int32_t n, int bits = 16) {
        std::mt19937 random(7);
        std::uniform_int_distribution<int32_t> frequency(22050, 88200);
        mixer.SetOutputRate(OutputRate);
        for (int32_t i = 0; i < n; ++i) {
            const int32_t v = mixer.Attach(NoiseSample(random, bits));
            MixerCommandQueue* q = mixer.Commands();
            q->Push(MixerCommand{MixerCommand::SetFrequency, v, frequency(random), nullptr});
            q->Push(MixerCommand{MixerCommand::SetVolume, v, -600, nullptr});
            q->Push(MixerCommand{MixerCommand::SetPan, v, (i % 21 - 10) * 300, nullptr});
            q->Push(MixerCommand{MixerCommand::Play, v, 0, nullptr});
            voices.push_back(v);
        }
        mixer.ApplyCommands();
    }
    // Starts again every voice that reached its end, so all keep sounding.
    void Retrigger() {
        for (int32_t v : voices)
            if (!mixer.VoiceAt(v)->playing)
                mixer.Commands()->Push(MixerCommand{MixerCommand::Play, v, 0, nullptr});
        mixer.ApplyCommands();
    }
    Mixer mixer;
    std::vector<int32_t> voices;
    std::vector<float> out = std::vector<float>(2 * Period);
};

// The calling thread's CPU time in seconds.
double ThreadSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Mixing cost per voice and output frame, and the share of one core that a
// 256-frame period at 48 kHz takes, for n voices of 16 or 24-bit samples.
// Counted in the thread's CPU time: on a machine shared with other work the
// time the thread waits for a core is not the mixer's.
void BM_Mix(benchmark::State& state) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    MixSetup setup(n, static_cast<int>(state.range(1)));
    const double start = ThreadSeconds();
    for (auto _ : state) {
        setup.Retrigger();
        setup.mixer.Mix(setup.out.data(), Period);
        benchmark::DoNotOptimize(setup.out.data());
    }
    const double seconds = ThreadSeconds() - start;
    const double perPeriod = seconds / static_cast<double>(state.iterations());
    state.counters["ns_per_voice_frame"] = perPeriod * 1e9 / (static_cast<double>(n) * Period);
    state.counters["core_percent"] = 100.0 * perPeriod / (static_cast<double>(Period) / OutputRate);
}
BENCHMARK(BM_Mix)->ArgsProduct({{64, 256}, {16, 24}});

// ---- Wave loading from the page cache --------------------------------------

// A stereo wave file of the given sample size with 64 MB of data, written once
// and read once so that the timed reads come from the page cache.
std::string CachedWave(int bits) {
    const std::string path = "/tmp/oxbench-" + std::to_string(static_cast<long>(getpid())) + "-" +
                             std::to_string(bits) + ".wav";
    const uint32_t dataBytes = 64u << 20;
    const uint16_t align = static_cast<uint16_t>(2 * bits / 8);
    const uint32_t rate = 48000;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    auto put = [&](uint32_t v, int n) {
        for (int i = 0; i < n; ++i)
            out.put(static_cast<char>(v >> (8 * i)));
    };
    out.write("RIFF", 4);
    put(36 + dataBytes, 4);
    out.write("WAVEfmt ", 8);
    put(16, 4);
    put(1, 2);
    put(2, 2);
    put(rate, 4);
    put(rate * align, 4);
    put(align, 2);
    put(static_cast<uint32_t>(bits), 2);
    out.write("data", 4);
    put(dataBytes, 4);
    std::vector<char> block(1 << 20);
    std::mt19937 random(3);
    for (char& c : block)
        c = static_cast<char>(random());
    for (uint32_t done = 0; done < dataBytes; done += block.size())
        out.write(block.data(), static_cast<std::streamsize>(block.size()));
    out.close();
    WaveFile warm;
    ReadWave(path, warm);
    return path;
}

// Reading and decoding a whole file, in GB of file per second.
void BM_LoadWave(benchmark::State& state) {
    const std::string path = CachedWave(static_cast<int>(state.range(0)));
    int64_t bytes = 0;
    for (auto _ : state) {
        WaveFile wave;
        if (ReadWave(path, wave) != WaveStatus::Ok) {
            state.SkipWithError("the wave file did not load");
            break;
        }
        bytes += wave.dataSize;
        benchmark::DoNotOptimize(wave.sample->memory);
    }
    state.counters["GB_per_s"] =
        benchmark::Counter(static_cast<double>(bytes) / 1e9, benchmark::Counter::kIsRate);
    std::remove(path.c_str());
}
BENCHMARK(BM_LoadWave)->Arg(16)->Arg(24)->Unit(benchmark::kMillisecond);

// ---- Late ticks under a busy GUI thread -------------------------------------

// Another thread takes the engine lock in a tight loop, each time for one
// short model operation (a note added to and taken from a 200-note list),
// while the audio thread renders periods for four running instruments and 64
// sounding voices. Reports the share of ticks that could not run on their own
// boundary.
void BM_LateTicksUnderLockContention(benchmark::State& state) {
    MixSetup setup(64);
    Engine engine;
    std::vector<std::unique_ptr<Schedule>> schedules;
    PlayPointList pattern(512);
    for (int32_t t = 0; t < 512; t += 16) {
        PlayPoint p{};
        p.time = t;
        pattern.Insert(p);
    }
    for (int i = 0; i < 4; ++i) {
        schedules.push_back(std::make_unique<Schedule>());
        schedules.back()->StagePattern(pattern);
        schedules.back()->CommitPattern(1, 0);
        engine.AddPlayhead(schedules.back()->GetPlayhead());
    }
    AudioCallback callback(&engine, setup.mixer);
    OfflineOutput output(OutputRate, Period);
    output.Start(callback);

    std::atomic<bool> stop{false};
    std::atomic<uint64_t> operations{0};
    std::thread gui([&] {
        PlayPointList list(1 << 20);
        for (int32_t t = 0; t < 200; ++t) {
            PlayPoint p{};
            p.time = t * 64;
            list.Insert(p);
        }
        PlayPoint extra{};
        uint64_t n = 0;
        while (!stop.load(std::memory_order_relaxed)) {
            std::lock_guard<EngineMutex> hold(theEngineLock);
            extra.time = static_cast<int32_t>(n % 200) * 64 + 1;
            list.InsertOrReplace(extra);
            list.Remove(extra);
            ++n;
        }
        operations = n;
    });
    // The audio thread works as a device drives it, one period and then a
    // pause, but with a period every millisecond to see five times as many
    // ticks as real time would in the same while.
    auto next = std::chrono::steady_clock::now();
    for (auto _ : state) {
        setup.Retrigger();
        benchmark::DoNotOptimize(output.PullPeriod());
        next += std::chrono::milliseconds(1);
        std::this_thread::sleep_until(next);
    }
    stop = true;
    gui.join();
    const double ticks = static_cast<double>(callback.TicksRun());
    state.counters["ticks"] = ticks;
    state.counters["late_percent"] = ticks > 0 ? 100.0 * callback.LateTicks() / ticks : 0.0;
    state.counters["gui_operations"] = static_cast<double>(operations.load());
}
BENCHMARK(BM_LateTicksUnderLockContention)->Iterations(10000)->UseRealTime();

} // namespace
