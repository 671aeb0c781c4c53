// Costs of the sound path: mixing voices, loading wave files, and how often a
// tick runs late while another thread keeps taking the engine lock.
#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/Mixer.h"
#include "engine/OfflineOutput.h"
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
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int32_t OutputRate = 48000;
constexpr int32_t Period = 256;

// A second of 16-bit stereo noise at 44.1 kHz, decoded as the loader would.
SampleData* NoiseSample(std::mt19937& random) {
    const int32_t frames = 44100;
    SampleData* s = new SampleData(frames, 2, 44100, 4);
    std::uniform_int_distribution<int> value(-32768, 32767);
    for (int32_t i = 0; i < 2 * frames; ++i)
        s->samples[i] = static_cast<float>(value(random)) / 32768.0f;
    return s;
}

// Mixer with n stereo voices, each at a random rate between half and twice
// the sample's own, all sounding.
struct MixSetup {
    explicit MixSetup(int32_t n) {
        std::mt19937 random(7);
        std::uniform_int_distribution<int32_t> frequency(22050, 88200);
        mixer.SetOutputRate(OutputRate);
        for (int32_t i = 0; i < n; ++i) {
            const int32_t v = mixer.Attach(NoiseSample(random));
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

// Mixing cost per voice and output frame, and the share of one core that a
// 256-frame period at 48 kHz takes.
void BM_Mix(benchmark::State& state) {
    const int32_t n = static_cast<int32_t>(state.range(0));
    MixSetup setup(n);
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        setup.Retrigger();
        setup.mixer.Mix(setup.out.data(), Period);
        benchmark::DoNotOptimize(setup.out.data());
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double perPeriod = seconds / static_cast<double>(state.iterations());
    state.counters["ns_per_voice_frame"] = perPeriod * 1e9 / (static_cast<double>(n) * Period);
    state.counters["core_percent"] = 100.0 * perPeriod / (static_cast<double>(Period) / OutputRate);
}
BENCHMARK(BM_Mix)->Arg(64)->Arg(256);

} // namespace
