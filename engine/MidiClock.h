#pragma once

#include <cstdint>

class Playhead;

// The pulse grid of MIDI clock: 24 pulses a step. A grid point stands at a
// whole frame plus a fraction; pulse n after it falls on the frame that holds
// its instant.
namespace PulseGrid {
constexpr int32_t PulsesPerStep = 24;

inline double FramesPerPulse(double stepMs, int32_t rate) {
    return stepMs * rate / (1000.0 * PulsesPerStep);
}

// Frames from a grid point's whole frame to pulse n, the point lying
// `fraction` of a frame after that frame. A pulse within a millionth of a
// frame below a frame boundary is taken to be on it: that much is the
// rounding of a tempo such as 97.3 BPM in a double, not time.
int64_t PulseOffset(double fraction, int64_t n, double framesPerPulse);
} // namespace PulseGrid

// MIDI clock following the first instrument: Start when its playhead starts
// running, a pulse every 1/24 step while it runs, Stop when it stops. Each
// pass of the pattern puts pulse 0 on the tick where the pass began, so the
// pulses keep to the tick grid; a tempo change spaces the pulses from the
// next one on. The bytes go to a writer with their frame offset in the
// period, in order. Everything here runs on the audio thread: no waits, no
// allocation.
class MidiClock {
  public:
    static constexpr uint8_t Pulse = 0xF8;
    static constexpr uint8_t Start = 0xFA;
    static constexpr uint8_t Stop = 0xFC;

    using Writer = void (*)(void* context, int32_t offset, uint8_t byte);

    // Before the output runs: the device's rate and where the bytes go.
    void Prepare(int32_t sampleRate, Writer writer, void* writerContext);
    // Audio thread: a period of `frames` frames begins at `frame`, counted
    // as the audio callback counts them. The clock starts afresh after a
    // period without it.
    void BeginPeriod(int64_t frame, int32_t frames);
    // Audio thread, engine lock held, inside the period: the first
    // instrument's playhead (or null) as tick `tick` left it; `frame` is the
    // tick's boundary when the ticks are not on the plain grid (a shared
    // session's), and other ticks are taken at the plain spacing from it.
    void AfterTick(int64_t tick, const Playhead* first, int64_t frame = -1);
    // Audio thread: the rest of the period's pulses; a period that does not
    // call this is one without the clock.
    void EndPeriod();

  private:
    void EmitUntil(int64_t frame);
    void Send(int64_t frame, uint8_t byte);
    void Anchor(int64_t startTick, int64_t now, bool first);
    int64_t PulseFrame(int64_t n) const {
        return originFrame + PulseGrid::PulseOffset(originFraction, n, framesPerPulse);
    }

    int32_t rate = 48000;
    Writer writer = nullptr;
    void* context = nullptr;

    bool inPeriod = false; // between BeginPeriod and EndPeriod
    int64_t periodStart = 0;
    int32_t periodFrames = 0;
    int32_t lastOffset = 0;

    bool playing = false;
    int64_t passStartTick = 0;
    double stepMs = 0.0;
    double framesPerPulse = 1.0;
    int64_t originFrame = 0; // the grid: pulse 0 at originFrame + originFraction
    double originFraction = 0.0;
    int64_t next = 0;          // the next pulse to send
    int64_t pendingStart = -1; // a pass that begins at this later frame
    int64_t shift = 0;         // the latest tick's frame less its plain grid frame
};
