#pragma once

#include "engine/SpscRing.h"
#include "ui/Canvas.h"

#include <cstdint>

class Row;

// One clock text to draw: measure and beat, or stopped when measure is 0.
struct ClockText {
    Rect rect;
    int32_t measure;
    int32_t beat;
};

// The clock texts of one refresh, in drawing order.
struct ClockFrame {
    int32_t count;
    ClockText texts[30];
};

// The registry of the clock cells in the sequencer boxes on the screen, and
// the hand-over of the tick's clock values to the screen. Cells are
// registered while rows are placed; every 32nd tick Update turns the values
// into a frame of texts that the GUI thread takes and draws, when it differs
// from the last frame handed over: while the clocks stand, nothing is sent
// and nothing is drawn. All operations
// run with the engine lock held; TakeFrame is the GUI side and needs none.
class ClockDisplay {
  public:
    static constexpr int32_t MaxCells = 30;

    void AddCell(Row* owner, int32_t left, int32_t top, int32_t right, int32_t bottom);
    void RemoveCell(Row* owner);
    void Clear() { count = 0; }
    // Audio thread: no waits, no allocation. A frame equal to the last one
    // handed over is not sent. A frame that finds the queue full is dropped;
    // it is sent again 160 ms later.
    void Update(const int32_t* measures, const int32_t* beats, const int32_t* instrumentIds,
                int32_t n);
    // GUI thread: the newest frame, if one came since the last call.
    bool TakeFrame(ClockFrame& frame);

    int32_t ids[MaxCells] = {};
    int32_t count = 0;
    Row* owners[MaxCells] = {};
    Rect rects[MaxCells] = {};

  private:
    ClockFrame pending{};
    ClockFrame sent{-1, {}}; // the last frame handed over; none yet
    SpscRing<ClockFrame, 8> frames;
};

// The one clock display of the program, set up at start.
extern ClockDisplay* theClockDisplay;
