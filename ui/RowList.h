#pragma once

#include "ui/Row.h"

#include <cstdint>
#include <string>
#include <vector>

class Line;
class VolumePanel;

// The rows of the current instrument in stack order, with their highlights,
// the anchor of shift ranges and the first position on the screen. The
// commands that act on several lines at once work on its highlighted lines.
// Engine lock held; the key map reaches ToggleMute from the tick, where
// nothing here allocates.
class RowList {
  public:
    static constexpr int32_t StartCapacity = 20;
    static constexpr int32_t Growth = 5;

    RowList();
    virtual ~RowList() = default;

    // Starts a rebuild: entries are added anew, and a row that comes to stand
    // at a position it held before keeps that position's highlight.
    void BeginRebuild();
    void Add(const RowSlot& slot);
    void ClearHighlights();
    void Highlight(int32_t position);
    void ToggleHighlight(int32_t position);
    void HighlightRange(int32_t position);
    // The first highlighted line, else the first line of the list.
    Line* FirstHighlightedLine() const;
    void UnplaceAll();
    void StepControlGroup(int32_t direction);
    // The filter name common to the highlighted lines, "Multi" if they
    // differ, "no highlights" with none highlighted.
    std::string FilterText() const;
    // 1 to 8 becomes the filter of each highlighted line, -1 the filter 64;
    // other values are ignored.
    void SetFilter(int32_t value);
    // The control group of the first highlighted line; -2 with none.
    int32_t ControlGroup() const;
    void ToggleMute();
    // Removes every highlighted line from its instrument.
    void DeleteHighlighted();
    // The highlighted lines in list order, into out (cleared first).
    void HighlightedLines(std::vector<Line*>& out) const;

    int32_t Count() const { return count; }
    const RowSlot& At(int32_t position) const { return entries[position]; }
    bool Contains(const Row* row) const;

    int32_t firstVisible = 0;
    int32_t highlightedCount = 0;
    int32_t previousCount = 0;
    int32_t anchor = -1;
    int32_t nextIndex = 0;
    int32_t count = 0;
    int32_t capacity = StartCapacity;
    std::vector<RowSlot> entries; // capacity places, count in use
    // The popup volume panel, which a downward shift range adds lines to.
    VolumePanel* panel = nullptr;

  private:
    bool Inside(int32_t position) const { return position >= 0 && position < count; }
    void Set(int32_t position);
};
