#include "ui/Row.h"

#include "engine/ClockDisplay.h"

void Row::Place(const Rect& r, Canvas* canvas) {
    if (type == SequencerRowKind && theClockDisplay != nullptr)
        theClockDisplay->AddCell(this, r.left + 27, r.top + 5, r.left + 51, r.bottom - 4);
    rect = r;
    dc = canvas;
    Paint();
}

void Row::Unplace() {
    dc = nullptr;
    if (type == SequencerRowKind && theClockDisplay != nullptr)
        theClockDisplay->RemoveCell(this);
}
