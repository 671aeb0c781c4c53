// The GUI thread loads and drops samples while the audio thread plays them:
// what crosses between the two (samples, voice tables, commands) must never
// be freed while the mixer can reach it. Meant to run under the sanitizers.
#include "SoundTestKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/OfflineOutput.h"
#include "engine/SoundBuffer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

// The model the tick plays from: every loaded buffer, guarded by the engine lock.
struct Model {
    std::vector<std::unique_ptr<SoundBuffer>> buffers;
    uint64_t ticks = 0;

    // Audio thread, engine lock held: plays every buffer on every fourth tick.
    static void Tick(void* self) {
        Model& m = *static_cast<Model*>(self);
        if (m.ticks++ % 4 != 0)
            return;
        PlayPoint p{};
        p.volume = -2000;
        for (auto& b : m.buffers)
            b->Play(p);
    }
};

TEST(HandOff, GuiLoadsAndDropsSamplesWhileTheAudioThreadPlaysThem) {
    Mixer mixer;
    Model model;
    AudioCallback callback(Model::Tick, &model, mixer);
    OfflineOutput output(48000, 128);
    output.Start(callback);

    std::atomic<bool> done{false};
    std::thread audio([&] {
        while (!done.load(std::memory_order_acquire))
            output.PullPeriod();
    });

    // Up to three table sizes of voices, dropping every third one again.
    for (int i = 0; i < 3 * Mixer::TableStep; ++i) {
        SampleData* sample = SoundTestKit::Constant(2000 + i, 0.01f, -0.01f);
        {
            std::lock_guard<EngineMutex> hold(theEngineLock);
            const int32_t voice = mixer.Attach(sample);
            ASSERT_GE(voice, 0);
            auto buffer = std::make_unique<SoundBuffer>(nullptr);
            buffer->SetLoaded(voice, mixer.Commands(), "s", "s.wav", 40, 44100, 176400);
            buffer->MarkReady();
            model.buffers.push_back(std::move(buffer));
            if (i % 3 == 2)
                model.buffers.erase(model.buffers.begin() + i / 3);
        }
        mixer.Collect();
        std::this_thread::yield();
    }
    while (callback.TicksRun() < 200)
        std::this_thread::yield();
    done.store(true, std::memory_order_release);
    audio.join();
    output.Stop();
    EXPECT_EQ(model.buffers.size(), 2u * Mixer::TableStep);
    std::lock_guard<EngineMutex> hold(theEngineLock);
    model.buffers.clear();
}

} // namespace
