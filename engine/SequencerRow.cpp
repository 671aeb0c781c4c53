#include "engine/SequencerRow.h"

#include "engine/Engine.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"

#include <cstring>

namespace {
// Key positions of the keys the box takes.
constexpr uint32_t KeyTopRow1 = 2, KeyTopRow0 = 11, KeyNumpadPlus = 78;

// The digit of a numpad key, or -1.
int32_t NumpadDigit(uint32_t scanCode) {
    switch (scanCode) {
    case 82:
        return 0;
    case 79:
        return 1;
    case 80:
        return 2;
    case 81:
        return 3;
    case 75:
        return 4;
    case 76:
        return 5;
    case 77:
        return 6;
    case 71:
        return 7;
    case 72:
        return 8;
    case 73:
        return 9;
    default:
        return -1;
    }
}
} // namespace

SequencerRow::SequencerRow(Instrument* owner, PatternBank* patterns)
    : Row(SequencerRowKind), bank(patterns), instrument(owner) {
    std::memset(program, Empty, sizeof program);
    std::memset(queue, Empty, sizeof queue);
}

void SequencerRow::SwitchTo(int32_t pattern) {
    bank->Play(pattern, 0, stopped ? 1 : 0);
    currentNumber = static_cast<uint8_t>(pattern + 1);
    stopped = 0;
}

void SequencerRow::Stop() {
    bank->Stop();
    stopped = 1;
}

void SequencerRow::Restart() {
    bank->Play(currentNumber - 1, 0, 1);
    stopped = 0;
}

void SequencerRow::SetCueMode(int32_t mode) {
    if (mode < 0 || mode > 3)
        return;
    cueMode = static_cast<uint8_t>(mode);
    Repaint();
}

void SequencerRow::PopQueue() {
    for (int i = 0; i < QueueSlots - 1; ++i)
        if (queue[i] != Empty)
            queue[i] = queue[i + 1];
    queue[QueueSlots - 1] = Empty;
}

void SequencerRow::AdvanceProgram() {
    if (++programIndex == ProgramSlots)
        programIndex = 0;
    if (program[programIndex] == Empty)
        programIndex = 0;
}

void SequencerRow::OnPatternEnding() {
    switch (cueMode) {
    case Next:
        if (!stopped && queue[0] != Empty) {
            SwitchTo(queue[0]);
            cueMode = Lock;
            PopQueue();
            Repaint();
        }
        break;
    case Back:
        if (!stopped) {
            if (queue[0] != Empty) {
                SwitchTo(queue[0]);
                PopQueue();
            } else {
                Stop();
            }
            Repaint();
        }
        break;
    case Prog:
        if (!stopped && program[programIndex] != Empty) {
            SwitchTo(program[programIndex]);
            AdvanceProgram();
        }
        Repaint();
        break;
    default:
        break;
    }
    if (cueFlag && !stopped && theEngine != nullptr && theEngine->highlightMode == 2)
        for (int i = 0; i < theEngine->highlightCount; ++i)
            theEngine->highlightedSequencers[i]->Launch();
}

void SequencerRow::Launch() {
    if (cueFlag)
        return;
    if (cueMode == Lock) {
        if (queue[0] != Empty)
            cueMode = Next;
        else if (stopped)
            SwitchTo(currentNumber - 1);
        else
            Restart();
        Repaint();
    }
    TakeEntry(true);
}

void SequencerRow::SkipForward() {
    if (cueMode == Lock) {
        if (queue[0] != Empty) {
            cueMode = Next;
        } else if (program[programIndex] != Empty) {
            SwitchTo(program[programIndex]);
            AdvanceProgram();
            Repaint();
        }
    }
    TakeEntry(false);
}

// Takes the next entry by the cue mode: the queue's first in NEXT (which then
// falls back to LOCK) and <---, the program's next slot in PROG. A launch
// also starts it from tick 0.
void SequencerRow::TakeEntry(bool restart) {
    switch (cueMode) {
    case Next:
    case Back:
        if (queue[0] == Empty)
            return;
        SwitchTo(queue[0]);
        if (restart)
            Restart();
        if (cueMode == Next)
            cueMode = Lock;
        PopQueue();
        Repaint();
        break;
    case Prog:
        if (program[programIndex] != Empty) {
            SwitchTo(program[programIndex]);
            if (restart)
                Restart();
            AdvanceProgram();
        }
        Repaint();
        break;
    default:
        break;
    }
}

void SequencerRow::OnKey(uint32_t scanCode) {
    if (scanCode >= KeyTopRow1 && scanCode <= KeyTopRow0) {
        focus = 1;
        focusSlot = static_cast<int32_t>(scanCode) - 2;
        plusPending = 0;
        Repaint();
        return;
    }
    if (scanCode == KeyNumpadPlus) {
        plusPending = 1;
        return;
    }
    int32_t value = NumpadDigit(scanCode);
    if (value < 0)
        return;
    if (plusPending) {
        if (value + 10 < 17)
            value += 10;
        plusPending = 0;
    }
    EnterDigit(value);
}

void SequencerRow::EnterDigit(int32_t value) {
    if (value < 0 || value > 16)
        return;
    const uint8_t entry = value == 0 ? Empty : static_cast<uint8_t>(value - 1);
    switch (focus) {
    case 0:
        if (value == 0)
            Stop();
        else
            SwitchTo(value - 1);
        Repaint();
        break;
    case 1:
        StoreInSlot(queue, QueueSlots, entry);
        break;
    case 2:
        StoreInSlot(program, ProgramSlots, entry);
        break;
    default:
        break;
    }
}

// An entry typed beyond the end of the list lands behind its last entry; an
// emptied slot in the middle pulls the later entries forward by one.
void SequencerRow::StoreInSlot(uint8_t* slots, int32_t slotCount, uint8_t entry) {
    int32_t s = focusSlot < slotCount ? focusSlot : slotCount - 1;
    while (s > 0 && slots[s - 1] == Empty)
        --s;
    slots[s < 0 ? 0 : s] = entry;
    for (int32_t i = 0; i < slotCount - 1; ++i) {
        if (slots[i] == Empty && slots[i + 1] != Empty) {
            slots[i] = slots[i + 1];
            slots[i + 1] = Empty;
        }
    }
    Repaint();
}

void SequencerRow::RequestPattern(int32_t number) {
    if (number == -1) {
        FocusMainBox();
        return;
    }
    if (number < 0 || number > 10)
        return;
    currentNumber = static_cast<uint8_t>(number);
    if (number > 0)
        SwitchTo(number - 1);
    Repaint();
}

void SequencerRow::FocusMainBox() {
    focus = 0;
    Repaint();
    instrument->FocusSequencer(this);
}

void SequencerRow::ClearHighlight() {
    plusPending = 0;
    cueFlag = 0;
    focus = -1;
    focusSlot = -1;
    Repaint();
}

const char* SequencerRow::GetName() {
    return instrument->name.c_str();
}
