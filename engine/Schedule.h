#pragma once

#include "engine/Playhead.h"
#include "engine/TickTime.h"
#include "song/PlayPoint.h"

#include <cstdint>

class PlayPointList;
class SequencerRow;
class SoundBuffer;

// The playing pattern of one instrument, compiled into two parallel arrays of
// tick numbers and play points, with the walker over them. Every operation
// runs with the engine lock held, on the GUI thread or in the tick.
//
// Arrays are reused: a commit swaps the current and staged arrays. The bank
// reserves room in both for its largest pattern whenever a pattern is stored
// or grows, on the GUI thread, so a pattern switch in the tick never
// allocates. No array is freed or moved while a tick reads it, since both
// sides hold the engine lock.
class Schedule {
  public:
    static constexpr int32_t Spare = 20;
    static constexpr int32_t Growth = 40;

    Schedule();
    virtual ~Schedule();
    Schedule(const Schedule&) = delete;
    Schedule& operator=(const Schedule&) = delete;

    Playhead* GetPlayhead() { return &playhead; }
    void AttachSequencer(SequencerRow* row);
    void DetachSequencer() { syncEnabled = 0; }
    void SetClockId(int32_t id) { playhead.id = id; }
    void SetTempo(double newStepMs);
    void SetLineTable(SoundBuffer*** samples, int8_t* counts);
    // GUI thread, engine lock held: room in both the playing and the staged
    // arrays for a pattern of this many points.
    void Reserve(int32_t points);
    // Compiles the list into the staged arrays; allocates only for a list
    // larger than the room reserved, so never in the tick.
    void StagePattern(const PlayPointList& list);
    void CommitPattern(uint8_t mode, int32_t position);
    void Stop() { playhead.running = 0; }
    void InsertPoint(PlayPoint p);
    void ReplacePoint(PlayPoint p);
    void RemovePoint(PlayPoint p);
    void RemovePoints(const PlayPoint* sorted, int32_t n);
    // Many points of distinct times, sorted, in one pass: the same result as
    // InsertPoint (or ReplacePoint with replace set) of each in turn.
    void InsertPoints(const PlayPoint* sorted, int32_t n, bool replace);
    void LineRemoved(int32_t line);
    // Audio thread (from the playhead): one tick before the pattern wraps.
    void NotifyPatternEnding();

    uint8_t syncEnabled = 0;
    SequencerRow* sequencer = nullptr;
    int32_t stagedCount = 0;
    int32_t stagedLengthUnits = 0;
    double stepMs = 500.0;
    int32_t lengthUnits = 1024;
    int8_t* lineSampleCounts;
    SoundBuffer*** lineSamples;
    int32_t capacity = 100;
    int32_t count = 0;
    int32_t lengthTicks = 1600;
    int32_t index = 0;
    int32_t staged = 0;
    int32_t* stagedTicks = nullptr;
    PlayPoint* stagedEvents = nullptr;
    int32_t* ticks;
    PlayPoint* events;
    Playhead playhead;

  private:
    int32_t FindPoint(PlayPoint p, int32_t from) const;
    void InsertAt(int32_t i, PlayPoint p, int32_t tick);
    void GrowCurrent(int32_t size);
    void RemoveAt(int32_t i);
    void GrowFor(int32_t newCount);
    bool HasLineAt(int32_t last, PlayPoint p) const;
    void EndEdit();

    // Entries actually allocated; capacity is the logical room the walker
    // and the growth rule see, and never exceeds these.
    int32_t allocated;
    int32_t stagedAllocated = 0;

    // The table a schedule has before its instrument loads samples: every
    // line a note can name, none with samples, so that notes of an
    // instrument whose samples all failed to load are silent, never fatal.
    static constexpr int32_t DefaultLines = 256;
    int8_t defaultCounts[DefaultLines] = {};
    SoundBuffer* noSample[1] = {};
    SoundBuffer** defaultTable[DefaultLines];
};
