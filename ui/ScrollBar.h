#pragma once

#include <cstdint>

// The state of a scroll bar as the view's logic sees it: a range, a page and
// a position that stays between the minimum and maximum - page + 1. A page
// larger than the range is cut to the range's size; a page of -1 is the
// largest there is. The window side mirrors it on the screen.
struct ScrollBar {
    int32_t minimum = 0;
    int32_t maximum = 0;
    int32_t page = 1;
    int32_t position = 0;

    void SetRange(int32_t low, int32_t high) {
        minimum = low;
        maximum = high < low ? low : high;
        SetPage(page);
    }
    void SetPage(int32_t p) {
        const int32_t size = maximum - minimum + 1;
        page = p < 0 || p > size ? size : p;
        SetPosition(position);
    }
    void SetPosition(int32_t p) {
        const int32_t last = maximum - page + 1;
        position = p > last ? last : p;
        if (position < minimum)
            position = minimum;
    }
};
