#include "engine/Engine.h"
#include "engine/TickTime.h"

#include "engine/ClockDisplay.h"
#include "engine/Playhead.h"
#include "engine/Schedule.h"
#include "engine/SequencerRow.h"
#include "song/PatternBank.h"
#include "ui/Row.h"

#include <algorithm>
#include <cstring>

Engine* theEngine = nullptr;

Engine::Engine() : playheads(new Playhead*[10]) {}

Engine::~Engine() {
    delete[] playheads;
}

// The registry grows every 5 additions to count + 10 entries; the capacity
// field trails the array's real size by 5, so a slot always stands free.
void Engine::AddPlayhead(Playhead* playhead) {
    playheads[playheadCount++] = playhead;
    if (playheadCount != playheadCapacity)
        return;
    Playhead** grown = new Playhead*[playheadCount + 10];
    std::memcpy(grown, playheads, sizeof(Playhead*) * playheadCount);
    delete[] playheads;
    playheads = grown;
    playheadCapacity += 5;
}

void Engine::RemovePlayhead(Playhead* playhead) {
    for (int32_t i = playheadCount - 1; i >= 0; --i) {
        if (playheads[i] != playhead)
            continue;
        std::memmove(playheads + i, playheads + i + 1, sizeof(Playhead*) * (playheadCount - i - 1));
        --playheadCount;
        return;
    }
}

void Engine::HighlightLine(Row* row) {
    if (row->type != Row::LineRow)
        return;
    highlightedLine = row;
    highlightMode = 1;
}

// The list holds 30; a sequencer added beyond that is ignored. A sequencer
// already in the list (a second control click on its box) is not added
// again: twice in the list, one pattern end would take two of its queue
// entries or program slots, and one typed digit would be entered twice.
void Engine::AddHighlightedSequencer(SequencerRow* sequencer) {
    highlightMode = 2;
    for (int i = 0; i < highlightCount; ++i)
        if (highlightedSequencers[i] == sequencer)
            return;
    if (highlightCount < MaxHighlights)
        highlightedSequencers[highlightCount++] = sequencer;
}

void Engine::ClearHighlights() {
    if (highlightMode == 2)
        for (int i = 0; i < highlightCount; ++i)
            highlightedSequencers[i]->ClearHighlight();
    highlightMode = 0;
    highlightCount = 0;
}

void Engine::OnKeyEvent(uint8_t pressed, uint32_t scanCode) {
    if (keyBusy)
        return;
    keyBusy = 1;
    if (keyTarget != nullptr)
        keyTarget->OnKey(pressed, scanCode);
    keyBusy = 0;
}

namespace {

// Whether the playhead's instrument has lines, so sounds to play.
bool HasLines(const Playhead& p) {
    return p.schedule != nullptr && p.schedule->sequencer != nullptr &&
           p.schedule->sequencer->bank->GetLineCount() > 0;
}

} // namespace

const Playhead* Engine::LeadPlayhead() const {
    for (int32_t i = 0; i < playheadCount; ++i)
        if (playheads[i]->running != 0)
            return playheads[i];
    for (int32_t i = 0; i < playheadCount; ++i)
        if (HasLines(*playheads[i]))
            return playheads[i];
    return playheadCount > 0 ? playheads[0] : nullptr;
}

void Engine::OnTimer() {
    for (int32_t i = 0; i < playheadCount; ++i)
        playheads[i]->Tick();
    // At most three events a tick; a longer burst waits in the queue, in
    // order, for the ticks that follow.
    KeyEvent key;
    for (int k = 0; k < KeysPerTick && keyQueue.Pop(key); ++k)
        OnKeyEvent(key.pressed, key.scanCode);
    TakeMidi();
    if (startHeld)
        RunHeldStart();
    CountClock();
}

bool Engine::HoldStart() {
    if (startGate.hold == nullptr || !startGate.hold(startGate.context))
        return false;
    startHeld = 1;
    return true;
}

// Audio thread, engine lock held: the held start, once due, restarts what is
// highlighted then.
void Engine::RunHeldStart() {
    if (startGate.due != nullptr && !startGate.due(startGate.context))
        return;
    startHeld = 0;
    if (highlightMode == 2)
        for (int i = 0; i < highlightCount; ++i)
            highlightedSequencers[i]->Restart();
}

int32_t Engine::SilentTick() {
    int32_t dropped = 0;
    for (int32_t i = 0; i < playheadCount; ++i)
        dropped += playheads[i]->Tick(false);
    CountClock();
    return dropped;
}

void Engine::CountClock() {
    if (++refreshCounter < ClockPeriod)
        return;
    ClockPass();
    refreshCounter = 0;
}

void Engine::ClockPass() {
    const int32_t n = std::min(playheadCount, static_cast<int32_t>(ClockCells));
    for (int32_t i = 0; i < n; ++i) {
        const Playhead* p = playheads[i];
        if (p->running) {
            const double q = static_cast<int32_t>(p->position * TickTime::TickMs) / p->stepMs;
            clockBeats[i] = static_cast<int32_t>(q) % 4 + 1;
            clockMeasures[i] = 1 - static_cast<int32_t>(q * -0.25);
        } else {
            clockBeats[i] = 0;
            clockMeasures[i] = 0;
        }
        clockIds[i] = p->id;
    }
    if (clockDisplay != nullptr)
        clockDisplay->Update(clockMeasures, clockBeats, clockIds, n);
}
