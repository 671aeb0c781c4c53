// The mouse on a line's row: a position becomes a time on the line's grid,
// and the presses and releases of both buttons place, erase, select, drag and
// paste notes. The view has already made sure that the position lies in the
// row. GUI thread, engine lock held.
#include "editing/Line.h"

#include "song/PlayPointList.h"

#include <algorithm>

namespace {

int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}

constexpr uint32_t Left = Row::LeftButton;
constexpr uint32_t LeftShift = Row::LeftButton | Row::Shift;
constexpr uint32_t LeftControl = Row::LeftButton | Row::Control;
constexpr uint32_t RightShift = Row::RightButton | Row::Shift;
constexpr uint32_t RightControl = Row::RightButton | Row::Control;

} // namespace

// The axis runs from 7 pixels inside the left edge to 10 inside the right
// one; a press just outside it is pulled onto its end. The y test is taken
// on the view coordinate itself, around the row's centre line c.
Line::AxisHit Line::AxisAt(int32_t x, int32_t y) const {
    const int32_t l = rect.left, r = rect.right;
    const int32_t c = Trunc((rect.bottom + rect.top) * 0.5);
    const int32_t w = r - l - 17;
    if (l < x && x <= l + 7)
        x = l + 8;
    if (r - 10 <= x && x < r)
        x = r - 11;
    const bool inX = l + 7 < x && x < r - 10;
    const bool inY = c - 0.8 * c < y && y < 0.8 * c + c;
    if (!inX || !inY || w <= 0)
        return AxisHit{false, 0.0};
    return AxisHit{true, (x - l - 7) / static_cast<double>(w)};
}

// The nearer grid line wins, half way goes to the earlier one, and the line
// at the axis's end is never used.
int32_t Line::TimeAtPoint(double a, int32_t division) const {
    const double g = static_cast<double>(visibleMeasures * stepsPerMeasure) * division;
    const double p = g * a;
    const int32_t lo = Trunc(p);
    const int32_t hi = lo + 1;
    int32_t n = hi - p < p - lo ? hi : lo;
    if (n == Trunc(g))
        --n;
    return Trunc(n * 64.0 / division) + firstMeasure * stepsPerMeasure * 64;
}

int32_t Line::LastTimeIn(int32_t first, int32_t last) const {
    const int32_t i = points->FindLast(first, last);
    return i < 0 ? -1 : points->items[i].time;
}

// The catch distance grows with the zoom: two units for each measure shown.
int32_t Line::CatchNeighbour(int32_t t) const {
    const int32_t d = 2 * visibleMeasures;
    int32_t caught = LastTimeIn(t - d, t);
    if (caught < 0)
        caught = LastTimeIn(t, t + d);
    return caught < 0 ? t : caught;
}

void Line::OnLButtonDown(uint32_t flags, int32_t x, int32_t y) {
    dragArmed = 0;
    measureDrag = 0;
    const AxisHit hit = AxisAt(x, y);
    if (!hit.counts)
        return;
    // Control: the finest grid and no catching, so that a note can stand
    // right beside another.
    int32_t t = TimeAtPoint(hit.a, flags == LeftControl ? 64 : filter);
    if (flags != LeftControl) {
        t = CatchNeighbour(t);
        if (flags == LeftShift) {
            eraseStart = t;
            ErasePoint(t);
            ClearSelection();
            rememberedFirst = -1;
            return;
        }
        if (flags != Left)
            return;
    }
    // A press on the first point of the selection that this press has just
    // dropped brings it back and arms the drag; the release moves it.
    if (t == rememberedFirst) {
        selectionFirst = rememberedFirst;
        selectionLast = rememberedLast;
        Highlight();
        Repaint();
        eraseStart = -1;
        dragArmed = 1;
        return;
    }
    eraseStart = -1;
    DropPoint(t);
}

void Line::OnLButtonUp(uint32_t flags, int32_t x, int32_t y) {
    const AxisHit hit = AxisAt(x, y);
    if (!hit.counts)
        return;
    const int32_t t = TimeAtPoint(hit.a, filter);
    if (flags == Shift && eraseStart != -1) {
        const int32_t n = CopyRangeInto(std::min(eraseStart, t), std::max(eraseStart, t), work);
        TakeOff(work, n);
        rememberedFirst = -1;
        Repaint();
    } else if (dragArmed == 1 && flags != Control) {
        MoveSelection(t);
    }
    eraseStart = -1;
    dragArmed = 0;
}

