#include "ui/KeyMap.h"

#include "editing/Line.h"
#include "engine/SequencerRow.h"
#include "song/Instrument.h"
#include "ui/MainView.h"

namespace {
bool IsTopDigit(uint32_t code) {
    return code >= KeyMap::Digit1 && code <= KeyMap::Digit0;
}
bool IsCueKey(uint32_t code) {
    return code >= KeyMap::F5 && code <= KeyMap::F8;
}
bool IsShift(uint32_t code) {
    return code == KeyMap::LShift || code == KeyMap::RShift;
}
bool IsControl(uint32_t code) {
    return code == KeyMap::LControl || code == KeyMap::RControl;
}
} // namespace

int32_t KeyMap::NumpadDigit(uint32_t code) {
    switch (code) {
    case Numpad1:
        return 1;
    case Numpad2:
        return 2;
    case Numpad3:
        return 3;
    case Numpad4:
        return 4;
    case Numpad5:
        return 5;
    case Numpad6:
        return 6;
    case Numpad7:
        return 7;
    case Numpad8:
        return 8;
    case Numpad9:
        return 9;
    default:
        return 0;
    }
}

void KeyMap::OnKey(uint8_t pressed, uint32_t code) {
    if (!pressed) {
        Release(code);
        return;
    }
    PressAlways(code);
    if (engine->highlightMode == 0)
        PressNothingHighlighted(code);
    else if (engine->highlightMode == 1)
        PressLine(code);
    else
        PressSequencers(code);
    PressLast(code);
}

// Tab shows and hides the popup volume panel; the window follows on the GUI
// thread.
void KeyMap::PressAlways(uint32_t code) {
    if (const int32_t digit = NumpadDigit(code)) {
        view->dropFilterKey = static_cast<uint8_t>(digit);
        return;
    }
    switch (code) {
    case Minus:
        view->SelectZoom1();
        break;
    case Equals:
        view->SelectZoom2();
        break;
    case Backslash:
        view->SelectZoom3();
        break;
    case Tab:
        popupShown = !popupShown;
        if (popupShown)
            view->ShowPopupVolumePanel();
        else
            view->HidePopupVolumePanel();
        break;
    case S:
        view->AskFrame(FrameAsk::ToggleViewBar);
        break;
    case T:
        view->AskFrame(FrameAsk::TimersBar);
        break;
    case I:
        view->AskFrame(FrameAsk::InstrumentBar);
        break;
    case Grave:
    case Up:
    case Down:
        view->OnInstrumentKey(code, shiftDown != 0);
        break;
    case V:
        view->pasteMode = 1;
        break;
    case B:
        view->pasteMode = 2;
        break;
    default:
        break;
    }
}

void KeyMap::PressNothingHighlighted(uint32_t code) {
    if (IsTopDigit(code))
        view->OnInstrumentKey(code, shiftDown != 0);
    else if (code == Left || code == Right)
        view->ScrollMeasure(code == Left ? -1 : 1);
    else if (IsCueKey(code))
        view->Current()->GetSequencer()->SetCueMode(static_cast<int32_t>(code - F5));
}

// The line that holds the selection is the engine's highlighted line.
void KeyMap::PressLine(uint32_t code) {
    Line* line = static_cast<Line*>(engine->highlightedLine);
    switch (code) {
    case Escape:
    case Back:
        line->DeleteSelection();
        view->AskFrame(FrameAsk::EmptyBar);
        break;
    case Left:
    case Right:
        line->Nudge(code == Left ? -1 : 1);
        break;
    case RControl:
        line->Nudge(-2);
        break;
    case Numpad0:
        line->Nudge(2);
        break;
    case C:
    case X:
        if (controlDown)
            view->OnSelectionKey(code);
        break;
    case Multiply:
    case Decimal:
        view->OnSelectionKey(code);
        break;
    default:
        if (IsCueKey(code))
            view->Current()->GetSequencer()->SetCueMode(static_cast<int32_t>(code - F5));
        break;
    }
}

// Each highlighted sequencer in list order; the list is read anew at each
// step, as an operation may change it.
void KeyMap::ForEachSequencer(void (*action)(SequencerRow*, uint32_t), uint32_t code) {
    for (int32_t i = 0; i < engine->highlightCount; ++i)
        action(engine->highlightedSequencers[i], code);
}

void KeyMap::PressSequencers(uint32_t code) {
    if (IsTopDigit(code) || NumpadDigit(code) != 0 || code == Numpad0 || code == Add)
        ForEachSequencer([](SequencerRow* s, uint32_t c) { s->OnKey(c); }, code);
    else if (code == Return && !shiftDown && !engine->HoldStart())
        ForEachSequencer([](SequencerRow* s, uint32_t) { s->Restart(); }, code);
    else if (IsCueKey(code))
        ForEachSequencer([](SequencerRow* s, uint32_t c) { s->SetCueMode(c - F5); }, code);
}

// Space and the modifiers act after the columns, so a modifier's own press
// never counts for itself.
void KeyMap::PressLast(uint32_t code) {
    if (code == Space && !controlDown)
        view->ToggleMute();
    else if (IsControl(code))
        controlDown = 1;
    else if (IsShift(code))
        shiftDown = 1;
}

void KeyMap::Release(uint32_t code) {
    if (code == Return && engine->highlightMode == 2 && shiftDown)
        ForEachSequencer([](SequencerRow* s, uint32_t) { s->SkipForward(); }, code);
    else if (code == V && view->pasteMode == 1)
        view->pasteMode = 0;
    else if (code == B && view->pasteMode == 2)
        view->pasteMode = 0;
    else if (NumpadDigit(code) != 0 && view->dropFilterKey == NumpadDigit(code))
        view->dropFilterKey = 0;
    else if (code == Space && (controlDown || shiftDown))
        view->ToggleMute();
    else if (IsControl(code))
        controlDown = 0;
    else if (IsShift(code))
        shiftDown = 0;
}
