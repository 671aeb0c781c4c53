#pragma once

#include "editing/Line.h"
#include "song/SongFixture.h"

#include <vector>

// One line of an instrument, placed so that its time axis is 1024 pixels
// wide from x 7: with 4 measures shown and the filter at 64, a press at
// x = 7 + t lands on time t. The row's centre line is at y 120.
struct LineFixture {
    static constexpr int32_t Y = 120;

    explicit LineFixture(int32_t units = 1024) {
        inst = &song.AddInstrument(1);
        bank = inst->GetBank();
        SongFixture::Store(*inst, 0, {}, units);
        line = bank->GetLine(0);
        line->rect = Rect{0, 100, 1041, 140};
        line->SetWindow(4, 0);
        line->filter = 64;
    }
    static int32_t X(int32_t px) { return 7 + px; }

    // Replaces the pattern on display with points of line 0 at these times.
    void SetTimes(const std::vector<int32_t>& times) {
        PlayPointList list(bank->working.bound);
        for (int32_t t : times)
            list.Insert(SongFixture::Point(t, 0));
        bank->SetPattern(bank->GetCurrentPattern(), list);
    }
    std::vector<int32_t> Times() const {
        std::vector<int32_t> out;
        for (int32_t i = 0; i < line->points->count; ++i)
            out.push_back(line->points->items[i].time);
        return out;
    }
    // The working pattern's times, which must always match the line's.
    std::vector<int32_t> WorkingTimes() const {
        std::vector<int32_t> out;
        for (int32_t i = 0; i < bank->working.count; ++i)
            out.push_back(bank->working.items[i].time);
        return out;
    }
    void Select(int32_t first, int32_t last) {
        line->selectionFirst = first;
        line->selectionLast = last;
        line->pointsHighlighted = 1;
    }

    SongFixture song;
    Instrument* inst;
    PatternBank* bank;
    Line* line;
};
