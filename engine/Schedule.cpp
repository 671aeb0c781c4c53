#include "engine/Schedule.h"

#include "engine/SequencerRow.h"
#include "song/PlayPointList.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace {
// A schedule that cannot get memory cannot play: the process ends.
template <typename T> T* AllocateOrExit(int32_t n) {
    T* p = new (std::nothrow) T[n]();
    if (p == nullptr)
        std::exit(-1);
    return p;
}
} // namespace

Schedule::Schedule()
    : ticks(AllocateOrExit<int32_t>(100)), events(AllocateOrExit<PlayPoint>(100)), playhead(this),
      allocated(100) {
    for (SoundBuffer**& line : defaultTable)
        line = noSample;
    lineSampleCounts = defaultCounts;
    lineSamples = defaultTable;
    playhead.lineSampleCounts = lineSampleCounts;
    playhead.lineSamples = lineSamples;
    playhead.ticks = ticks;
    playhead.events = events;
    playhead.ready = 1;
}

Schedule::~Schedule() {
    delete[] ticks;
    delete[] events;
    delete[] stagedTicks;
    delete[] stagedEvents;
}

void Schedule::AttachSequencer(SequencerRow* row) {
    syncEnabled = 1;
    sequencer = row;
}

void Schedule::NotifyPatternEnding() {
    if (syncEnabled)
        sequencer->OnPatternEnding();
}

void Schedule::SetLineTable(SoundBuffer*** samples, int8_t* counts) {
    playhead.ready = 0;
    lineSamples = samples;
    lineSampleCounts = counts;
    playhead.lineSamples = samples;
    playhead.lineSampleCounts = counts;
    playhead.ready = 1;
}

void Schedule::Reserve(int32_t points) {
    const int32_t room = points + Spare;
    if (stagedAllocated < room) {
        const int32_t size = std::max(room, stagedAllocated + stagedAllocated / 2);
        delete[] stagedTicks;
        delete[] stagedEvents;
        stagedTicks = AllocateOrExit<int32_t>(size);
        stagedEvents = AllocateOrExit<PlayPoint>(size);
        stagedAllocated = size;
    }
    if (allocated < room)
        GrowCurrent(std::max(room, allocated + allocated / 2));
}

// Moves the playing arrays into larger ones; the playhead follows.
void Schedule::GrowCurrent(int32_t size) {
    int32_t* newTicks = AllocateOrExit<int32_t>(size);
    PlayPoint* newEvents = AllocateOrExit<PlayPoint>(size);
    std::memcpy(newTicks, ticks, sizeof(int32_t) * count);
    std::memcpy(newEvents, events, sizeof(PlayPoint) * count);
    playhead.Rebind(index, count, lengthTicks, newTicks, newEvents);
    delete[] ticks;
    delete[] events;
    ticks = newTicks;
    events = newEvents;
    allocated = size;
}

void Schedule::StagePattern(const PlayPointList& list) {
    Reserve(list.count);
    // Points at or past the pattern's length (kept after the length was
    // lowered) are left out: they are silent, and a tick the walker never
    // reaches would hold it there and silence the next pass too.
    const double ticksPerUnit = stepMs * TickTime::TicksPerUnitPerStepMs;
    int32_t n = 0;
    while (n < list.count && list.items[n].time < list.bound) {
        stagedEvents[n] = list.items[n];
        stagedTicks[n] = static_cast<int32_t>(list.items[n].time * ticksPerUnit);
        ++n;
    }
    staged = 1;
    stagedCount = n;
    stagedLengthUnits = list.bound;
}

void Schedule::CommitPattern(uint8_t mode, int32_t position) {
    if (staged == 0)
        return;
    playhead.ready = 0;
    // The arrays that played become the next staging area.
    std::swap(ticks, stagedTicks);
    std::swap(events, stagedEvents);
    std::swap(allocated, stagedAllocated);
    count = stagedCount;
    capacity = stagedCount + Spare;
    lengthUnits = stagedLengthUnits;
    staged = 0;
    lengthTicks = TimeUnits::CompiledLength(lengthUnits, stepMs);
    if (mode == 0)
        playhead.ContinueWith(lengthTicks, ticks, events);
    else
        playhead.StartAt(position, lengthTicks, ticks, events);
    playhead.ready = 1;
}

void Schedule::SetTempo(double newStepMs) {
    stepMs = newStepMs;
    playhead.stepMs = newStepMs;
    const int32_t newLength = TimeUnits::TempoLength(lengthUnits, stepMs);
    // The rounded length can fall short of the ticks of the last few time
    // units. The tick compares for equality, so such an event would never be
    // reached and would hold the walker until the next seek. Such events are
    // moved onto the pattern's last tick: they sound late by a tick or two,
    // in the same pass and in their order.
    for (int32_t i = 0; i < count; ++i) {
        const int32_t tick = TimeUnits::CompiledTick(events[i].time, stepMs);
        ticks[i] = tick < newLength ? tick : newLength - 1;
    }
    lengthTicks = newLength;
    playhead.SetLength(newLength);
}

