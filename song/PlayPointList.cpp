#include "song/PlayPointList.h"

#include <algorithm>
#include <cstring>

PlayPointList::PlayPointList(int32_t b) : bound(b), items(new PlayPoint[Step]) {}

PlayPointList::PlayPointList(const PlayPointList& other)
    : bound(other.bound), count(other.count), capacity(other.capacity),
      items(new PlayPoint[other.capacity]) {
    std::memcpy(items, other.items, sizeof(PlayPoint) * count);
}

PlayPointList::~PlayPointList() {
    delete[] items;
}

void PlayPointList::Assign(const PlayPointList& other) {
    delete[] items;
    bound = other.bound;
    count = other.count;
    capacity = other.capacity;
    items = new PlayPoint[capacity];
    std::memcpy(items, other.items, sizeof(PlayPoint) * count);
}

// First index whose time is at or after the given time, or count.
int32_t PlayPointList::LowerIndex(int32_t time) const {
    // Points mostly arrive in order (compiles, file reads, rebuilt lines):
    // a point behind the last one needs no scan.
    if (count == 0 || items[count - 1].time < time)
        return count;
    const PlayPoint* at = std::lower_bound(
        items, items + count, time, [](const PlayPoint& p, int32_t t) { return p.time < t; });
    return static_cast<int32_t>(at - items);
}

// From the first point of p's time, walks over the points of that time until
// one has p's line; returns where it stopped.
int32_t PlayPointList::LineIndex(int32_t from, PlayPoint p) const {
    int32_t i = from;
    while (i < count && items[i].time == p.time && items[i].line != p.line)
        ++i;
    return i;
}

void PlayPointList::Reallocate(int32_t newCapacity) {
    PlayPoint* grown = new PlayPoint[newCapacity];
    std::memcpy(grown, items, sizeof(PlayPoint) * count);
    delete[] items;
    items = grown;
    capacity = newCapacity;
}

void PlayPointList::StoreAt(int32_t index, PlayPoint p) {
    std::memmove(items + index + 1, items + index, sizeof(PlayPoint) * (count - index));
    items[index] = p;
    ++count;
    if (count == capacity)
        Reallocate(count + Step);
}

void PlayPointList::Insert(PlayPoint p) {
    if (p.time >= bound)
        return;
    StoreAt(LowerIndex(p.time), p);
}

void PlayPointList::InsertOrReplace(PlayPoint p) {
    if (p.time >= bound)
        return;
    int32_t i = LowerIndex(p.time);
    while (i < count && items[i].time == p.time) {
        if (items[i].line == p.line) {
            items[i] = p;
            return;
        }
        ++i;
    }
    StoreAt(i, p);
}

// The capacity that inserting points one by one would leave: one step more
// each time the count reaches it.
void PlayPointList::Reserve(int32_t newCount) {
    int32_t grown = capacity;
    while (grown <= newCount)
        grown += Step;
    if (grown != capacity)
        Reallocate(grown);
}

// Merges from the back, so that each point moves once. A new point goes
// before the points of its time, as Insert puts it; with replace it
// overwrites the point of its time and line, or else goes after the points of
// its time, as InsertOrReplace does.
void PlayPointList::InsertSorted(const PlayPoint* sorted, int32_t n, bool replace) {
    while (n > 0 && sorted[n - 1].time >= bound)
        --n;
    int32_t added = n;
    if (replace)
        for (int32_t k = 0, from = 0; k < n; ++k) {
            while (from < count && items[from].time < sorted[k].time)
                ++from;
            const int32_t i = LineIndex(from, sorted[k]);
            if (i < count && items[i].time == sorted[k].time) {
                items[i] = sorted[k];
                --added;
            }
        }
    if (added <= 0)
        return;
    Reserve(count + added);
    int32_t from = count - 1;
    int32_t to = count + added - 1;
    for (int32_t k = n - 1; k >= 0; --k) {
        const PlayPoint& p = sorted[k];
        while (from >= 0 && (items[from].time > p.time || (!replace && items[from].time == p.time)))
            items[to--] = items[from--];
        if (replace && HasLineAt(from, p))
            continue; // written over in place above
        items[to--] = p;
    }
    count += added;
}

