#pragma once

#include "ui/Canvas.h"

#include <cstdint>

// Base of everything that stands in the view's stack of rows: sequencer box,
// pattern row and lines. The kind is a plain integer tested directly. A row
// draws only while placed on a canvas; when its state changes it asks for a
// repaint of its rectangle. All operations run with the engine lock held.
class Row {
  public:
    enum Kind : int32_t { LineRow = 3, SequencerRowKind = 4, PatternRowKind = 5 };

    // Mouse flags, compared for equality.
    enum MouseFlags : uint32_t { LeftButton = 1, RightButton = 2, Shift = 4, Control = 8 };

    explicit Row(int32_t kind) : type(kind) {}
    ~Row() = default;
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    virtual void OnLButtonDblClk(uint32_t, int32_t, int32_t) {}
    virtual void PanelDetached(void*) {}
    virtual void PanelAttached(void*) {}
    virtual void OnRButtonDblClk(uint32_t, int32_t, int32_t) {}
    virtual void OnRButtonUp(uint32_t, int32_t, int32_t) {}
    virtual void OnRButtonDown(uint32_t, int32_t, int32_t) {}
    virtual void OnLButtonUp(uint32_t, int32_t, int32_t) {}
    virtual const char* GetName() { return nullptr; }
    virtual void OnLButtonDown(uint32_t, int32_t, int32_t) {}
    // Draws the row on dc; does nothing while the row is not placed.
    virtual void Paint() {}

    // Stores the rectangle and the canvas, then draws. A sequencer box also
    // registers its clock cell.
    void Place(const Rect& r, Canvas* canvas);
    // Takes the row off the screen (and a sequencer box's clock cell away).
    void Unplace();
    // Asks for the row's rectangle to be drawn anew; nothing while unplaced.
    void Repaint() {
        if (dc != nullptr)
            dc->RequestRepaint(rect);
    }

    int32_t type;
    Canvas* dc = nullptr;
    Rect rect{0, 0, 0, 0};
};

// One row's place, in the view's row list or on the screen.
struct RowSlot {
    int32_t index = 0;
    int32_t left = 0, top = 0, right = 0, bottom = 0;
    Row* row = nullptr;
    int32_t type = 0;
    uint8_t highlighted = 0;
    uint8_t visible = 0;
};