// Index of the first entry at p's time, stepped past entries of that time
// on other lines; searching starts at from.
int32_t Schedule::FindPoint(PlayPoint p, int32_t from) const {
    int32_t i = from;
    while (i < count && events[i].time < p.time)
        ++i;
    while (i < count && events[i].time == p.time && events[i].line != p.line)
        ++i;
    return i;
}

void Schedule::InsertAt(int32_t i, PlayPoint p, int32_t tick) {
    std::memmove(ticks + i + 1, ticks + i, sizeof(int32_t) * (count - i));
    std::memmove(events + i + 1, events + i, sizeof(PlayPoint) * (count - i));
    events[i] = p;
    ticks[i] = tick;
    ++count;
    if (count != capacity)
        return;
    const int32_t grown = capacity + Growth;
    if (allocated < grown)
        GrowCurrent(grown);
    capacity = grown;
}

void Schedule::RemoveAt(int32_t i) {
    std::memmove(ticks + i, ticks + i + 1, sizeof(int32_t) * (count - i - 1));
    std::memmove(events + i, events + i + 1, sizeof(PlayPoint) * (count - i - 1));
    --count;
}

void Schedule::EndEdit() {
    playhead.Seek();
    playhead.ready = 1;
}

void Schedule::InsertPoint(PlayPoint p) {
    playhead.ready = 0;
    int32_t i = 0;
    while (i < count && events[i].time < p.time)
        ++i;
    InsertAt(i, p, TimeUnits::LiveTick(p.time, lengthTicks, lengthUnits));
    EndEdit();
}

void Schedule::ReplacePoint(PlayPoint p) {
    playhead.ready = 0;
    const int32_t i = FindPoint(p, 0);
    if (i < count && events[i].time == p.time)
        events[i] = p;
    else
        InsertAt(i, p, TimeUnits::LiveTick(p.time, lengthTicks, lengthUnits));
    EndEdit();
}

void Schedule::RemovePoint(PlayPoint p) {
    playhead.ready = 0;
    const int32_t i = FindPoint(p, 0);
    if (i < count && events[i].time == p.time)
        RemoveAt(i);
    EndEdit();
}

// One pass that keeps what is not removed, so that removing many points
// moves each entry once.
void Schedule::RemovePoints(const PlayPoint* sorted, int32_t n) {
    playhead.ready = 0;
    int32_t kept = 0;
    int32_t k = 0;
    for (int32_t i = 0; i < count; ++i) {
        while (k < n && sorted[k].time < events[i].time)
            ++k;
        bool gone = false;
        for (int32_t j = k; j < n && sorted[j].time == events[i].time && !gone; ++j)
            gone = sorted[j].line == events[i].line;
        if (gone)
            continue;
        ticks[kept] = ticks[i];
        events[kept++] = events[i];
    }
    count = kept;
    EndEdit();
}

// Whether the entries of p's time that end at index last hold p's line.
bool Schedule::HasLineAt(int32_t last, PlayPoint p) const {
    for (int32_t i = last; i >= 0 && events[i].time == p.time; --i)
        if (events[i].line == p.line)
            return true;
    return false;
}

// Grows the arrays as InsertAt would have grown them for newCount entries.
void Schedule::GrowFor(int32_t newCount) {
    int32_t grown = capacity;
    while (grown <= newCount)
        grown += Growth;
    if (allocated < grown)
        GrowCurrent(grown);
    capacity = grown;
}

// Replacements are written in place first; the new entries are then merged
// from the back, so that each entry moves once.
void Schedule::InsertPoints(const PlayPoint* sorted, int32_t n, bool replace) {
    playhead.ready = 0;
    int32_t added = n;
    if (replace)
        for (int32_t k = 0, from = 0; k < n; ++k) {
            while (from < count && events[from].time < sorted[k].time)
                ++from;
            const int32_t i = FindPoint(sorted[k], from);
            if (i < count && events[i].time == sorted[k].time) {
                events[i] = sorted[k];
                --added;
            }
        }
    if (added > 0) {
        GrowFor(count + added);
        int32_t from = count - 1;
        int32_t to = count + added - 1;
        for (int32_t k = n - 1; k >= 0; --k) {
            const PlayPoint& p = sorted[k];
            // InsertPoint puts p before the entries of its time, ReplacePoint
            // after them.
            while (from >= 0 &&
                   (events[from].time > p.time || (!replace && events[from].time == p.time))) {
                ticks[to] = ticks[from];
                events[to--] = events[from--];
            }
            if (replace && HasLineAt(from, p))
                continue; // written over above
            ticks[to] = TimeUnits::LiveTick(p.time, lengthTicks, lengthUnits);
            events[to--] = p;
        }
        count += added;
    }
    EndEdit();
}

void Schedule::LineRemoved(int32_t line) {
    for (int32_t i = 0; i < count; ++i)
        if (events[i].line > line)
            --events[i].line;
}
