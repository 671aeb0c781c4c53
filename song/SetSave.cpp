#include "song/SetSave.h"

#include "song/FileArchive.h"
#include "song/PlayPointList.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

// A point's fields in the file: offset and width of each.
enum RecordOffset {
    Reserved = 0,
    Length = 1,
    LineAt = 3,
    Pan = 4,
    Pitch = 6,
    Time = 8,
    Toe = 12,
    Volume = 14
};

void PutRecord(uint8_t* at, const PlayPoint& p) {
    at[Reserved] = p.reserved;
    PutLE(at + Length, static_cast<uint16_t>(p.length), 2);
    at[LineAt] = p.line;
    PutLE(at + Pan, static_cast<uint16_t>(p.pan), 2);
    PutLE(at + Pitch, static_cast<uint16_t>(p.pitch), 2);
    PutLE(at + Time, static_cast<uint32_t>(p.time), 4);
    PutLE(at + Toe, static_cast<uint16_t>(p.toeIn), 2);
    PutLE(at + Volume, static_cast<uint16_t>(p.volume), 2);
}

PlayPoint GetRecord(const uint8_t* at) {
    PlayPoint p;
    p.reserved = at[Reserved];
    p.length = static_cast<int16_t>(GetLE(at + Length, 2));
    p.line = at[LineAt];
    p.pan = static_cast<int16_t>(GetLE(at + Pan, 2));
    p.pitch = static_cast<int16_t>(GetLE(at + Pitch, 2));
    p.time = static_cast<int32_t>(GetLE(at + Time, 4));
    p.toeIn = static_cast<int16_t>(GetLE(at + Toe, 2));
    p.volume = static_cast<int16_t>(GetLE(at + Volume, 2));
    return p;
}

} // namespace

void SetSave::Serialize(FileArchive& archive) {
    if (archive.IsStoring()) {
        archive.WriteInt32(bound);
        archive.WriteInt32(count);
        uint8_t* at = archive.AppendBytes(static_cast<size_t>(count) * RecordBytes);
        for (int32_t i = 0; i < count; ++i)
            PutRecord(at + i * RecordBytes, records[i]);
        return;
    }
    bound = archive.ReadInt32();
    if (bound < 1 || bound > MaxBound)
        archive.Refuse("a pattern in it has a length of " + std::to_string(bound) +
                       " time units, which cannot be played; the file is damaged");
    const int32_t n = archive.ReadInt32();
    if (n < 0 || n > MaxRecords)
        archive.Refuse("a pattern in it claims " + std::to_string(n) +
                       " notes; a pattern in a file holds 0 to 10000");
    const uint8_t* at = archive.ReadBytes(static_cast<size_t>(n) * RecordBytes);
    for (int32_t i = 0; i < n; ++i) {
        records[i] = GetRecord(at + i * RecordBytes);
        if (records[i].time < 0)
            archive.Refuse("a note in it lies before the start of its pattern; the file is "
                           "damaged");
    }
    count = n;
}

bool SetSave::FromList(const PlayPointList& list) {
    if (list.count > MaxRecords)
        return false;
    bound = list.bound;
    count = list.count;
    std::memcpy(records, list.items, sizeof(PlayPoint) * static_cast<size_t>(count));
    return true;
}

// Inserting one by one scans the list for every point of a run of equal
// times, which makes a full pattern take seconds. The same list is built
// here at once: kept records reversed, then sorted stably by time.
PlayPointList SetSave::ToList() const {
    std::vector<PlayPoint> kept;
    kept.reserve(static_cast<size_t>(count));
    for (int32_t i = count - 1; i >= 0; --i)
        if (records[i].time < bound)
            kept.push_back(records[i]);
    std::stable_sort(kept.begin(), kept.end(),
                     [](const PlayPoint& a, const PlayPoint& b) { return a.time < b.time; });
    PlayPointList list(bound);
    const int32_t n = static_cast<int32_t>(kept.size());
    // The capacity that one by one insertion leaves: grown by Step whenever
    // the count reached it.
    list.capacity = (n / PlayPointList::Step + 1) * PlayPointList::Step;
    delete[] list.items;
    list.items = new PlayPoint[list.capacity];
    std::copy(kept.begin(), kept.end(), list.items);
    list.count = n;
    return list;
}
