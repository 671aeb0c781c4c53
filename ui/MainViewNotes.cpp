// The view's side of note editing: which line holds the key focus for its
// selection, the line that the note bar's controls act on, and the keys that
// fill from, copy and cut a selection into the note clipboard. Engine lock
// held; OnSelectionKey runs in the tick.
#include "editing/Line.h"
#include "engine/Engine.h"
#include "song/PlayPointList.h"
#include "ui/MainView.h"

#include <algorithm>

// The first line to get a selection takes the key focus; while it keeps it,
// its own later selections only scroll the window to where they start. Also
// in the tick, when a key command nudges or deletes a selection.
void MainView::LineSelectionChanged(Line* line) {
    if (line == nullptr) {
        DropFocus();
        return;
    }
    if (Line* focused = FocusedLine()) {
        if (focused != line)
            return;
        hScrollBar.SetPosition(line->SelectionMeasure());
        zoom12Position = hScrollBar.position;
        SetLineWindow(std::min(zoom1Measures, PatternMeasures()), hScrollBar.position);
        host->ScrollBarsChanged();
        Repaint();
        return;
    }
    if (focusKind == -2)
        DropFocus();
    // Room for a copy of the whole line, so that Control C in the tick needs
    // none.
    clipboardNotes.reserve(static_cast<size_t>(line->points->count));
    for (size_t s = 0; s < slots.size(); ++s)
        if (slots[s].visible && slots[s].row == line) {
            focusSlot = static_cast<int32_t>(s);
            theEngine->HighlightLine(line);
            break;
        }
    host->AskFrame(FrameAsk::SelectionNoteBar, line);
}

// The countdown yields one line per run: the focused line, else the first
// highlighted slot that holds a line.
int32_t MainView::NextNoteTarget(Line*& outLine, bool restart) {
    if (restart)
        noteTargetCount = 2;
    const int32_t found = noteTargetCount--;
    if (found <= 1)
        return 0;
    Line* target = FocusedLine();
    for (size_t s = 0; target == nullptr && s < slots.size(); ++s)
        if (slots[s].visible && slots[s].highlighted && slots[s].type == Row::LineRow)
            target = static_cast<Line*>(slots[s].row);
    if (target == nullptr)
        return 0;
    outLine = target;
    return noteTargetCount;
}

Line* MainView::SetNoteValue(int32_t code, int16_t value) {
    Line* line = nullptr;
    if (NextNoteTarget(line, true) == 0)
        return nullptr;
    line->SetNoteValue(code, value, focusSlot == -1);
    return line;
}

// Audio thread: two asterisks fill destructively, two periods by merging;
// any other key in between cancels. C and X (with control, as the key map
// sends them) copy and cut into the clipboard, whose array is reused.
void MainView::OnSelectionKey(uint32_t scanCode) {
    constexpr uint32_t Multiply = 55, Decimal = 83, C = 46, X = 45;
    Line* line = FocusedLine();
    const uint8_t state = fillKeyState;
    fillKeyState = 0;
    if (state == 0 && scanCode == Multiply)
        fillKeyState = 1;
    else if (state == 0 && scanCode == Decimal)
        fillKeyState = 2;
    else if (line != nullptr && state == 1 && scanCode == Multiply)
        line->FillFromSelection(1, 0);
    else if (line != nullptr && state == 2 && scanCode == Decimal)
        line->FillFromSelection(0, 0);
    if (line == nullptr || (scanCode != C && scanCode != X))
        return;
    clipboardCount =
        scanCode == C ? line->CopySelection(clipboardNotes) : line->CutSelection(clipboardNotes);
    for (PlayPoint& p : clipboardNotes)
        p.line = 0;
}