void Line::DropWithDivision(int32_t division, int32_t x, int32_t y) {
    const int32_t kept = filter;
    filter = division;
    OnLButtonDown(Left, x, y);
    filter = kept;
}

// A press near a point selects it; elsewhere only a range is begun, which the
// release finishes.
void Line::OnRButtonDown(uint32_t flags, int32_t x, int32_t y) {
    const AxisHit hit = AxisAt(x, y);
    if (!hit.counts)
        return;
    dragArmed = 0;
    measureDrag = 0;
    const int32_t t = TimeAtPoint(hit.a, flags == RightControl ? 64 : filter);
    const int32_t d = 2 * visibleMeasures;
    int32_t near = LastTimeIn(t - d, t);
    if (near < 0)
        near = LastTimeIn(t, t + d);
    selectionFirst = selectionLast = near < 0 ? t : near;
    if (near >= 0)
        Highlight();
    Repaint();
}

// The grid is the filter's, whatever keys are held.
void Line::OnRButtonUp(uint32_t, int32_t x, int32_t y) {
    const int8_t measure = measureDrag;
    measureDrag = 0;
    const AxisHit hit = AxisAt(x, y);
    if (measure < 0 || !hit.counts)
        return;
    const int32_t u = stepsPerMeasure * 64;
    if (measure > 0) {
        // Extends a measure's selection to the measure of the release.
        const int32_t e = Trunc(hit.a * visibleMeasures) * u + firstMeasure * u;
        const int32_t s = (measure - 1) * u;
        if (e == s)
            return;
        selectionFirst = std::min(e, s);
        selectionLast = std::max(e, s) + u - 1;
        StartRangeOnPoint();
        if (pointsHighlighted == 0)
            Highlight();
        Repaint();
        return;
    }
    const int32_t t = TimeAtPoint(hit.a, filter);
    if (selectionFirst == -1 || selectionFirst == t)
        return;
    const int32_t d = 2 * visibleMeasures;
    const int32_t near = t > selectionFirst ? LastTimeIn(t, t + d) : LastTimeIn(t - d, t);
    selectionLast = near < 0 ? t : near;
    const bool pressedOnPoint = points->FindFirst(selectionFirst, selectionFirst) >= 0;
    if (selectionFirst > selectionLast)
        std::swap(selectionFirst, selectionLast);
    const int32_t first = points->FindFirst(selectionFirst, selectionLast);
    if (first < 0) {
        selectionFirst = -1; // a range with no point: nothing is highlighted
        return;
    }
    selectionFirst = points->items[first].time;
    if (!pressedOnPoint)
        Highlight();
    Repaint();
}

// With shift the whole line, else the measure under the pointer, which the
// release may extend to further measures.
void Line::OnRButtonDblClk(uint32_t flags, int32_t x, int32_t y) {
    const int32_t u = stepsPerMeasure * 64;
    if (flags == RightShift) {
        selectionFirst = 0;
        selectionLast = points->bound - 1;
        measureDrag = -1;
    } else {
        const AxisHit hit = AxisAt(x, y);
        if (!hit.counts)
            return;
        const int32_t m = Trunc(hit.a * visibleMeasures);
        measureDrag = static_cast<int8_t>(firstMeasure + m + 1);
        selectionFirst = firstMeasure * u + m * u;
        selectionLast = selectionFirst + u - 1;
    }
    StartRangeOnPoint();
    if (pointsHighlighted == 0)
        Highlight();
    Repaint();
}

// The step of the first note goes to the step under the pointer (free), or
// the notes keep their places in the measure and go to the measure under
// the pointer. Neither the filter nor the catching takes part.
void Line::PasteAt(uint8_t free, const PlayPoint* notes, int32_t count, int32_t x, int32_t y) {
    const AxisHit hit = AxisAt(x, y);
    if (!hit.counts || count == 0)
        return;
    const int32_t s = stepsPerMeasure;
    const int32_t offset =
        free == 1
            ? (firstMeasure * s - notes[0].time / 64) * 64 + Trunc(visibleMeasures * s * hit.a) * 64
            : Trunc(visibleMeasures * hit.a) * s * 64 + firstMeasure * s * 64;
    work.assign(notes, notes + count);
    for (PlayPoint& p : work) {
        p.time += offset;
        p.line = static_cast<uint8_t>(index);
    }
    PutOn(work.data(), count, true);
    Repaint();
}
