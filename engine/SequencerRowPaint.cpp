// The sequencer box on the screen: its layout, its drawing on the row's
// canvas, and the mouse on its boxes. Engine lock held; Paint also runs in
// the tick when a key changes the box.
#include "engine/SequencerRow.h"

#include "song/Instrument.h"

#include <cstdio>

namespace {
constexpr Font SmallFont{"Small Fonts", 60};
constexpr Font TimesFont{"Times", 80};
const char* const CueLabels[4] = {"LOCK", "NEXT", "<---", "PROG"};
} // namespace

void SequencerRow::OnLButtonDown(uint32_t flags, int32_t x, int32_t y) {
    if (mainBox.Contains(x, y)) {
        if (flags == LeftButton) {
            focus = 0;
            Repaint();
            instrument->FocusSequencer(this);
        } else if (flags == (LeftButton | Control)) {
            cueFlag = 0;
            focus = 0;
            Repaint();
            instrument->AddFocusSequencer(this);
        }
        return;
    }
    if (cueRect.Contains(x, y)) {
        cueMode = static_cast<uint8_t>((cueMode + 1) % 4);
        programIndex = 0;
        Repaint();
        return;
    }
    for (int i = 0; i < QueueSlots + ProgramSlots; ++i) {
        const bool inQueue = i < QueueSlots;
        const Rect& r = inQueue ? queueRects[i] : programRects[i - QueueSlots];
        if (!r.Contains(x, y))
            continue;
        focusSlot = inQueue ? i : i - QueueSlots;
        focus = inQueue ? 1 : 2;
        Repaint();
        instrument->FocusSequencer(this);
        return;
    }
}

void SequencerRow::OnLButtonDblClk(uint32_t flags, int32_t x, int32_t y) {
    if (flags == (LeftButton | Control) && mainBox.Contains(x, y)) {
        cueFlag = 1;
        Repaint();
    }
}

void SequencerRow::Layout() {
    const int32_t l = rect.left, t = rect.top, b = rect.bottom;
    mainBox = Rect{l + 2, t + 2, l + 52, b - 2};
    numberRect = Rect{l + 3, t + 2, l + 26, b - 2};
    clockRect = Rect{l + 27, t + 5, l + 51, b - 4};
    cueRect = Rect{l + 53, t + 2, l + 83, b - 2};
    queueArea = Rect{l + 84, t + 2, l + 404, b - 2};
    programArea = Rect{l + 424, t + 2, l + 584, b - 2};
    for (int i = 0; i < QueueSlots; ++i)
        queueRects[i] = Rect{queueArea.left + 20 * i, queueArea.top, queueArea.left + 20 * (i + 1),
                             queueArea.bottom};
    for (int i = 0; i < ProgramSlots; ++i)
        programRects[i] = Rect{programArea.left + 20 * i, programArea.top,
                               programArea.left + 20 * (i + 1), programArea.bottom};
}

// Frames each slot, fills the focused one grey, and writes the label and the
// entry of the first `labelled` slots.
void SequencerRow::PaintSlots(const Rect* rects, int32_t n, int8_t slotFocus,
                              const uint8_t* entries, int32_t labelled, const char* labelFormat,
                              int32_t entryInset) {
    char text[16];
    for (int32_t i = 0; i < n; ++i) {
        const Rect& r = rects[i];
        dc->FrameRect(r, Black);
        if (focus == slotFocus && focusSlot == i)
            dc->FillRect(r, Gray);
        if (i >= labelled)
            continue;
        std::snprintf(text, sizeof text, labelFormat, i + 1);
        dc->Text(Rect{r.left + 1, r.top + 1, r.right, r.bottom}, text, SmallFont, TextSingleLine,
                 Black);
        if (entries[i] == Empty)
            continue;
        std::snprintf(text, sizeof text, "%i", entries[i] + 1);
        dc->Text(Rect{r.left + entryInset, r.top + 1, r.right, r.bottom}, text, CurrentFont,
                 TextSingleLine | TextCenter | TextVCenter, Black);
    }
}

void SequencerRow::Paint() {
    if (dc == nullptr)
        return;
    Layout();
    dc->FillRect(rect, White);
    dc->FrameRect(rect, Black);
    dc->FrameRect(mainBox, Black);
    dc->FrameRect(queueArea, Black);
    dc->FrameRect(programArea, Black);
    if (focus == 0)
        dc->FillRect(mainBox, Gray);
    char number[8];
    std::snprintf(number, sizeof number, "%i", currentNumber);
    dc->Text(numberRect, number, CurrentFont, TextLeft, Black);
    dc->Text(cueRect, CueLabels[cueMode & 3], TimesFont, TextSingleLine | TextCenter | TextVCenter,
             Black);
    if (cueFlag)
        dc->Text(cueRect, "CUE", SmallFont, TextSingleLine | TextBottom | TextCenter, Black);
    PaintSlots(queueRects, QueueSlots, 1, queue, 10, "%i", 0);
    PaintSlots(programRects, ProgramSlots, 2, program, ProgramSlots, "P%i", 1);
}
