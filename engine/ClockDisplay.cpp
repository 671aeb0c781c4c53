#include "engine/ClockDisplay.h"

#include "engine/SequencerRow.h"

#include <cstring>

ClockDisplay* theClockDisplay = nullptr;

void ClockDisplay::AddCell(Row* owner, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    bool found = false;
    for (int32_t c = 0; c < count; ++c) {
        if (owners[c] == owner) {
            rects[c] = Rect{left, top, right, bottom};
            found = true;
        }
    }
    if (found || count >= MaxCells)
        return;
    owners[count] = owner;
    rects[count] = Rect{left, top, right, bottom};
    ids[count] = static_cast<SequencerRow*>(owner)->id;
    ++count;
}

void ClockDisplay::RemoveCell(Row* owner) {
    int32_t kept = 0;
    for (int32_t c = 0; c < count; ++c) {
        if (owners[c] == owner)
            continue;
        owners[kept] = owners[c];
        rects[kept] = rects[c];
        ids[kept] = ids[c];
        ++kept;
    }
    count = kept;
}

void ClockDisplay::Update(const int32_t* measures, const int32_t* beats,
                          const int32_t* instrumentIds, int32_t n) {
    pending.count = 0;
    for (int32_t i = 0; i < n; ++i)
        for (int32_t c = 0; c < count && pending.count < MaxCells; ++c)
            if (ids[c] == instrumentIds[i])
                pending.texts[pending.count++] = ClockText{rects[c], measures[i], beats[i]};
    if (pending.count == sent.count &&
        std::memcmp(pending.texts, sent.texts, sizeof(ClockText) * pending.count) == 0)
        return;
    if (frames.Push(pending))
        sent = pending;
}

bool ClockDisplay::TakeFrame(ClockFrame& frame) {
    bool any = false;
    while (frames.Pop(frame))
        any = true;
    return any;
}
