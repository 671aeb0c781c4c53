#include "engine/LinkGrid.h"

#include "engine/TickTime.h"

void TickGrid::Reset() {
    anchored = false;
    aimTick = -1;
}

void TickGrid::Anchor(int64_t tick, double beat, double nominal) {
    anchored = true;
    anchorTick = tick;
    anchorBeat = beat;
    beatsPerTick = nominal;
    aimTick = -1;
}

void TickGrid::Aim(int64_t tick, double beat, int64_t end, double nominal) {
    Anchor(tick, beat, nominal);
    if (end <= tick)
        return;
    const double span = static_cast<double>(end - tick) * nominal;
    const double target = NearestBar(beat + span);
    const double stretch = (target - beat) / span;
    aimTick = end;
    if (stretch >= MinStretch && stretch <= MaxStretch) {
        beatsPerTick = (target - beat) / static_cast<double>(end - tick);
        aimBeat = target;
    } else {
        aimBeat = beat + span;
    }
}

int32_t TickGrid::NextMeasure(int32_t position, int32_t lengthTicks, double stepMs) {
    const int32_t unitsPerMeasure = static_cast<int32_t>(Quantum) * TickTime::UnitsPerStep;
    const double ticksPerMeasure = unitsPerMeasure * stepMs * TickTime::TicksPerUnitPerStepMs;
    int32_t measure = static_cast<int32_t>(position / ticksPerMeasure);
    int32_t tick = 0;
    do
        tick = TimeUnits::CompiledTick(++measure * unitsPerMeasure, stepMs);
    while (tick <= position);
    return tick < lengthTicks ? tick : lengthTicks;
}

TickGrid::Pass TickGrid::Follow(int64_t tick, const First& first, double nominal) {
    const int64_t next = tick + 1;
    if (!first.running || first.lengthTicks <= 0) {
        Anchor(next, BeatOf(next), nominal);
        return Pass::Same;
    }
    const int32_t position = first.position;
    const int64_t end = next + (NextMeasure(position, first.lengthTicks, first.stepMs) - position);
    if (end == aimTick)
        return Pass::Same;
    const bool reached = next == aimTick;
    double beat = reached ? aimBeat : BeatOf(next);
    // A start within a tick of a bar (a start held back for the bar) is put
    // on it; held back, the tick is at most one tick late.
    if (position == 0 && std::fabs(beat - NearestBar(beat)) <= beatsPerTick)
        beat = NearestBar(beat);
    Aim(next, beat, end, nominal);
    return position == 0 && !reached ? Pass::Started : Pass::Same;
}

bool TickGrid::BarAhead(int64_t tick) const {
    if (!anchored)
        return false;
    const double bar = std::ceil(BeatOf(tick + 1) / Quantum) * Quantum;
    return bar < BeatOf(tick + 2);
}
