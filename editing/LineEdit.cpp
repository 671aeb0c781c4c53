// The edits of a line's points: placing and erasing one, and the operations
// on the selection, a range of time. Every change goes to the line's list and
// to its bank, which puts it into the working pattern and, while that plays,
// into the schedule at once. Engine lock held; the key commands run in the
// tick and use the scratch arrays, so they allocate only to grow them.
#include "editing/Line.h"

#include "song/PatternBank.h"
#include "song/PlayPointList.h"

#include <algorithm>

namespace {

int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}

// The field of a play point that a value code names.
int16_t* FieldOf(PlayPoint& p, int32_t code) {
    switch (code) {
    case FieldVolume:
        return &p.volume;
    case FieldPitch:
        return &p.pitch;
    case FieldPan:
        return &p.pan;
    case FieldLength:
        return &p.length;
    case FieldToeIn:
        return &p.toeIn;
    default:
        return nullptr;
    }
}

} // namespace

const char* Line::FilterName(int32_t value, uint8_t notational) {
    const bool n = notational == 1;
    switch (value) {
    case 1:
        return n ? "Quarter Notes" : "1 step";
    case 2:
        return n ? "Eighth Notes" : "1/2 step";
    case 4:
        return n ? "16th Notes" : "1/4 step";
    case 8:
        return n ? "32nd Notes" : "1/8 step";
    case 64:
        return n ? "Filter off" : "1/64 step (max)";
    default:
        return "Error";
    }
}

// The points of a range stand together in the sorted list.
int32_t Line::CopyRangeInto(int32_t first, int32_t last, std::vector<PlayPoint>& out) const {
    const int32_t from = points->FindFirst(first, last);
    if (from < 0) {
        out.clear();
        return 0;
    }
    const int32_t to = points->FindLast(first, last);
    out.assign(points->items + from, points->items + to + 1);
    return to - from + 1;
}

void Line::TakeOff(const std::vector<PlayPoint>& out, int32_t n) {
    if (n == 0)
        return;
    points->RemoveRange(out[0].time, out[n - 1].time);
    bank->RemovePoints(out.data(), n);
}

void Line::PutOn(const PlayPoint* sorted, int32_t n, bool replace) {
    points->InsertSorted(sorted, n, replace);
    if (replace)
        bank->ReplacePoints(sorted, n);
    else
        bank->AddPoints(sorted, n);
}

// A press on a note selects it instead of making a second one.
void Line::DropPoint(int32_t time) {
    if (points->count > 0 && points->FindFirst(time, time) >= 0) {
        if (selectionFirst == time)
            return;
        selectionFirst = selectionLast = time;
        Highlight();
        Repaint();
        return;
    }
    PlayPoint p = defaultNote;
    p.time = time;
    p.reserved = 0;
    p.line = static_cast<uint8_t>(index);
    points->Insert(p);
    bank->AddPoint(p);
    Repaint();
}

void Line::ErasePoint(int32_t time) {
    const int32_t i = points->FindFirst(time, time);
    if (i < 0)
        return;
    const PlayPoint p = points->items[i];
    points->Remove(p);
    bank->RemovePoint(p);
    Repaint();
}

// The scratch array takes room for every point of the line here, where a
// selection begins by the mouse, so that the key commands on it need none.
void Line::Highlight() {
    work.reserve(static_cast<size_t>(points->count));
    bank->LineSelected(this);
    pointsHighlighted = 1;
}

void Line::Unhighlight() {
    dragArmed = 0;
    measureDrag = 0;
    pointsHighlighted = 0;
    rememberedFirst = selectionFirst;
    rememberedLast = selectionLast;
    selectionFirst = selectionLast = -1;
    Repaint();
}

// The range goes first, so that the view's dropping of the focus, which
// this reaches, finds nothing to remember.
void Line::ClearSelection() {
    selectionFirst = selectionLast = -1;
    bank->LineSelected(nullptr);
    pointsHighlighted = 0;
}

int32_t Line::SelectionMeasure() const {
    return Trunc(selectionFirst / static_cast<double>(stepsPerMeasure * 64));
}

PlayPoint Line::FirstSelectedPoint() const {
    const int32_t i = selectionFirst < 0 ? -1 : points->FindFirst(selectionFirst, selectionLast);
    return i < 0 ? defaultNote : points->items[i];
}

void Line::StartRangeOnPoint() {
    const int32_t i = points->FindFirst(selectionFirst, selectionLast);
    if (i >= 0)
        selectionFirst = points->items[i].time;
}

// The first point lands on t; the others keep their distances. Landing on
// other points merges with them and ends the selection.
void Line::MoveSelection(int32_t t) {
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, work);
    if (n > 0) {
        TakeOff(work, n);
        const int32_t f = work[0].time;
        const int32_t shift = t - f;
        const bool free = points->FindFirst(t, work[n - 1].time + shift) < 0;
        for (PlayPoint& p : work)
            p.time += shift;
        PutOn(work.data(), n, true);
        if (free) {
            selectionFirst = work[0].time;
            selectionLast = work[n - 1].time;
        } else {
            Unhighlight();
        }
    }
    rememberedFirst = -1;
    Repaint();
}

