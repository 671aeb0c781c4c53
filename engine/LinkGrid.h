#pragma once

#include <cmath>
#include <cstdint>

// A shared session's beats on the output's frames over one period: the beat
// that frame `frame` sounds at, at the speakers, and the beats per frame. A
// period's line is worked out afresh from the session each period, so the
// session's tempo changes and clock corrections reach the frames at once.
struct BeatLine {
    int64_t frame = 0;
    double beat = 0.0;
    double beatsPerFrame = 0.0;

    double BeatAt(int64_t f) const { return beat + static_cast<double>(f - frame) * beatsPerFrame; }
    // The frame nearest to the instant of beat b.
    int64_t FrameOf(double b) const { return frame + std::llround((b - beat) / beatsPerFrame); }
};

// The 5 ms tick grid laid on a shared session's beats: tick n stands at beat
// anchorBeat + (n - anchorTick) x beatsPerTick. Without an instrument
// playing, a tick lasts its nominal 5 ms at the session's tempo. While the
// first instrument plays, its pattern is cut at its measure starts (the
// ticks that an event at each measure's first time unit gets, and the end of
// the pattern), and the rest of each measure is stretched to end on the
// session's bar nearest to where 5 ms ticks would end it. So a pass that
// starts on a bar has every measure start on a bar, and the steps fall on the
// session's beats. The stretch is worked out anew at each measure start and
// whenever the next one moves (a start, a tempo or length change, a skip).
// Audio thread only.
class TickGrid {
  public:
    static constexpr double Quantum = 4.0; // beats in a bar
    // A pass is not stretched beyond these: it then ends where it ends, and
    // the bars are aimed at again from the next pass on.
    static constexpr double MinStretch = 0.5;
    static constexpr double MaxStretch = 2.0;

    // What the first instrument did, as the tick after a Follow sees it.
    enum class Pass { Same, Started };

    // The first instrument as a tick left it.
    struct First {
        bool running = false;
        int32_t position = 0; // the one the next tick plays
        int32_t lengthTicks = 0;
        double stepMs = 500.0;
    };

    bool Anchored() const { return anchored; }
    void Reset();
    // Tick `tick` at `beat`, then ticks of `nominal` beats, no pass aimed.
    void Anchor(int64_t tick, double beat, double nominal);
    // Tick `tick` at `beat`; the stretch up to tick `end` (when later) is
    // stretched to end on a bar, else the ticks keep `nominal` beats.
    void Aim(int64_t tick, double beat, int64_t end, double nominal);
    // After tick `tick`, with the first instrument as that tick left it;
    // `nominal` is a 5 ms tick in the session's beats. Started: the next
    // tick starts the pattern afresh, not by a wrap.
    Pass Follow(int64_t tick, const First& first, double nominal);
    // The position at which the measure after `position` starts, or the
    // pattern's length.
    static int32_t NextMeasure(int32_t position, int32_t lengthTicks, double stepMs);

    double BeatOf(int64_t tick) const {
        return anchorBeat + static_cast<double>(tick - anchorTick) * beatsPerTick;
    }
    // Whether a bar of the session falls at the tick after `tick` or before
    // the one after that: a start in tick `tick` then plays its first
    // position on the bar, the tick after it placed there.
    bool BarAhead(int64_t tick) const;
    static double NearestBar(double beat) { return std::round(beat / Quantum) * Quantum; }
    // The tick that the grid is aimed at (a measure start), or -1.
    int64_t AimTick() const { return aimTick; }
    double BeatsPerTick() const { return beatsPerTick; }

  private:
    bool anchored = false;
    int64_t anchorTick = 0;
    double anchorBeat = 0.0;
    double beatsPerTick = 0.0;
    int64_t aimTick = -1;
    double aimBeat = 0.0; // where that tick was aimed
};
