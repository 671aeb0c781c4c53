#include "engine/AudioCallback.h"

#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/Mixer.h"

#include <chrono>
#include <thread>

namespace {

// Audio thread, engine lock held.
void RunEngineTick(void* engine) {
    static_cast<Engine*>(engine)->OnTimer();
}

// Audio thread, engine lock held.
int32_t RunEngineSilentTick(void* engine) {
    return static_cast<Engine*>(engine)->SilentTick();
}

// Audio thread: no-op ticks for a callback without an engine.
void NoTick(void*) {}
int32_t NoSilentTick(void*) {
    return 0;
}

inline void CpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

} // namespace

AudioCallback::AudioCallback(Engine* engine, Mixer& m)
    : tick(engine != nullptr ? RunEngineTick : NoTick),
      silent(engine != nullptr ? RunEngineSilentTick : NoSilentTick), context(engine), mixer(m),
      engine(engine) {}

AudioCallback::AudioCallback(TickFunction t, SilentTickFunction s, void* c, Mixer& m)
    : tick(t), silent(s), context(c), mixer(m) {}

void AudioCallback::Prepare(int32_t sampleRate) {
    rate = sampleRate;
    frame = 0;
    nextTick = 0;
    nextBoundary = 0;
    gridTick = 0;
    gridFrame = 0;
    dueTicks = 0;
    ticksRun.store(0, std::memory_order_relaxed);
    lateTicks.store(0, std::memory_order_relaxed);
    droppedNotes.store(0, std::memory_order_relaxed);
    framesRendered.store(0, std::memory_order_relaxed);
    mixer.SetOutputRate(sampleRate);
}

// Audio thread: try_lock, retried without blocking while the GUI thread
// finishes what it holds the lock for, spinning and yielding the core. The
// retry stops after LockRetryNanoseconds, or sooner when this buffer's share
// of retrying is spent, so a lock held for long makes the tick late, never
// the buffer.
bool AudioCallback::TryLock() {
    if (theEngineLock.try_lock())
        return true;
    if (retryBudget <= 0)
        return false;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const int64_t allowed = retryBudget < LockRetryNanoseconds ? retryBudget : LockRetryNanoseconds;
    bool locked = false;
    int64_t spent = 0;
    // Other threads let an announced tick go first when they next lock.
    theEngineLock.AnnounceTick(true);
    do {
        for (int i = 0; i < 16 && !locked; ++i) {
            CpuRelax();
            locked = theEngineLock.try_lock();
        }
        // The holder may be waiting for this very core (the tick's wake-up
        // preempted it there): give it the core to reach its unlock. This
        // waits for no lock and returns at once when nothing else can run.
        if (!locked)
            std::this_thread::yield();
        spent = std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start).count();
    } while (!locked && spent < allowed);
    theEngineLock.AnnounceTick(false);
    retryBudget -= spent;
    // The time may have run out while this thread itself was not running.
    return locked || theEngineLock.try_lock();
}

// Audio thread: runs every due tick under the engine lock, or none if the lock
// cannot be had; they then run at the next boundary. Of the due ticks, those
// older than MaxLateTicks run silently.
void AudioCallback::RunDueTicks() {
    if (!TryLock())
        return;
    const int32_t silentTicks = dueTicks - 1 - MaxLateTicks;
    int64_t dropped = 0;
    for (int32_t i = 0; i < silentTicks; ++i)
        dropped += silent(context);
    for (int32_t i = silentTicks > 0 ? silentTicks : 0; i < dueTicks; ++i) {
        // Each tick learns its own frames, late or not, for the MIDI in them.
        if (engine != nullptr) {
            const int64_t k = nextTick - dueTicks + i;
            engine->SetTickFrames(TickFrame(k, rate), TickFrame(k + 1, rate), rate);
        }
        tick(context);
    }
    if (tickObserver != nullptr)
        tickObserver(tickObserverContext, nextTick - 1);
    theEngineLock.unlock();
    ticksRun.fetch_add(static_cast<uint64_t>(dueTicks), std::memory_order_relaxed);
    lateTicks.fetch_add(static_cast<uint64_t>(dueTicks - 1), std::memory_order_relaxed);
    droppedNotes.fetch_add(static_cast<uint64_t>(dropped), std::memory_order_relaxed);
    dueTicks = 0;
}

// Audio thread: after the ticks of a boundary ran, so that a placer sees
// what they did.
int64_t AudioCallback::NextBoundary() {
    const int64_t placed = placer != nullptr ? placer(placerContext, nextTick, frame) : -1;
    if (placed < 0)
        return gridFrame + TickFrame(nextTick - gridTick, rate);
    gridTick = nextTick;
    gridFrame = placed > frame ? placed : frame;
    return gridFrame;
}

void AudioCallback::Render(float* out, int32_t frames) {
    retryBudget = static_cast<int64_t>(frames) * 1000000000 / (RetryShare * rate);
    int32_t done = 0;
    while (done < frames) {
        if (frame == nextBoundary) {
            ++dueTicks;
            ++nextTick;
            RunDueTicks();
            nextBoundary = NextBoundary();
        }
        mixer.ApplyCommands();
        const int64_t left = frames - done;
        const int32_t n =
            static_cast<int32_t>(nextBoundary - frame < left ? nextBoundary - frame : left);
        mixer.Mix(out + 2 * static_cast<int64_t>(done), n);
        done += n;
        frame += n;
    }
    framesRendered.fetch_add(static_cast<uint64_t>(frames), std::memory_order_relaxed);
}
