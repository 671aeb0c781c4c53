// The view's mouse gestures: which region a press falls in decides what it
// means. A name cell acts on its row as a whole (highlights, bars); a press in
// the row column goes to the row under it. Engine lock held, GUI thread.
#include "editing/Line.h"
#include "engine/Engine.h"
#include "engine/SequencerRow.h"
#include "song/Instrument.h"
#include "ui/MainView.h"

namespace {
constexpr uint32_t Left = Row::LeftButton;
constexpr uint32_t LeftShift = Row::LeftButton | Row::Shift;
constexpr uint32_t LeftControl = Row::LeftButton | Row::Control;
constexpr uint32_t Right = Row::RightButton;
} // namespace

int32_t MainView::SlotAt(int32_t y) const {
    for (size_t s = 0; s < slots.size(); ++s)
        if (y > slots[s].top && y < slots[s].bottom)
            return static_cast<int32_t>(s);
    return -1;
}

// The gutter between the two columns counts as the row's left end.
Row* MainView::RowColumnHit(int32_t& x, int32_t y, bool gutter) const {
    if (gutter && x > nameColumnRect.right && x <= rowColumnRect.left)
        x = rowColumnRect.left + 1;
    if (!rowColumnRect.Contains(x, y))
        return nullptr;
    const int32_t s = SlotAt(y);
    return s >= 0 && slots[s].visible ? slots[s].row : nullptr;
}

Line* MainView::LineColumnHit(int32_t& x, int32_t y) const {
    Row* row = RowColumnHit(x, y, true);
    return row != nullptr && row->type == Row::LineRow ? static_cast<Line*>(row) : nullptr;
}

Line* MainView::NameColumnLine(int32_t x, int32_t y) const {
    if (!nameColumnRect.Contains(x, y))
        return nullptr;
    const int32_t s = SlotAt(y);
    if (s < 0 || !slots[s].visible || slots[s].type != Row::LineRow)
        return nullptr;
    return static_cast<Line*>(slots[s].row);
}

bool MainView::IsEmptyNameCell(int32_t x, int32_t y) const {
    const int32_t s = SlotAt(y);
    return viewMode == LineDetail && nameColumnRect.Contains(x, y) && s >= 0 && !slots[s].visible;
}

void MainView::OnLButtonDown(uint32_t flags, int32_t x, int32_t y) {
    for (int32_t i = 0; i < 3; ++i)
        if (zoomBoxRects[i].Contains(x, y)) {
            const int32_t zoom = i + 1;
            zoom == 1 ? SelectZoom1() : (zoom == 2 ? SelectZoom2() : SelectZoom3());
            return;
        }
    const bool inNameBox = nameBoxRect.Contains(x, y);
    const bool keep = (flags == LeftControl && viewMode == Insts) || (inNameBox && focusKind == -2);
    if (!keep)
        DropFocus();
    if (inNameBox) {
        const int32_t step =
            nameCells[0].Contains(x, y) ? -1 : (nameCells[2].Contains(x, y) ? 1 : 0);
        if (step == 0 || currentInstrument + step < 0 ||
            currentInstrument + step >= static_cast<int32_t>(instruments.size()))
            return;
        const bool refocus = focusKind == -2;
        SelectInstrument(currentInstrument + step);
        RebuildRowList();
        Repaint();
        if (refocus) {
            DropFocus();
            Current()->GetSequencer()->FocusMainBox();
        }
    } else if (nameColumnRect.Contains(x, y)) {
        ClickNameColumn(flags, y);
    } else {
        ClickRowColumn(flags, x, y);
    }
}

void MainView::ClickNameColumn(uint32_t flags, int32_t y) {
    const int32_t s = SlotAt(y);
    if (s < 0 || !slots[s].visible)
        return;
    const RowSlot slot = slots[s];
    if (viewMode == LineDetail) {
        if (flags == LeftControl)
            rowList.ToggleHighlight(slot.index);
        else if (flags == LeftShift)
            rowList.HighlightRange(slot.index);
        else if (flags == Left) {
            rowList.ClearHighlights();
            rowList.Highlight(slot.index);
        }
    } else if (flags == Left && slot.type == Row::SequencerRowKind) {
        SequencerRow* sequencer = static_cast<SequencerRow*>(slot.row);
        for (size_t i = 0; i < instruments.size(); ++i)
            if (instruments[i] == sequencer->GetInstrument())
                SelectInstrument(static_cast<int32_t>(i));
        RebuildRowList();
        Repaint();
        sequencer->FocusMainBox();
    }
    if (slot.type == Row::LineRow) {
        if (rowList.highlightedCount < 2)
            host->AskFrame(FrameAsk::LineBar, rowList.FirstHighlightedLine());
        else
            host->AskFrame(FrameAsk::MultiLineBar);
    } else if (slot.type == Row::PatternRowKind) {
        host->AskFrame(FrameAsk::PatternBar);
    } else if (slot.type == Row::SequencerRowKind) {
        host->AskFrame(FrameAsk::InstrumentBar);
    }
    Repaint(); // the new highlight reaches the screen with the bar
}

