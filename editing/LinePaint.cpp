#include "editing/Line.h"

#include "engine/SoundBuffer.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr Font MeasureFont{"Times", 80};
constexpr Font PositionFont{"Times", 70};

int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}

// The row's rectangle and window in the terms the drawing uses: axis height
// c, drawing width w, s steps a measure, v measures shown from measure f.
struct LineFrame {
    int32_t left, top, right;
    int32_t h, c, w;
    int32_t s, v, f;

    // A height k of the row above the axis (below it for negative k),
    // truncated toward zero.
    int32_t Above(double k) const { return c - Trunc(h * k); }
    // The x of a time unit in the window.
    int32_t X(int32_t time) const {
        return Trunc((time - f * s * 64) / static_cast<double>(s * v * 64) * w) + left + 7;
    }
};

LineFrame FrameOf(const Line& line) {
    const Rect& r = line.rect;
    const int32_t h = r.bottom - r.top;
    return LineFrame{r.left,
                     r.top,
                     r.right,
                     h,
                     Trunc((r.bottom + r.top) * 0.5),
                     r.right - r.left - 17,
                     line.stepsPerMeasure,
                     line.visibleMeasures,
                     line.firstMeasure};
}

void DrawTick(Canvas& dc, int32_t x, const LineFrame& g, double k) {
    dc.DrawLine(Point2{x, g.Above(k)}, Point2{x, g.Above(-k)}, Black);
}

// Step ticks everywhere, measure ticks over them; from 12 measures on the
// ticks are shorter and only every fourth measure shown gets its number.
void DrawTicks(Canvas& dc, const LineFrame& g) {
    const bool wide = g.v >= 12;
    const double step = wide ? 0.08 : 0.15;
    const double measure = wide ? 0.18 : 0.25;
    const int32_t steps = g.s * g.v;
    char number[12];
    for (int32_t i = 0; i < steps; ++i) {
        const int32_t x = Trunc(i * g.w / static_cast<double>(steps)) + g.left + 7;
        DrawTick(dc, x, g, step);
        if (i % g.s != 0)
            continue;
        DrawTick(dc, x, g, measure);
        const int32_t shown = i / g.s;
        if (wide && shown % 4 != 0)
            continue;
        std::snprintf(number, sizeof number, "%i", g.f + shown + 1);
        dc.Text(Rect{x + 3, g.top, x + 25, g.Above(-measure)}, number, MeasureFont, TextSingleLine,
                Black);
    }
}

// Pixels that the first sample sounds at the present tempo; 0 without one.
double BarLength(const Line& line, const LineFrame& g) {
    if (line.sampleCount == 0)
        return 0.0;
    const double ms = line.samples[0].buffer->GetLengthMs();
    return ms / line.bank->GetStepMs() * (1.0 / (g.s * g.v)) * g.w;
}

// The length bar, which may reach the row's right edge but not beyond, then
// a thin right-pointing triangle, wider while 11 measures or fewer are shown.
void DrawPoint(Canvas& dc, const LineFrame& g, int32_t x, double bar, Color fill) {
    const int32_t end = Trunc(std::min(static_cast<double>(g.right), x + bar));
    dc.FillRect(Rect{x, g.Above(0.08), end, g.Above(-0.08)}, fill);
    const int32_t k = g.v <= 11 ? 3 : 1;
    const Point2 mark[4] = {{x, g.c}, {x, g.Above(0.35)}, {x + k, g.c}, {x, g.Above(-0.35)}};
    dc.Polygon(mark, 4, Black, fill);
}

// Where a time lies in its measure: the beat, and the part of a beat in
// quarter-note notation (a step is a quarter) or in fractions of a step.
void FormatPosition(char* out, size_t size, int32_t time, int32_t s, bool notational) {
    const int32_t q = time % (s * 64);
    const int32_t beat = q / 64 + 1;
    const int32_t r = q % 64;
    if (r == 0)
        std::snprintf(out, size, " %i / %i", beat, s);
    else if (r == 32)
        std::snprintf(out, size, " %i+%s", beat, notational ? "( 1/8 )" : "( 1/2 )");
    else if (r % 16 == 0)
        std::snprintf(out, size, notational ? " %i+( %i/16 )" : " %i+( %i/4 )", beat, r / 16);
    else if (r % 8 == 0)
        std::snprintf(out, size, notational ? " %i+( %i/32 )" : " %i+( %i/8 )", beat, r / 8);
    else
        std::snprintf(out, size, " %i+.%f ", beat, r * 0.015625);
}

// The rectangle from the row's top to just above the axis is measured to the
// text, filled white and written in, centred: in a low row the text reaches
// below that first rectangle, whole, over the axis.
void DrawPosition(Canvas& dc, const Line& line, const LineFrame& g, int32_t x, int32_t time) {
    char text[40];
    FormatPosition(text, sizeof text, time, g.s, line.notationalFractions == 1);
    dc.Text(Rect{x + 3, g.top, x + 55, g.Above(0.1)}, text, PositionFont,
            TextSingleLine | TextCenter | TextVCenter | TextOpaque | TextFitted, Black);
}

} // namespace

// Draws on the canvas of whichever thread changed the line, under the engine
// lock. The points are read straight from the list, which the lock keeps
// still, instead of a copy of the visible range.
void Line::Paint() {
    if (dc == nullptr)
        return;
    const LineFrame g = FrameOf(*this);
    dc->FillRect(rect, audible == 1 ? White : Gray);
    dc->DrawLine(Point2{g.left + 7, g.c}, Point2{g.right - 10, g.c}, Black);
    // Until the view gives the line its window there is nothing to scale by.
    if (g.v < 1)
        return;
    DrawTicks(*dc, g);
    const int32_t first = g.f * g.s * 64;
    const int32_t last = (g.f + g.v) * g.s * 64;
    const int32_t end = points->FindLast(first, last);
    const double bar = BarLength(*this, g);
    bool noted = false;
    int32_t notedX = 0;
    for (int32_t i = points->FindFirst(first, last); i >= 0 && i <= end; ++i) {
        const int32_t time = points->items[i].time;
        const int32_t x = g.X(time);
        const bool selected = selectionFirst <= time && time <= selectionLast;
        DrawPoint(*dc, g, x, bar, selected ? Gray : Black);
        if (time == selectionFirst) {
            noted = true;
            notedX = x;
        }
    }
    if (noted)
        DrawPosition(*dc, *this, g, notedX, selectionFirst);
}
