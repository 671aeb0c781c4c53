#pragma once

#include "editing/Line.h"
#include "song/SongFixture.h"

#include <sstream>
#include <string>
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
    // Gestures on the row, each "<op><pixel>[/<flags>]" with the pixel
    // counted from the axis start: L left press (flags 1; the view drops the
    // highlight first, as at every left press), l left release (0), R right
    // press (2), r right release, D right double click (2), Q a press with
    // the grid of the flags' division; and X DeleteSelection, N Nudge by
    // the number.
    void Run(const std::string& script) {
        std::istringstream in(script);
        std::string word;
        while (in >> word) {
            const char op = word[0];
            const size_t slash = word.find('/');
            const int32_t n = word.size() > 1 ? std::stoi(word.substr(1, slash - 1)) : 0;
            const int32_t given =
                slash == std::string::npos ? -1 : std::stoi(word.substr(slash + 1));
            const auto flags = [given](uint32_t plain) {
                return given < 0 ? plain : static_cast<uint32_t>(given);
            };
            if (op == 'L') {
                line->Unhighlight();
                line->OnLButtonDown(flags(1), X(n), Y);
            } else if (op == 'l') {
                line->OnLButtonUp(flags(0), X(n), Y);
            } else if (op == 'R') {
                line->OnRButtonDown(flags(2), X(n), Y);
            } else if (op == 'r') {
                line->OnRButtonUp(0, X(n), Y);
            } else if (op == 'D') {
                line->OnRButtonDblClk(flags(2), X(n), Y);
            } else if (op == 'Q') {
                line->DropWithDivision(given, X(n), Y);
            } else if (op == 'X') {
                line->DeleteSelection();
            } else if (op == 'N') {
                line->Nudge(n);
            }
        }
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
