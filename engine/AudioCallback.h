#pragma once

#include "engine/TickTime.h"

#include <atomic>
#include <cstdint>

class Engine;
class Mixer;

// The program's sound, frame by frame: the 5 ms tick on the device's frame
// counter, then the mixer. Every output (the device, or tests pulling by hand)
// calls Render with its buffers, so all of them run the same code.
//
// Render cuts each buffer into slices that end on tick boundaries. At each
// boundary it takes the engine lock with try_lock and runs the tick; a tick
// that cannot take it runs at the next boundary that can, together with the
// new one, and is counted late. Then the mixer applies its commands and mixes
// the slice, so a tick's notes start on the tick's own frame.
class AudioCallback {
  public:
    using TickFunction = void (*)(void* context);
    // A tick that moves time on without playing; returns the notes dropped.
    using SilentTickFunction = int32_t (*)(void* context);
    // Catch-up after the lock was held long: the last MaxLateTicks missed
    // ticks run as usual, their notes late by at most that many ticks (10 ms);
    // older missed ticks run silently, so the playheads reach the clock
    // without their notes stacking onto one frame. Those notes are dropped
    // and counted (DroppedNotes).
    static constexpr int32_t MaxLateTicks = 2;
    // How long one boundary keeps retrying try_lock while the GUI thread holds
    // the lock. The GUI keeps it for microseconds per operation, but a thread
    // can be preempted while it holds it; the retry rides that out. Bounded
    // and never blocking: after it the tick is late.
    static constexpr int64_t LockRetryNanoseconds = 200000;
    // At most this share (one part in RetryShare) of a buffer's duration goes
    // to such retries, so that small periods cannot run late because of them.
    static constexpr int64_t RetryShare = 4;

    // engine may be null: then no tick runs and only the mixer sounds.
    AudioCallback(Engine* engine, Mixer& mixer);
    // Runs tick(context) at each boundary instead of an engine's tick, and
    // silent(context) for missed ticks beyond MaxLateTicks.
    AudioCallback(TickFunction tick, SilentTickFunction silent, void* context, Mixer& mixer);

    // Before the output starts pulling (any thread): the device's rate. The
    // clock starts again at frame 0, where tick 0 stands.
    void Prepare(int32_t sampleRate);

    // Audio thread: fills frames of float stereo, interleaved. No waits, no
    // allocation, no I/O.
    void Render(float* out, int32_t frames);

    // The frame at which tick n begins: floor(n x rate / 200).
    static int64_t TickFrame(int64_t tick, int32_t rate) {
        return tick * rate / TickTime::TicksPerSecond;
    }

    int32_t SampleRate() const { return rate; }
    // Audio thread: the frame being rendered; in a tick observer, the latest
    // tick's boundary.
    int64_t CurrentFrame() const { return frame; }

    // Called after each run of due ticks, with the engine lock still held and
    // the number of the latest tick; its boundary is the frame being rendered.
    // Set before the output starts. For what follows the playheads tick by
    // tick (the MIDI clock), without a lock of its own.
    using TickObserver = void (*)(void* context, int64_t tick);
    void SetTickObserver(TickObserver observer, void* observerContext) {
        tickObserver = observer;
        tickObserverContext = observerContext;
    }

    // Lays the tick boundaries on another clock than the device's frames
    // (a session shared with other programs): given a tick and the frame at
    // which the tick before it began, returns the frame at which it begins,
    // or -1 for the plain grid, which then goes on from the last placed
    // tick. A frame already passed makes the tick due at once. Set before
    // the output starts. Audio thread: called once per boundary.
    using TickPlacer = int64_t (*)(void* context, int64_t tick, int64_t frame);
    void SetTickPlacer(TickPlacer tickPlacer, void* context) {
        placer = tickPlacer;
        placerContext = context;
    }

    // Any thread (a status bar reads them): counters since Prepare. Late
    // ticks ran after their boundary, played late or silent; dropped notes
    // were passed over by silent ticks.
    uint64_t TicksRun() const { return ticksRun.load(std::memory_order_relaxed); }
    uint64_t LateTicks() const { return lateTicks.load(std::memory_order_relaxed); }
    uint64_t DroppedNotes() const { return droppedNotes.load(std::memory_order_relaxed); }
    uint64_t FramesRendered() const { return framesRendered.load(std::memory_order_relaxed); }

  private:
    void RunDueTicks();
    bool TryLock();
    int64_t NextBoundary();

    TickFunction tick;
    SilentTickFunction silent;
    void* context;
    Mixer& mixer;
    Engine* engine = nullptr; // told each tick's frames, when ticks are the engine's
    TickObserver tickObserver = nullptr;
    void* tickObserverContext = nullptr;
    TickPlacer placer = nullptr;
    void* placerContext = nullptr;

    // Audio thread only, after Prepare.
    int32_t rate = 48000;
    int64_t frame = 0;        // frames rendered since Prepare
    int64_t nextTick = 0;     // the tick whose boundary comes next
    int64_t nextBoundary = 0; // its frame
    int64_t gridTick = 0;     // the plain grid: this tick at gridFrame
    int64_t gridFrame = 0;
    int32_t dueTicks = 0;    // ticks whose boundary passed and that have not run
    int64_t retryBudget = 0; // nanoseconds of lock retries left in this buffer

    std::atomic<uint64_t> ticksRun{0};
    std::atomic<uint64_t> lateTicks{0};
    std::atomic<uint64_t> droppedNotes{0};
    std::atomic<uint64_t> framesRendered{0};
};
