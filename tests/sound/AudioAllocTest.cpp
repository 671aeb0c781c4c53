// The audio thread neither allocates nor frees, also while the GUI thread
// deletes lines and closes instruments and the tick switches between a small
// pattern and one of 10 000 points. This binary replaces malloc, calloc,
// realloc, free, mmap, munmap and the operators new and delete, and counts the
// calls made on the audio thread. It is built without sanitizers, which
// replace them too.
#include "SoundTestKit.h"

#include "editing/Line.h"
#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MidiParser.h"
#include "engine/OfflineOutput.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
}

namespace {

std::atomic<bool> watching{false};
std::atomic<pthread_t> watched{};
std::atomic<int64_t> allocations{0};
std::atomic<int64_t> frees{0};

void Count(std::atomic<int64_t>& counter) {
    if (watching.load(std::memory_order_relaxed) &&
        pthread_equal(pthread_self(), watched.load(std::memory_order_relaxed)))
        counter.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

extern "C" {
void* malloc(size_t n) {
    Count(allocations);
    return __libc_malloc(n);
}
void* calloc(size_t n, size_t size) {
    Count(allocations);
    return __libc_calloc(n, size);
}
void* realloc(void* p, size_t n) {
    Count(allocations);
    return __libc_realloc(p, n);
}
void free(void* p) {
    if (p != nullptr)
        Count(frees);
    __libc_free(p);
}
void* mmap(void* at, size_t n, int protection, int flags, int fd, off_t offset) {
    Count(allocations);
    return reinterpret_cast<void*>(syscall(SYS_mmap, at, n, protection, flags, fd, offset));
}
int munmap(void* at, size_t n) {
    Count(frees);
    return static_cast<int>(syscall(SYS_munmap, at, n));
}
}

// The standard library's other forms of new and delete call these.
void* operator new(size_t n) {
    if (void* p = malloc(n))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    free(p);
}
void operator delete(void* p, size_t) noexcept {
    free(p);
}

namespace {

constexpr int32_t BigPoints = 10000;
constexpr int Lines = 5;

// The engine's tick, also counting the pattern switches of one instrument.
struct Ticker {
    Engine* engine;
    Instrument* instrument;
    int32_t lastPattern = -1;
    std::atomic<int32_t> switches{0};

    // Audio thread, engine lock held.
    static void Tick(void* self) {
        Ticker& t = *static_cast<Ticker*>(self);
        t.engine->OnTimer();
        const int32_t now = t.instrument->GetBank()->playing;
        if (now != t.lastPattern)
            t.switches.fetch_add(1, std::memory_order_relaxed);
        t.lastPattern = now;
    }
    static int32_t Silent(void* self) { return static_cast<Ticker*>(self)->engine->SilentTick(); }
};

// Engine lock held: an instrument of five lines, each with a sample of its
// own, whose sequencer switches at each pattern end between pattern 2 (four
// points) and pattern 1 (10 000 points).
std::unique_ptr<Instrument> Playing(Engine& engine, Mixer& mixer) {
    auto inst = std::make_unique<Instrument>(nullptr);
    inst->GetSchedule()->SetTempo(240.0); // 250 BPM
    for (int i = 0; i < Lines; ++i) {
        SoundBuffer* b = inst->NewBufferForNewLine();
        b->SetLoaded(mixer.Attach(SoundTestKit::Constant(300, 0.01f, 0.01f)), mixer.Commands(), "s",
                     "s.wav", 6, 44100, 176400);
        b->MarkReady();
    }
    PlayPointList big(2048), small(64);
    for (int32_t i = 0; i < BigPoints; ++i) {
        PlayPoint p{};
        p.time = i / Lines;
        p.line = static_cast<uint8_t>(i % Lines);
        big.Insert(p);
    }
    for (int32_t t = 0; t < 64; t += 16)
        small.Insert(PlayPoint{t, 0, 0, 0, 0, 0, 0, 0});
    inst->GetBank()->SetPattern(0, big);
    inst->GetBank()->SetPattern(1, small);
    SequencerRow* seq = inst->GetSequencer();
    seq->program[0] = 0;
    seq->program[1] = 1;
    seq->cueMode = SequencerRow::Prog;
    seq->SwitchTo(1);
    engine.AddPlayhead(inst->GetSchedule()->GetPlayhead());
    return inst;
}

TEST(AudioThread, NeitherAllocatesNorFreesWhileTheGuiEditsAndPatternsSwitch) {
    // The hooks see this thread's allocations.
    watched = pthread_self();
    watching = true;
    int* volatile probe = new int(1);
    delete probe;
    watching = false;
    ASSERT_EQ(allocations.exchange(0), 1);
    ASSERT_EQ(frees.exchange(0), 1);

    Engine engine;
    Mixer mixer;
    std::vector<std::unique_ptr<Instrument>> instruments;
    {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        for (int i = 0; i < 4; ++i)
            instruments.push_back(Playing(engine, mixer));
    }
    Ticker ticker{&engine, instruments[0].get()};
    AudioCallback callback(Ticker::Tick, Ticker::Silent, &ticker, mixer);
    OfflineOutput output(48000, 256);
    output.Start(callback);
    std::atomic<bool> done{false};
    // MIDI comes in on the audio thread before each period, as from JACK:
    // a mapped pad, a pedal up and down, and clock pulses followed for tempo.
    engine.midiMap.Set({MidiBinding::Note, 10, 36}, 57);
    engine.SetFollowMidiClock(true);
    engine.SetTickFrames(0, INT64_MAX, 48000);
    const uint8_t midi[] = {0x99, 36, 100, 0xF8, 36, 0, 0xB0, 64, 127, 0xF8, 0xB0, 64, 0};
    std::thread audio([&] {
        watched = pthread_self();
        watching = true;
        MidiParser parser;
        while (!done.load(std::memory_order_acquire)) {
            MidiMessage m;
            for (size_t i = 0; i < std::size(midi); ++i)
                if (parser.Feed(midi[i], m))
                    engine.PostMidi(Engine::MidiFromJack,
                                    static_cast<int64_t>(callback.FramesRendered() + 20 * i), m);
            output.PullPeriod();
        }
        watching = false;
    });
    auto waitTicks = [&](uint64_t n) {
        const uint64_t until = callback.TicksRun() + n;
        while (callback.TicksRun() < until)
            std::this_thread::yield();
    };
    // From all but the first instrument, lines go one at a time, then the
    // instrument closes; the first one keeps switching.
    while (instruments.size() > 1) {
        for (int line = 0; line < 4; ++line) {
            waitTicks(200);
            std::lock_guard<EngineMutex> hold(theEngineLock);
            Instrument& last = *instruments.back();
            if (line < 3)
                last.GetBank()->GetLine(0)->Remove();
            else {
                engine.RemovePlayhead(last.GetSchedule()->GetPlayhead());
                instruments.pop_back();
            }
        }
        mixer.Collect();
    }
    while (ticker.switches.load() < 12)
        waitTicks(100);
    done = true;
    audio.join();
    output.Stop();
    EXPECT_EQ(allocations.load(), 0) << "allocations on the audio thread";
    EXPECT_EQ(frees.load(), 0) << "frees on the audio thread";
    EXPECT_GT(engine.FollowedStepMs(), 0.0) << "the clock went by unheard";
    std::lock_guard<EngineMutex> hold(theEngineLock);
    engine.RemovePlayhead(instruments[0]->GetSchedule()->GetPlayhead());
    instruments.clear();
}

} // namespace
