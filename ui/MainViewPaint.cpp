// The view's drawing: the regions of the client area, the cells of the
// screen slots, the top band, and the rows placed in their cells. Engine
// lock held, GUI thread: the window replays the records after the lock.
#include "engine/ClockDisplay.h"
#include "engine/SequencerRow.h"
#include "song/Instrument.h"
#include "ui/MainView.h"

namespace {
int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}
} // namespace

void MainView::ComputeRects(int32_t w, int32_t h) {
    const int32_t b = Trunc(h * 0.2);
    const int32_t r = Trunc(w * split);
    clientRect = Rect{0, 0, w, h};
    topBandRect = Rect{0, 0, w, b};
    nameBoxRect = Rect{Trunc(w * 0.02), Trunc(b * 0.2), Trunc(w * 0.22), Trunc(b * 0.75)};
    topPanelRect = Rect{Trunc(w * 0.225), 0, Trunc(w * 0.8), Trunc(b * 0.74)};
    const double zoomLefts[3] = {0.81, 0.87, 0.93};
    for (int i = 0; i < 3; ++i)
        zoomBoxRects[i] = Rect{Trunc(w * zoomLefts[i]), Trunc(b * 0.25),
                               Trunc(w * (zoomLefts[i] + 0.05)), Trunc(b * 0.65)};
    nameColumnRect = Rect{0, b, r, h};
    rowColumnRect = Rect{r + 4, b, w, h};
    hScrollRect = Rect{r + 8, Trunc(b * 0.75), w - 4, Trunc(b * 0.96)};
    const double third = (nameBoxRect.bottom - nameBoxRect.top) * 0.3333333333333333;
    int32_t top = nameBoxRect.top;
    int32_t bottom = Trunc(top + third);
    for (Rect& cell : nameCells) {
        cell = Rect{nameBoxRect.left, top, nameBoxRect.right, bottom};
        top = Trunc(top + third);
        bottom = Trunc(bottom + third);
    }
}

void MainView::LayOutSlots() {
    const int32_t n = slotCount;
    const int32_t b = topBandRect.bottom;
    const int32_t h = clientRect.bottom;
    for (int32_t i = 0; i < n; ++i) {
        RowSlot& s = slots[i];
        s.left = 0;
        s.right = nameColumnRect.right;
        s.top = Trunc(static_cast<double>(i) / n * (h - b) + b);
        s.bottom = Trunc(static_cast<double>(i + 1) / n * (h - b) + b);
    }
    slotsLaidOut = 1;
}

void MainView::FillSlots() {
    const int32_t n = slotCount;
    if (viewMode != Insts) {
        for (int32_t i = 0; i < n; ++i) {
            const int32_t j = rowList.firstVisible + i;
            RowSlot& s = slots[i];
            s.visible = j < rowList.Count() ? 1 : 0;
            if (!s.visible)
                continue;
            const RowSlot& e = rowList.entries[j];
            s.row = e.row;
            s.type = e.type;
            s.highlighted = e.highlighted;
            s.index = e.index;
        }
        return;
    }
    // Two slots an instrument: its sequencer box and an empty cell. Only
    // slots inside the array are touched when the count is odd.
    size_t next = 0;
    for (int32_t s = 0; s < n; s += 2) {
        const bool used = next < instruments.size();
        slots[s].highlighted = 0;
        slots[s].visible = used ? 1 : 0;
        if (used) {
            slots[s].row = instruments[next++]->GetSequencer();
            slots[s].type = Row::SequencerRowKind;
            slots[s].index = s;
        }
        if (s + 1 < n) {
            slots[s + 1].highlighted = 0;
            slots[s + 1].visible = 0;
        }
    }
}

void MainView::PaintTopBand(Canvas& canvas) {
    canvas.FrameRect(topBandRect, Black);
    canvas.FrameRect(nameColumnRect, Black);
    canvas.FillRect(nameBoxRect, White);
    for (int i = 0; i < 3; ++i) {
        if (i == 1)
            canvas.FillRect(nameCells[i], Gray);
        canvas.Text(nameCells[i], instrumentNames[i].c_str(), CurrentFont, TextLeft, Black);
        canvas.FrameRect(nameCells[i], Black);
    }
    canvas.FillRect(zoomBoxRects[zoomMode - 1], Gray);
    const char* labels[3] = {"Zm 1", "Zm 2", "Zm 3"};
    for (int i = 0; i < 3; ++i)
        canvas.Text(zoomBoxRects[i], labels[i], CurrentFont,
                    TextSingleLine | TextCenter | TextVCenter, Black);
    for (const Rect& box : zoomBoxRects)
        canvas.FrameRect(box, Black);
    canvas.FrameRect(topPanelRect, Black);
}

void MainView::Paint(Canvas& canvas, int32_t width, int32_t height) {
    if (width != clientRect.right || height != clientRect.bottom)
        slotsLaidOut = 0;
    ComputeRects(width, height);
    PaintTopBand(canvas);
    if (!slotsLaidOut) {
        LayOutSlots();
        host->ScrollBarsChanged();
    }
    UnplaceListRows();
    FillSlots();
    if (theClockDisplay != nullptr)
        theClockDisplay->Clear();
    for (const RowSlot& s : slots) {
        const Rect cell{s.left, s.top, s.right, s.bottom};
        if (s.visible) {
            if (s.highlighted)
                canvas.FillRect(cell, Gray);
            const char* name = s.row->GetName();
            canvas.Text(cell, name != nullptr ? name : "", CurrentFont, TextLeft, Black);
        }
        canvas.FrameRect(cell, Black);
    }
    for (const RowSlot& s : slots)
        if (s.visible)
            s.row->Place(Rect{rowColumnRect.left, s.top, rowColumnRect.right, s.bottom}, &canvas);
}
