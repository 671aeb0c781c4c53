// What the GUI thread and the audio thread share: samples, voice tables and
// commands handed over while both run, and the engine lock with its announced
// ticks. Meant to run under the sanitizers (tools/test.sh runs them with TSan).
#include "SoundTestKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/OfflineOutput.h"
#include "engine/SoundBuffer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
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
    static int32_t Silent(void* self) {
        ++static_cast<Model*>(self)->ticks;
        return 0;
    }
};

TEST(HandOff, GuiLoadsAndDropsSamplesWhileTheAudioThreadPlaysThem) {
    Mixer mixer;
    Model model;
    AudioCallback callback(Model::Tick, Model::Silent, &model, mixer);
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
        mixer.Collect(); // outside the lock, as the GUI's timer does
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

// A thread that locks the engine lock must let an announced tick go first,
// even when it finds the lock free: a GUI thread that takes the lock in a
// tight loop would otherwise keep the tick out for the whole loop.
TEST(EngineLock, AGuiLockYieldsToAnAnnouncedTick) {
    using namespace std::chrono_literals;
    EngineMutex lock;
    std::atomic<bool> taken{false};
    lock.AnnounceTick(true);
    std::thread gui([&] {
        std::lock_guard<EngineMutex> hold(lock);
        taken = true;
    });
    std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(taken) << "the GUI thread took the lock from an announced tick";
    ASSERT_TRUE(lock.try_lock()); // the tick
    lock.AnnounceTick(false);
    std::this_thread::sleep_for(5ms);
    EXPECT_FALSE(taken) << "the GUI thread took the lock from the running tick";
    lock.unlock();
    gui.join();
    EXPECT_TRUE(taken) << "the GUI thread locks once the tick is done";
}

} // namespace
