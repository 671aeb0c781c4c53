#pragma once

#include <cstdint>

// The tick grid that every instrument plays on, and the one home of its
// numbers: 200 ticks a second, 5 ms each. A step (one beat) lasts stepMs
// milliseconds and holds 64 time units, so a unit lasts stepMs / 64 ms and
// stepMs x 0.003125 (1 / (64 x 5)) is the number of ticks in one unit.
namespace TickTime {
constexpr int32_t TicksPerSecond = 200;
constexpr int32_t TickMs = 5;
constexpr int32_t UnitsPerStep = 64;
constexpr double TicksPerMs = 0.2;
constexpr double TicksPerUnitPerStepMs = 0.003125;
static_assert(TicksPerSecond * TickMs == 1000);
static_assert(TicksPerUnitPerStepMs == 1.0 / (UnitsPerStep * TickMs));
} // namespace TickTime

// Tick arithmetic. All in doubles, truncated toward zero to 32 bits. A
// pattern length is at least one tick: a pattern shorter than a tick at a
// fast tempo still wraps, once a tick.
namespace TimeUnits {
// Event tick of a point when a pattern is compiled or the tempo changes.
inline int32_t CompiledTick(int32_t time, double stepMs) {
    return static_cast<int32_t>(time * (stepMs * TickTime::TicksPerUnitPerStepMs));
}
// Event tick of a point added or changed while its pattern plays.
inline int32_t LiveTick(int32_t time, int32_t lengthTicks, int32_t lengthUnits) {
    return static_cast<int32_t>(static_cast<double>(lengthTicks) / lengthUnits * time);
}
// Pattern length in ticks when a pattern is compiled.
inline int32_t CompiledLength(int32_t lengthUnits, double stepMs) {
    const int32_t ticks =
        static_cast<int32_t>((stepMs * TickTime::TicksPerUnitPerStepMs) * lengthUnits);
    return ticks > 0 ? ticks : 1;
}
// Pattern length in ticks at a tempo change: the step is first rounded to
// whole ticks, so this can come out shorter than the compiled length.
inline int32_t TempoLength(int32_t lengthUnits, double stepMs) {
    const int32_t ticks = static_cast<int32_t>(lengthUnits * (1.0 / TickTime::UnitsPerStep) *
                                               static_cast<int32_t>(stepMs * TickTime::TicksPerMs));
    return ticks > 0 ? ticks : 1;
}
} // namespace TimeUnits
