#pragma once

#include "song/PlayPoint.h"

#include <cstdint>

class Schedule;
class SoundBuffer;

// The walker over a schedule's compiled arrays. The engine calls Tick once per
// 5 ms; it compares one integer and, when an event is due, plays every sample
// of the event's line. All operations run with the engine lock held.
class Playhead {
  public:
    explicit Playhead(Schedule* owner) : schedule(owner) {}
    virtual ~Playhead() = default;
    Playhead(const Playhead&) = delete;
    Playhead& operator=(const Playhead&) = delete;

    // Audio thread: one tick. No allocation, no division. A silent tick
    // moves on as usual but plays nothing. Returns the events passed.
    int32_t Tick(bool audible = true);
    // Moves the position by n ticks; events passed over going forward fire,
    // also while stopped. Going backward fires nothing.
    void Skip(int32_t n);
    void StartAt(int32_t position, int32_t lengthTicks, int32_t* ticks, PlayPoint* events);
    void ContinueWith(int32_t lengthTicks, int32_t* ticks, PlayPoint* events);
    void SetLength(int32_t lengthTicks);
    void Rebind(int32_t index, int32_t count, int32_t lengthTicks, int32_t* ticks,
                PlayPoint* events);
    void Seek();

    double stepMs = 500.0;
    int32_t id = 0;
    uint8_t running = 0;
    Schedule* schedule;
    int32_t count = 0;
    int32_t nextTick = 0;
    uint8_t ready = 0;
    int8_t* lineSampleCounts = nullptr;
    SoundBuffer*** lineSamples = nullptr;
    PlayPoint* events = nullptr;
    int32_t* ticks = nullptr;
    int32_t index = 0;
    int32_t lengthTicks = 1600;
    int32_t position = 0;

  private:
    // Plays the event at index (when audible) and moves on; false once the
    // last event fired.
    bool FireNext(bool audible = true);
};