namespace {

// Whether a nudge would run into a point outside the selection or past an
// end of the pattern.
bool NudgeRefused(const PlayPointList& list, int32_t direction, int32_t f, int32_t l) {
    switch (direction) {
    case 1:
        return l + 1 >= list.bound || list.FindFirst(l + 1, l + 1) >= 0;
    case -1:
        return f - 1 < 0 || list.FindFirst(f - 1, f - 1) >= 0;
    case 2:
        return l + 8 >= list.bound || list.FindFirst(l + 1, l + 8) >= 0;
    case -2:
        return f - 8 < 0 || list.FindFirst(f - 8, f - 1) >= 0;
    default:
        return true;
    }
}

// A single point nudged by an eighth goes to the next line of the grid of
// eighths of a step, in the direction given.
int32_t NextEighth(int32_t time, int32_t direction) {
    if (direction > 0) {
        const int32_t r = time % 64;
        return time - r + 8 * (r / 8 + 1);
    }
    int32_t b = time / 64 * 64;
    int32_t u = time;
    if (time % 8 == 0) {
        u = time - 8;
        if (time % 64 == 0)
            b -= 64;
    }
    return b + 8 * ((u % 64) / 8);
}

} // namespace

// Audio thread (arrow keys) or GUI thread.
void Line::Nudge(int32_t direction) {
    if (nudgeGate == 0)
        return;
    nudgeGate = 0;
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, work);
    if (n == 0 || NudgeRefused(*points, direction, work[0].time, work[n - 1].time)) {
        nudgeGate = 1;
        return;
    }
    TakeOff(work, n);
    const bool eighth = direction == 2 || direction == -2;
    for (PlayPoint& p : work)
        p.time = eighth && n == 1 ? NextEighth(p.time, direction)
                                  : p.time + (eighth ? 4 * direction : direction);
    PutOn(work.data(), n, false);
    selectionFirst = work[0].time;
    selectionLast = work[n - 1].time;
    const int32_t u = stepsPerMeasure * 64;
    if (selectionFirst < firstMeasure * u || selectionFirst >= (firstMeasure + visibleMeasures) * u)
        Highlight(); // the view scrolls to the selection
    else
        Repaint();
    nudgeGate = 1;
}

// Audio thread (Escape, Backspace) or GUI thread.
void Line::DeleteSelection() {
    TakeOff(work, CopyRangeInto(selectionFirst, selectionLast, work));
    ClearSelection();
    Repaint();
}

namespace {
// Times from the start of the first point's measure.
void FromMeasureStart(std::vector<PlayPoint>& out, int32_t stepsPerMeasure) {
    if (out.empty())
        return;
    const int32_t u = stepsPerMeasure * 64;
    const int32_t b = out[0].time / u * u;
    for (PlayPoint& p : out)
        p.time -= b;
}
} // namespace

// Audio thread (control C) or GUI thread.
int32_t Line::CopySelection(std::vector<PlayPoint>& out) {
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, out);
    FromMeasureStart(out, stepsPerMeasure);
    Unhighlight();
    return n;
}

// Audio thread (control X) or GUI thread.
int32_t Line::CutSelection(std::vector<PlayPoint>& out) {
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, out);
    TakeOff(out, n);
    FromMeasureStart(out, stepsPerMeasure);
    Unhighlight();
    rememberedFirst = -1;
    Repaint();
    return n;
}

// Audio thread (numpad asterisk and period) or GUI thread. The block that
// repeats is every measure the selection touches, or with the pattern's
// repeat r above 1, r measures from the first point's measure.
void Line::FillFromSelection(uint8_t destructive, int32_t times) {
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, work);
    if (n < 1)
        return;
    const double u = stepsPerMeasure * 64;
    const int32_t r = bank->repeat;
    const int32_t f = work[0].time, l = work[n - 1].time;
    int32_t firstMeasure = Trunc(f / u);
    int32_t lastMeasure = Trunc(l / u);
    int32_t span = lastMeasure - firstMeasure + 1;
    if (r > 1) {
        firstMeasure = Trunc(f / (u * r) * r);
        lastMeasure = firstMeasure + r - 1;
        span = r;
    }
    if (times == 0) {
        const int32_t total = Trunc(points->bound / u);
        const double q = (total - lastMeasure) / static_cast<double>(span);
        times = Trunc(q) + (Trunc(q) == q ? 0 : 1);
    }
    const int32_t spanUnits = span * static_cast<int32_t>(u);
    if (destructive != 0) {
        const int32_t from = (lastMeasure + 1) * static_cast<int32_t>(u);
        const int32_t to = from + times * spanUnits;
        TakeOff(spare, CopyRangeInto(from, to, spare));
    }
    FillCopies(n, times, spanUnits);
    Repaint();
}

// Pass i writes the selection shifted by i spans, over the points of the
// same times. Passes that do not overlap go in together, in one merge.
void Line::FillCopies(int32_t n, int32_t times, int32_t spanUnits) {
    const bool overlap = work[n - 1].time - work[0].time >= spanUnits;
    spare.clear();
    for (int32_t i = 0; i < times; ++i) {
        for (int32_t k = 0; k < n; ++k) {
            PlayPoint p = work[k];
            p.time += i * spanUnits;
            spare.push_back(p);
        }
        if (overlap || i == times - 1) {
            PutOn(spare.data(), static_cast<int32_t>(spare.size()), true);
            spare.clear();
        }
    }
}

// Nothing moves, so the row is not painted; a playing pattern takes the new
// values at once.
void Line::SetNoteValue(int32_t code, int16_t value, bool toDefault) {
    if (toDefault) {
        if (int16_t* field = FieldOf(defaultNote, code))
            *field = value;
        return;
    }
    if (pointsHighlighted == 0)
        return;
    const int32_t n = CopyRangeInto(selectionFirst, selectionLast, work);
    if (n == 0 || FieldOf(work[0], code) == nullptr)
        return;
    TakeOff(work, n);
    for (PlayPoint& p : work)
        *FieldOf(p, code) = value;
    PutOn(work.data(), n, false);
}