// Whether the points of p's time that end at index last hold p's line.
bool PlayPointList::HasLineAt(int32_t last, PlayPoint p) const {
    for (int32_t i = last; i >= 0 && items[i].time == p.time; --i)
        if (items[i].line == p.line)
            return true;
    return false;
}

void PlayPointList::Remove(PlayPoint p) {
    if (count == 0)
        return;
    const int32_t i = LineIndex(LowerIndex(p.time), p);
    if (i == count || items[i].time != p.time)
        return;
    std::memmove(items + i, items + i + 1, sizeof(PlayPoint) * (count - i - 1));
    --count;
    if (capacity == count + Step + 2)
        Reallocate(capacity - Step);
}

bool PlayPointList::RangeIsEmpty(int32_t first, int32_t last) const {
    return first > last || count == 0 || first > items[count - 1].time;
}

void PlayPointList::RemoveRange(int32_t first, int32_t last) {
    if (RangeIsEmpty(first, last))
        return;
    const int32_t begin = LowerIndex(first);
    int32_t end = begin;
    while (end < count && items[end].time <= last)
        ++end;
    std::memmove(items + begin, items + end, sizeof(PlayPoint) * (count - end));
    count -= end - begin;
}

void PlayPointList::RemoveRangeOfLine(int32_t first, int32_t last, int32_t line) {
    if (RangeIsEmpty(first, last))
        return;
    int32_t n = LowerIndex(first);
    for (int32_t i = n; i < count; ++i) {
        const PlayPoint& p = items[i];
        if (!(p.time <= last && p.line == line))
            items[n++] = p;
    }
    count = n;
}

PlayPoint PlayPointList::GetAt(int32_t index) const {
    if (index < 0 || index >= count) {
        // Only the time is defined for a bad index; the rest is zeroed so the
        // record is at least deterministic.
        PlayPoint none{};
        none.time = -1;
        return none;
    }
    return items[index];
}

int32_t PlayPointList::CountInRange(int32_t first, int32_t last) const {
    if (RangeIsEmpty(first, last))
        return 0;
    int32_t n = 0;
    for (int32_t i = 0; i < count; ++i)
        if (items[i].time >= first && items[i].time <= last)
            ++n;
    return n;
}

int32_t PlayPointList::CopyRange(int32_t first, int32_t last, PlayPoint** out) const {
    const int32_t n = CountInRange(first, last);
    if (n == 0)
        return 0;
    PlayPoint* copy = new PlayPoint[n];
    int32_t k = 0;
    for (int32_t i = 0; i < count; ++i)
        if (items[i].time >= first && items[i].time <= last)
            copy[k++] = items[i];
    *out = copy;
    return n;
}

int32_t PlayPointList::FindFirst(int32_t first, int32_t last) const {
    if (RangeIsEmpty(first, last))
        return -1;
    for (int32_t i = 0; i < count; ++i)
        if (items[i].time >= first && items[i].time <= last)
            return i;
    return -1;
}

int32_t PlayPointList::FindLast(int32_t first, int32_t last) const {
    if (RangeIsEmpty(first, last))
        return -1;
    for (int32_t i = count - 1; i >= 0; --i)
        if (items[i].time >= first && items[i].time <= last)
            return i;
    return -1;
}

void PlayPointList::SetBound(int32_t newBound) {
    if (newBound != 0)
        bound = newBound;
}

void PlayPointList::Clear() {
    delete[] items;
    items = new PlayPoint[Step];
    capacity = Step;
    count = 0;
}

void PlayPointList::CloseLineGap(int32_t line) {
    for (int32_t i = 0; i < count; ++i)
        if (items[i].line > line)
            --items[i].line;
}
