#include "song/PatternRow.h"

#include "song/PatternBank.h"

#include <cstdio>

namespace {

// Left edge of oval i, from the ovals' left end, over a span of `width`.
int32_t OvalEdge(int32_t i, int32_t width) {
    return static_cast<int32_t>(i * 0.0625 * width);
}

} // namespace

PatternRow::PatternRow(PatternBank* patterns) : Row(PatternRowKind), bank(patterns) {}

// The view reads the title under the engine lock and copies it before the
// next call, so one buffer serves every pattern row.
const char* PatternRow::GetName() {
    static char title[64];
    std::snprintf(title, sizeof title, "  Pattern  %i  (%i measures)", shown + 1,
                  bank->GetMeasures());
    return title;
}

void PatternRow::OnLButtonDown(uint32_t, int32_t x, int32_t y) {
    for (int32_t i = 0; i < OvalCount; ++i)
        if (ovals[i].Contains(x, y)) {
            Switch(i);
            return;
        }
}

// Does not repaint: the bank's refresh after the load repaints the view, this
// row with it. What plays stays as it is.
void PatternRow::Switch(int32_t number) {
    shown = static_cast<int8_t>(number);
    if (saveOnSwitch)
        bank->SaveWorking();
    bank->LoadPattern(number);
}

void PatternRow::ShowPattern(int32_t number) {
    if (number >= 0 && number <= 9)
        Switch(number);
}

void PatternRow::SetPlaying(int32_t number) {
    playing = static_cast<int8_t>(number);
    Repaint();
}

// The ovals span the row less 17 pixels, so they end 13 pixels before its
// right edge. The corners' ellipse is as large as the oval's left and top
// coordinates, which exceed the oval's size nearly everywhere and round it
// into an oval.
void PatternRow::Paint() {
    if (dc == nullptr)
        return;
    const int32_t width = rect.right - rect.left - 17;
    dc->FillRect(rect, White);
    dc->FrameRect(rect, Black);
    const Rect inner{rect.left + 4, rect.top + 4, rect.right - 4, rect.bottom - 4};
    if (playing >= 0)
        dc->FillRect(Rect{inner.left + OvalEdge(playing, width), rect.top,
                          inner.left + OvalEdge(playing + 1, width), rect.bottom},
                     Black);
    char number[4];
    for (int32_t i = 0; i < OvalCount; ++i) {
        Rect& oval = ovals[i];
        oval = Rect{inner.left + OvalEdge(i, width), inner.top, inner.left + OvalEdge(i + 1, width),
                    inner.bottom};
        dc->RoundRect(oval, oval.left, oval.top, Black, i == shown ? Gray : White);
        std::snprintf(number, sizeof number, "%i", i + 1);
        dc->Text(oval, number, CurrentFont, TextCenter, Black);
    }
}
