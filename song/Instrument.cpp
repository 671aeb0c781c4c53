#include "song/Instrument.h"

#include "editing/Line.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/InstrumentView.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"
#include "song/SampleRegistry.h"
#include "ui/Row.h"

Instrument::Instrument(InstrumentView* v)
    : view(v), bank(new PatternBank(&schedule, this)),
      registry(new SampleRegistry(&schedule, bank, this)), sequencer(new SequencerRow(this, bank)) {
    schedule.AttachSequencer(sequencer);
    sequencer->SwitchTo(0);
    sequencer->Stop();
}

Instrument::~Instrument() {
    schedule.DetachSequencer();
    delete bank;
    delete registry;
    delete sequencer;
}

// Rows in the order the view stacks them: the sequencer box, the pattern
// ovals, then the lines.
int32_t Instrument::NextRow(RowSlot& slot, bool first) {
    if (first)
        rowCursor = 0;
    Row* row = nullptr;
    if (rowCursor == 0)
        row = sequencer;
    else if (rowCursor == 1)
        row = bank->patternRow;
    else if (rowCursor - 2 < bank->GetLineCount())
        row = bank->GetLine(rowCursor - 2);
    if (row == nullptr)
        return 0;
    ++rowCursor;
    slot.row = row;
    slot.type = row->type;
    return 1;
}

// Sets one outer level on every line, or only on the lines of one group.
void Instrument::SetOuterLevels(int32_t which, double value, int32_t group) {
    for (int32_t i = 0; i < bank->GetLineCount(); ++i) {
        Line* line = bank->GetLine(i);
        if (group < 0 || line->controlGroup == group)
            line->SetOuterLevel(which, value);
    }
}

void Instrument::SetLevel(int32_t which, double value) {
    if (which == 0) {
        level = value;
        SetOuterLevels(0, on * value, -1);
    } else if (which >= 1 && which <= MaxGroups) {
        groupLevels[which - 1] = value;
        SetOuterLevels(1, value, which - 1);
    }
}

void Instrument::Mute() {
    on = 0;
    SetOuterLevels(0, 0.0, -1);
}

void Instrument::Unmute() {
    on = 1;
    SetOuterLevels(0, level, -1);
}

void Instrument::AddControlGroup() {
    if (controlCount >= MaxGroups)
        return;
    groupLevels[controlCount] = StartLevel;
    ++controlCount;
}

// The count never falls below 1: a line made with no group left would join
// group -1, which has no level.
void Instrument::RemoveControlGroup() {
    if (controlCount > 1 && bank->IsGroupFree(controlCount - 1))
        --controlCount;
}

SoundBuffer* Instrument::NewBufferForNewLine() {
    loadTarget = 0;
    return new SoundBuffer(this);
}

SoundBuffer* Instrument::NewBufferForLine(int32_t line) {
    loadTarget = line + 1;
    return new SoundBuffer(this);
}

void Instrument::SampleLoaded(SoundBuffer* buffer) {
    if (loadTarget != 0) {
        registry->Add(buffer->GetName(), buffer->GetPath(), buffer, loadTarget - 1);
        return;
    }
    const int32_t index = bank->AddLine();
    Line* line = bank->GetLine(index);
    line->SetOuterLevel(0, on * level);
    const int32_t group = line->controlGroup;
    line->SetOuterLevel(1, group >= 0 && group < MaxGroups ? groupLevels[group] : 0.0);
    registry->Add(buffer->GetName(), buffer->GetPath(), buffer, index);
    RefreshInstrument();
}

void Instrument::AttachView(InstrumentView* newView) {
    view = newView;
    SetOuterLevels(1, StartLevel, -1);
    Mute();
}

void Instrument::SetNumber(int32_t number) {
    sequencer->id = number;
    schedule.SetClockId(number);
}

void Instrument::RemoveLineSamples(int32_t line) {
    registry->RemoveLine(line);
}

void Instrument::RemoveEntry(const std::string& n, const std::string& path, SoundBuffer* buffer,
                             int32_t line) {
    registry->RemoveEntry(n, path, buffer, line);
}

void Instrument::RefreshInstrument() {
    if (view != nullptr)
        view->RefreshInstrument();
}

void Instrument::PatternLengthChanged() {
    if (view != nullptr)
        view->PatternLengthChanged();
}

void Instrument::LineSelected(Line* line) {
    if (view != nullptr)
        view->LineSelectionChanged(line);
}

void Instrument::FocusSequencer(SequencerRow* row) {
    if (view != nullptr)
        view->FocusSequencer(row);
}

void Instrument::AddFocusSequencer(SequencerRow* row) {
    if (view != nullptr)
        view->AddFocusSequencer(row);
}
