#pragma once

#include "engine/AudioCallback.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/Mixer.h"
#include "engine/SampleData.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"
#include "ui/KeyMap.h"
#include "ui/MainView.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <initializer_list>
#include <utility>

struct QuietHost : ViewHost {
    void RequestRepaint() override {}
    void ScrollBarsChanged() override {}
    void AskFrame(FrameAsk, Line*) override {}
};

// The program's engine, view and key map over a mixer: the current
// instrument has lines playing one-frame clicks, and its first pattern holds
// `points` notes spread over 40 measures, the first at time 0.
struct Stage {
    explicit Stage(int32_t points, int32_t lines = 4) : view(&host), keys(&engine, &view) {
        theEngine = &engine;
        theClockDisplay = &clocks;
        engine.SetKeyTarget(&keys);
        view.RegisterCurrentPlayhead();
        Instrument* inst = view.Current();
        inst->SetLevel(0, 1.0);
        for (int32_t i = 0; i < lines; ++i) {
            SampleData* click = new SampleData(1, 1, 48000, 2);
            click->samples[0] = 1.0f;
            SoundBuffer* b = inst->NewBufferForNewLine();
            b->SetLoaded(mixer.Attach(click), mixer.Commands(), "click", "click.wav", 1, 48000,
                         96000);
            b->MarkReady();
        }
        constexpr int32_t units = 40 * 256;
        PlayPointList list(units);
        for (int32_t i = 0; i < points; ++i) {
            PlayPoint p{};
            p.time = static_cast<int32_t>(static_cast<int64_t>(i) * units / points);
            p.line = static_cast<uint8_t>(i % lines);
            list.InsertOrReplace(p);
        }
        inst->GetBank()->SetPattern(0, list);
        inst->Unmute();
    }
    ~Stage() {
        engine.SetKeyTarget(nullptr);
        theEngine = nullptr;
        theClockDisplay = nullptr;
    }
    // Posts a key sequence and runs enough ticks for it.
    void Keys(std::initializer_list<std::pair<uint8_t, uint32_t>> events) {
        for (auto [pressed, code] : events)
            engine.PostKey(pressed, code);
        for (size_t i = 0; i < events.size(); i += Engine::KeysPerTick)
            engine.OnTimer();
    }

    Engine engine;
    ClockDisplay clocks;
    Mixer mixer;
    QuietHost host;
    MainView view;
    KeyMap keys;
};

// The delay from an event to the first sound after it, for events at every
// frame offset of a tick, through an audio callback pulling periods of
// `period` frames at 48 kHz. An event comes after the periods before its
// frame were rendered (a key), or with the period that holds its frame
// (inPeriod: MIDI from JACK). post(at) queues the event of frame `at`.
struct OnsetDelays {
    template <typename Post> void Measure(Stage& stage, int32_t period, bool inPeriod, Post post) {
        AudioCallback callback(&stage.engine, stage.mixer);
        callback.Prepare(48000);
        stage.Keys({{1, KeyMap::Grave}, {0, KeyMap::Grave}});
        std::vector<float> out(2 * static_cast<size_t>(period));
        const int32_t tickFrames = 48000 / TickTime::TicksPerSecond;
        int64_t frame = 0;
        for (int32_t offset = 0; offset < tickFrames; ++offset) {
            const int64_t at = (frame / tickFrames + 4) * tickFrames + offset;
            while (inPeriod ? frame + period <= at : frame < at) {
                callback.Render(out.data(), period);
                frame += period;
            }
            post(at);
            int64_t onset = -1;
            while (onset < 0) {
                callback.Render(out.data(), period);
                for (int32_t f = 0; f < period && onset < 0; ++f)
                    if (out[2 * f] != 0.0f)
                        onset = frame + f;
                frame += period;
            }
            worst = std::max(worst, onset - at);
            sum += onset - at;
            ++trials;
        }
    }
    void Report(benchmark::State& state) const {
        state.counters["worst_frames"] = static_cast<double>(worst);
        state.counters["worst_ms"] = static_cast<double>(worst) / 48.0;
        state.counters["mean_ms"] = static_cast<double>(sum) / static_cast<double>(trials) / 48.0;
    }

    int64_t worst = 0, sum = 0, trials = 0;
};
