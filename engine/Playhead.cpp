#include "engine/Playhead.h"

#include "engine/Schedule.h"
#include "engine/SoundBuffer.h"

bool Playhead::FireNext(bool audible) {
    const PlayPoint e = events[index];
    SoundBuffer** samples = lineSamples[e.line];
    for (int32_t s = 0; audible && s < lineSampleCounts[e.line]; ++s)
        samples[s]->Play(e);
    bool more = true;
    if (++index == count) {
        index = 0;
        more = false;
    }
    nextTick = ticks[index];
    schedule->index = index;
    return more;
}

int32_t Playhead::Tick(bool audible) {
    int32_t fired = 0;
    if (ready && running && count && nextTick == position) {
        do
            ++fired;
        while (FireNext(audible) && nextTick == position);
    }
    ++position;
    if (position == lengthTicks - 1)
        schedule->NotifyPatternEnding();
    if (position == lengthTicks)
        position = 0;
    return fired;
}

void Playhead::Skip(int32_t n) {
    const int32_t target = position + n;
    if (target >= lengthTicks) {
        position = target - lengthTicks;
        return;
    }
    if (target > position && ready && count && nextTick >= position) {
        while (nextTick < target && FireNext() && nextTick >= position) {
        }
    }
    position = target;
}

void Playhead::StartAt(int32_t start, int32_t length, int32_t* newTicks, PlayPoint* newEvents) {
    position = start;
    lengthTicks = length;
    ticks = newTicks;
    events = newEvents;
    Seek();
    running = 1;
}

void Playhead::ContinueWith(int32_t length, int32_t* newTicks, PlayPoint* newEvents) {
    lengthTicks = length;
    if (lengthTicks > 0 && position >= lengthTicks)
        position %= lengthTicks;
    ticks = newTicks;
    events = newEvents;
    Seek();
    running = 1;
}

void Playhead::SetLength(int32_t length) {
    lengthTicks = length;
    if (position >= lengthTicks)
        position = 0;
    Seek();
}

void Playhead::Rebind(int32_t newIndex, int32_t newCount, int32_t length, int32_t* newTicks,
                      PlayPoint* newEvents) {
    index = newIndex;
    count = newCount;
    lengthTicks = length;
    ticks = newTicks;
    events = newEvents;
    nextTick = ticks[index];
}

void Playhead::Seek() {
    count = schedule->count;
    const int32_t p = position;
    int32_t i = 0;
    while (i < count && static_cast<uint32_t>(ticks[i]) < static_cast<uint32_t>(p))
        ++i;
    if (i == count)
        i = 0;
    if (position != p)
        i = 0;
    index = i;
    nextTick = ticks[i];
    schedule->index = i;
}
