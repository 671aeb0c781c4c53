#include "ui/RowList.h"

#include "editing/Line.h"
#include "editing/VolumePanel.h"

#include <algorithm>

RowList::RowList() : entries(StartCapacity) {}

void RowList::BeginRebuild() {
    previousCount = count;
    count = 0;
    nextIndex = 0;
    highlightedCount = 0;
}

// The entry at the new position still holds what stood there before the
// rebuild, so it can be compared in place.
void RowList::Add(const RowSlot& slot) {
    RowSlot& entry = entries[count];
    const uint8_t kept = count < previousCount && entry.row == slot.row ? entry.highlighted : 0;
    entry = slot;
    entry.highlighted = kept;
    entry.index = nextIndex++;
    if (kept)
        ++highlightedCount;
    if (++count == capacity) {
        capacity += Growth;
        entries.resize(static_cast<size_t>(capacity));
    }
}

void RowList::ClearHighlights() {
    for (int32_t i = 0; i < count; ++i)
        entries[i].highlighted = 0;
    highlightedCount = 0;
}

void RowList::Set(int32_t position) {
    if (!entries[position].highlighted) {
        entries[position].highlighted = 1;
        ++highlightedCount;
    }
}

void RowList::Highlight(int32_t position) {
    if (!Inside(position))
        return;
    Set(position);
    anchor = position;
}

void RowList::ToggleHighlight(int32_t position) {
    if (!Inside(position))
        return;
    if (entries[position].highlighted) {
        entries[position].highlighted = 0;
        --highlightedCount;
        return;
    }
    Set(position);
    anchor = position;
}

// Without an anchor the entry alone is set and the anchor stays unset, so
// the next shift click again sets one entry. The lines of a downward range
// also join the popup volume panel, each with the count so far.
void RowList::HighlightRange(int32_t position) {
    if (!Inside(position))
        return;
    if (anchor == -1) {
        entries[position].highlighted = 1;
        ++highlightedCount;
        return;
    }
    ClearHighlights();
    const int32_t from = std::min(anchor, position), to = std::max(anchor, position);
    for (int32_t i = from; i <= to; ++i) {
        Set(i);
        if (panel != nullptr && anchor < position && entries[i].type == Row::LineRow)
            panel->AddLine(static_cast<Line*>(entries[i].row),
                           static_cast<uint8_t>(highlightedCount - 1));
    }
}

Line* RowList::FirstHighlightedLine() const {
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].highlighted && entries[i].type == Row::LineRow)
            return static_cast<Line*>(entries[i].row);
    return count > 2 ? static_cast<Line*>(entries[2].row) : nullptr;
}

void RowList::UnplaceAll() {
    for (int32_t i = 0; i < count; ++i)
        entries[i].row->Unplace();
}

void RowList::StepControlGroup(int32_t direction) {
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].highlighted && entries[i].type == Row::LineRow)
            static_cast<Line*>(entries[i].row)->StepControlGroup(direction);
}

int32_t RowList::ControlGroup() const {
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].highlighted && entries[i].type == Row::LineRow)
            return static_cast<Line*>(entries[i].row)->controlGroup;
    return -2;
}

void RowList::ToggleMute() {
    for (int32_t i = 0; i < count; ++i) {
        if (!entries[i].highlighted || entries[i].type != Row::LineRow)
            continue;
        Line* line = static_cast<Line*>(entries[i].row);
        if (line->audible)
            line->Mute();
        else
            line->Unmute();
    }
}

void RowList::HighlightedLines(std::vector<Line*>& out) const {
    out.clear();
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].highlighted && entries[i].type == Row::LineRow)
            out.push_back(static_cast<Line*>(entries[i].row));
}

// Each removal rebuilds this list through the instrument's refresh, so the
// lines are collected first and each one looked up again before it goes.
void RowList::DeleteHighlighted() {
    std::vector<Line*> doomed;
    HighlightedLines(doomed);
    for (Line* line : doomed)
        if (Contains(line))
            line->Remove();
}

std::string RowList::FilterText() const {
    if (highlightedCount == 0)
        return "no highlights";
    std::string text;
    bool first = true;
    for (int32_t i = 0; i < count; ++i) {
        if (!entries[i].highlighted || entries[i].type != Row::LineRow)
            continue;
        const char* name = static_cast<Line*>(entries[i].row)->FilterName();
        if (first)
            text = name;
        else if (text != name)
            return "Multi";
        first = false;
    }
    return text;
}

void RowList::SetFilter(int32_t value) {
    if (value != -1 && (value < 1 || value > 8))
        return;
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].highlighted && entries[i].type == Row::LineRow)
            static_cast<Line*>(entries[i].row)->filter = value == -1 ? 64 : value;
}

bool RowList::Contains(const Row* row) const {
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].row == row)
            return true;
    return false;
}
