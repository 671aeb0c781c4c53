#pragma once

#include "ui/Row.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The rows of the current instrument in stack order, with their highlights
// and the first position on the screen. Engine lock held.
struct RowList {
    // Starts a rebuild: entries are appended anew, and a row that comes to
    // stand at a position it held before keeps that position's highlight.
    void BeginRebuild() {
        previous.swap(entries);
        entries.clear();
    }
    void Append(Row* row) {
        RowSlot slot;
        slot.index = static_cast<int32_t>(entries.size());
        slot.row = row;
        slot.type = row->type;
        const size_t at = entries.size();
        if (at < previous.size() && previous[at].row == row)
            slot.highlighted = previous[at].highlighted;
        entries.push_back(slot);
    }
    int32_t Count() const { return static_cast<int32_t>(entries.size()); }

    std::vector<RowSlot> entries;
    int32_t firstVisible = 0;

  private:
    std::vector<RowSlot> previous;
};
