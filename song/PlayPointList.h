#pragma once

#include "song/PlayPoint.h"

#include <cstdint>

// A sorted growable array of play points with the pattern's length in time
// units. A pattern, a line's notes and the file form are each one of these.
// The array grows and shrinks in steps of 20 and always keeps a free slot
// behind the last point. Callers hold the engine lock: two threads edit lists.
class PlayPointList {
  public:
    static constexpr int32_t Step = 20;

    PlayPointList() : PlayPointList(512) {}
    explicit PlayPointList(int32_t bound);
    PlayPointList(const PlayPointList& other);
    PlayPointList& operator=(const PlayPointList&) = delete;
    virtual ~PlayPointList();

    void Assign(const PlayPointList& other);
    void Insert(PlayPoint p);
    void InsertOrReplace(PlayPoint p);
    // Many points at once, sorted by time and of distinct times, in one pass
    // over the list: the same result as Insert (or InsertOrReplace with
    // replace set) of each in turn, capacity included. Allocates only when
    // the list must grow.
    void InsertSorted(const PlayPoint* sorted, int32_t n, bool replace);
    void Remove(PlayPoint p);
    void RemoveRange(int32_t first, int32_t last);
    void RemoveRangeOfLine(int32_t first, int32_t last, int32_t line);
    PlayPoint GetAt(int32_t index) const;
    int32_t CountInRange(int32_t first, int32_t last) const;
    int32_t CopyRange(int32_t first, int32_t last, PlayPoint** out) const;
    int32_t FindFirst(int32_t first, int32_t last) const;
    int32_t FindLast(int32_t first, int32_t last) const;
    void SetBound(int32_t newBound);
    void Clear();
    void CloseLineGap(int32_t line);

    int32_t bound;
    int32_t count = 0;
    int32_t capacity = Step;
    PlayPoint* items;

  private:
    int32_t LowerIndex(int32_t time) const;
    int32_t LineIndex(int32_t from, PlayPoint p) const;
    void StoreAt(int32_t index, PlayPoint p);
    void Reallocate(int32_t newCapacity);
    void Reserve(int32_t newCount);
    bool HasLineAt(int32_t last, PlayPoint p) const;
    bool RangeIsEmpty(int32_t first, int32_t last) const;
};
