#include "engine/MidiClock.h"

#include "engine/AudioCallback.h"
#include "engine/Playhead.h"

#include <cmath>

int64_t PulseGrid::PulseOffset(double fraction, int64_t n, double framesPerPulse) {
    return static_cast<int64_t>(
        std::floor(fraction + static_cast<double>(n) * framesPerPulse + 1e-6));
}

void MidiClock::Prepare(int32_t sampleRate, Writer w, void* c) {
    rate = sampleRate;
    writer = w;
    context = c;
    inPeriod = false;
    playing = false;
    periodStart = 0;
    periodFrames = 0;
}

void MidiClock::BeginPeriod(int64_t frame, int32_t frames) {
    // Periods went by without the clock: it starts afresh.
    if (frame != periodStart + periodFrames)
        playing = false;
    inPeriod = true;
    periodStart = frame;
    periodFrames = frames;
    lastOffset = 0;
}

void MidiClock::EndPeriod() {
    EmitUntil(periodStart + periodFrames);
    inPeriod = false;
}

// The tick is seen where it already holds the engine lock, so the clock
// reads the playhead without a lock of its own and sees every tick's
// boundary, which is where a pass starts.
void MidiClock::AfterTick(int64_t tick, const Playhead* first, int64_t frame) {
    if (!inPeriod)
        return;
    const int64_t now = frame >= 0 ? frame : AudioCallback::TickFrame(tick, rate);
    shift = now - AudioCallback::TickFrame(tick, rate);
    EmitUntil(now);
    if (first == nullptr || first->running == 0) {
        if (playing)
            Send(now, Stop);
        playing = false;
        return;
    }
    // The tick that played (or would have played) position 0 of this pass.
    const int64_t startTick = tick + 1 - first->position;
    if (!playing) {
        Send(now, Start);
        playing = true;
        stepMs = first->stepMs;
        Anchor(startTick, now, true);
    } else if (startTick != passStartTick) {
        stepMs = first->stepMs;
        Anchor(startTick, now, false);
    } else if (first->stepMs != stepMs) {
        // The pulse sent last becomes the grid point, at the new spacing.
        if (next > 0) {
            const double exact = originFraction + static_cast<double>(next - 1) * framesPerPulse;
            const double whole = std::floor(exact);
            originFrame += static_cast<int64_t>(whole);
            originFraction = exact - whole;
            next = 1;
        }
        stepMs = first->stepMs;
        framesPerPulse = PulseGrid::FramesPerPulse(stepMs, rate);
    }
}

// Puts pulse 0 on the start tick's frame. A new pass still to come (it
// begins with the next tick) waits in pendingStart and the old pass's grid
// runs until then; a first start has no old grid and just waits for pulse 0.
// A start already past goes on with the first pulse from now.
void MidiClock::Anchor(int64_t startTick, int64_t now, bool first) {
    passStartTick = startTick;
    const int64_t start = AudioCallback::TickFrame(startTick, rate) + shift;
    if (start > now && !first) {
        pendingStart = start;
        return;
    }
    pendingStart = -1;
    framesPerPulse = PulseGrid::FramesPerPulse(stepMs, rate);
    originFrame = start;
    originFraction = 0.0;
    next = 0;
    if (start >= now)
        return;
    next = static_cast<int64_t>(static_cast<double>(now - start) / framesPerPulse);
    while (next > 0 && PulseFrame(next - 1) >= now)
        --next;
    while (PulseFrame(next) < now)
        ++next;
}

void MidiClock::EmitUntil(int64_t limit) {
    while (playing) {
        const int64_t at = PulseFrame(next);
        if (pendingStart >= 0 && at >= pendingStart) {
            originFrame = pendingStart;
            originFraction = 0.0;
            framesPerPulse = PulseGrid::FramesPerPulse(stepMs, rate);
            next = 0;
            pendingStart = -1;
            continue;
        }
        if (at >= limit)
            return;
        Send(at, Pulse);
        ++next;
    }
}

// A byte due before the period (a tick that ran late) goes out at once.
void MidiClock::Send(int64_t frame, uint8_t byte) {
    int64_t offset = frame - periodStart;
    if (offset < lastOffset)
        offset = lastOffset;
    if (offset >= periodFrames)
        offset = periodFrames - 1;
    lastOffset = static_cast<int32_t>(offset);
    writer(context, lastOffset, byte);
}
