#pragma once

#include "song/PlayPoint.h"

#include <cstdint>

class FileArchive;
class PlayPointList;

// The fixed-size form in which one pattern meets the file: a table of at
// most 10000 points, the number used and the pattern's length. One pattern
// block of the file is its Serialize. About 160 KB: made on the heap. GUI
// thread; a save reads the bank's lists under the engine lock.
class SetSave {
  public:
    static constexpr int32_t MaxRecords = 10000;
    // Bytes of one point in the file, and of a block's head.
    static constexpr int32_t RecordBytes = 16;
    static constexpr int32_t HeadBytes = 8;
    // The longest pattern a file may hold, in time units: at the slowest
    // tempo its length in ticks still fits in 32 bits.
    static constexpr int32_t MaxBound = 1 << 28;

    virtual ~SetSave() = default;

    // Writes or reads one block, by the archive's direction. Reading refuses
    // a count outside 0 to MaxRecords, a bound outside 1 to MaxBound and a
    // point before the pattern's start: the tick could not play them.
    virtual void Serialize(FileArchive& archive);
    // Takes the list's bound and points; false, taking nothing, when the list
    // holds more points than the table.
    bool FromList(const PlayPointList& list);
    // A new list with the bound, holding what Insert of every record in
    // table order leaves: records at or past the bound dropped, the rest by
    // time, each run of equal times in reverse table order.
    PlayPointList ToList() const;

    PlayPoint records[MaxRecords];
    int32_t count = 0;
    int32_t bound = 512;
};