// A held numpad digit goes before a held paste key, and a paste key with an
// empty clipboard makes the press do nothing at all.
void MainView::ClickRowColumn(uint32_t flags, int32_t x, int32_t y) {
    Row* row = RowColumnHit(x, y, true);
    if (row == nullptr)
        return;
    if (row->type != Row::LineRow) {
        row->OnLButtonDown(flags, x, y);
        return;
    }
    Line* line = static_cast<Line*>(row);
    if (dropFilterKey != 0)
        line->DropWithDivision(dropFilterKey, x, y);
    else if (pasteMode != 0 && clipboardCount > 0)
        line->PasteAt(pasteMode == 1 ? 1 : 0, clipboardNotes.data(), clipboardCount, x, y);
    else if (pasteMode == 0)
        line->OnLButtonDown(flags, x, y);
}

void MainView::OnLButtonUp(uint32_t flags, int32_t x, int32_t y) {
    if (Line* line = LineColumnHit(x, y))
        line->OnLButtonUp(flags, x, y);
}

// An empty name cell opens the wave file dialog; a line's name cell opens
// the sample panel with the line and its wave file dialog.
void MainView::OnLButtonDblClk(uint32_t flags, int32_t x, int32_t y) {
    if (nameColumnRect.Contains(x, y)) {
        const int32_t s = SlotAt(y);
        if (viewMode != LineDetail || flags != Left || s < 0)
            return;
        if (!slots[s].visible) {
            host->AskFrame(FrameAsk::LoadWaves);
        } else if (slots[s].type == Row::LineRow) {
            samplePanel.AttachLine(static_cast<Line*>(slots[s].row));
            host->AskFrame(FrameAsk::LoadSamples);
        }
        return;
    }
    Row* row = RowColumnHit(x, y, false);
    if (row != nullptr && row->type == Row::SequencerRowKind)
        row->OnLButtonDblClk(flags, x, y);
}

// With shift, a right press on a line's name cell opens the sample panel;
// a plain one also makes the line the popup volume panel's one entry,
// whether that panel is on the screen or not.
void MainView::OnRButtonDown(uint32_t flags, int32_t x, int32_t y) {
    DropFocus();
    if (Line* line = NameColumnLine(x, y)) {
        if (flags == (Right | Row::Shift)) {
            samplePanel.AttachLine(line);
        } else if (flags == Right) {
            host->AskFrame(FrameAsk::DefaultNoteBar, line);
            MakePopupLine(line);
        }
        return;
    }
    if (Line* line = LineColumnHit(x, y))
        line->OnRButtonDown(flags, x, y);
}

void MainView::OnRButtonUp(uint32_t flags, int32_t x, int32_t y) {
    if (Line* line = LineColumnHit(x, y))
        line->OnRButtonUp(flags, x, y);
}

// On a line's name cell the right double click attaches the sample panel
// (with shift) or also loads samples into it (without).
void MainView::OnRButtonDblClk(uint32_t flags, int32_t x, int32_t y) {
    if (nameColumnRect.Contains(x, y)) {
        const int32_t s = SlotAt(y);
        if (viewMode != LineDetail || s < 0)
            return;
        if (!slots[s].visible) {
            host->AskFrame(FrameAsk::LoadWaves);
        } else if (slots[s].type == Row::LineRow &&
                   (flags == Right || flags == (Right | Row::Shift))) {
            samplePanel.AttachLine(static_cast<Line*>(slots[s].row));
            if (flags == Right)
                host->AskFrame(FrameAsk::LoadSamples);
        }
        return;
    }
    if (Line* line = LineColumnHit(x, y))
        line->OnRButtonDblClk(flags, x, y);
}
