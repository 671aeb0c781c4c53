#include "ui/MainView.h"

#include "editing/Line.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/SequencerRow.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"

#include <algorithm>
#include <cstdio>

namespace {
// Instruments named "Inst %i" so far in this run; the numbers go on after a
// close.
int32_t instrumentsNamed = 0;
// The measure count of the current pattern last seen by PatternLengthChanged.
int32_t measuresSeen = 0;
} // namespace

MainView::MainView(ViewHost* h) : slots(15), host(h) {
    rowList.panel = &popupVolumePanel;
    NewInstrument();
    instruments[0]->SetLevel(0, FirstInstrumentLevel);
}

MainView::~MainView() {
    for (Instrument* i : instruments) {
        if (theEngine != nullptr)
            theEngine->RemovePlayhead(i->GetSchedule()->GetPlayhead());
        delete i;
    }
}

void MainView::NewInstrument() {
    Instrument* inst = new Instrument(this);
    instruments.push_back(inst);
    inst->SetNumber(++instrumentSerial);
    char name[32];
    std::snprintf(name, sizeof name, "Inst %i", ++instrumentsNamed);
    inst->SetName(name);
    SelectInstrument(static_cast<int32_t>(instruments.size()) - 1);
    RebuildRowList();
    if (instruments.size() == 1)
        return; // the first one comes before any window exists
    RegisterCurrentPlayhead();
    RefreshInstrument();
    Repaint();
}

void MainView::AddInstrument(Instrument* instrument) {
    instruments.push_back(instrument);
    instrument->SetNumber(++instrumentSerial);
    SelectInstrument(static_cast<int32_t>(instruments.size()) - 1);
    RebuildRowList();
    instrument->AttachView(this);
    RegisterCurrentPlayhead();
    RefreshInstrument();
    Repaint();
}

void MainView::CloseInstrument() {
    if (instruments.size() < 2)
        return;
    // A line of the instrument must not stay the keys' target.
    if (FocusedLine() != nullptr)
        DropFocus();
    Instrument* gone = Current();
    if (viewMode == LineDetail)
        UnplaceListRows();
    gone->GetSequencer()->Unplace();
    theEngine->RemovePlayhead(gone->GetSchedule()->GetPlayhead());
    instruments.erase(instruments.begin() + currentInstrument);
    delete gone;
    SelectInstrument(static_cast<int32_t>(instruments.size()) - 1);
    RebuildRowList();
    RefreshInstrument();
    Repaint();
    host->AskFrame(FrameAsk::InstrumentBar);
}

void MainView::SelectInstrument(int32_t index) {
    const int32_t count = static_cast<int32_t>(instruments.size());
    if (index < 0 || index >= count)
        return;
    currentInstrument = index;
    instrumentNames[0] = index > 0 ? instruments[index - 1]->GetName() : "";
    instrumentNames[1] = instruments[index]->GetName();
    instrumentNames[2] = index + 1 < count ? instruments[index + 1]->GetName() : "";
}

void MainView::RebuildRowList() {
    rowList.BeginRebuild();
    for (RowSlot& s : slots)
        s.visible = 0;
    RowSlot slot;
    for (bool first = true; Current()->NextRow(slot, first); first = false)
        rowList.Add(slot);
    SetVerticalBar();
}

void MainView::SetVerticalBar() {
    vScrollBar.SetRange(0, rowList.Count() - 1);
    vScrollBar.SetPage(slotCount);
    host->ScrollBarsChanged();
}

int32_t MainView::PatternMeasures() const {
    return Current()->GetBank()->GetMeasures();
}

void MainView::RefreshInstrument() {
    RebuildRowList();
    hScrollBar.SetRange(0, PatternMeasures() - 1);
    if (zoomMode == 1)
        SelectZoom1();
    else if (zoomMode == 2)
        SelectZoom2();
    else
        SelectZoom3();
    RefreshPanelLists();
    Repaint();
}

void MainView::PatternLengthChanged() {
    host->AskFrame(FrameAsk::RefreshPatternBar);
    if (PatternMeasures() == measuresSeen)
        return;
    measuresSeen = PatternMeasures();
    RefreshInstrument();
}

void MainView::SetSlotCount(int32_t count) {
    if (count < 1)
        return;
    slots.resize(static_cast<size_t>(count));
    slotCount = count;
    slotsLaidOut = 0;
    if (count >= rowList.Count()) {
        rowList.firstVisible = 0;
        vScrollBar.position = 0;
    }
    SetVerticalBar();
}

void MainView::SetLineWindow(int32_t measures, int32_t first) {
    Current()->GetBank()->SetLineWindow(measures, first);
}

// Zooms 1 and 2 share one remembered position. When a line has the key focus
// the window goes to where its selection starts, and that is remembered.
void MainView::SelectZoom12(int32_t mode, int32_t width) {
    zoomMode = mode;
    hScrollBar.SetPage(width);
    if (const Line* line = FocusedLine()) {
        hScrollBar.SetPosition(line->SelectionMeasure());
        zoom12Position = hScrollBar.position;
    } else {
        hScrollBar.SetPosition(zoom12Position);
    }
    SetLineWindow(std::min(width, PatternMeasures()), hScrollBar.position);
    host->ScrollBarsChanged();
    Repaint();
}

void MainView::SelectZoom3() {
    zoomMode = 3;
    hScrollBar.SetPage(zoom3Measures);
    hScrollBar.SetPosition(zoom3Position);
    const int32_t measures = PatternMeasures();
    SetLineWindow(zoom3Measures == -1 ? measures : std::min(zoom3Measures, measures),
                  hScrollBar.position);
    host->ScrollBarsChanged();
    Repaint();
}

void MainView::ChangeZoom(int32_t which, int32_t direction) {
    if (which == 1 && direction == 1 && zoom1Measures < 4)
        ++zoom1Measures;
    else if (which == 1 && direction == 0 && zoom1Measures > 1)
        --zoom1Measures;
    else if (which == 2 && direction == 1 && zoom2Measures < 32)
        ++zoom2Measures;
    else if (which == 2 && direction == 0 && zoom2Measures > 2)
        --zoom2Measures;
    else if (which == 3 && direction == 3)
        zoom3Measures = -1;
    else if (which == 3 && zoom3Measures == -1)
        zoom3Measures = 32;
    else if (which == 3 && direction == 1)
        zoom3Measures = std::min(zoom3Measures + 1, 128);
    else if (which == 3 && direction == 0)
        zoom3Measures = std::max(zoom3Measures - 1, 4);
    ApplyZoom();
}

// Applies the active zoom's width again, without a repaint.
void MainView::ApplyZoom() {
    const int32_t width =
        zoomMode == 1 ? zoom1Measures : (zoomMode == 2 ? zoom2Measures : zoom3Measures);
    hScrollBar.SetPage(width);
    const int32_t measures = PatternMeasures();
    SetLineWindow(width == -1 ? measures : std::min(width, measures), hScrollBar.position);
    host->ScrollBarsChanged();
}

void MainView::StoreHorizontal(int32_t position) {
    hScrollBar.SetPosition(position);
    if (zoomMode == 3)
        zoom3Position = hScrollBar.position;
    else
        zoom12Position = hScrollBar.position;
    SetLineWindow(hScrollBar.page, hScrollBar.position);
    host->ScrollBarsChanged();
    Repaint();
}

void MainView::HorizontalScroll(ScrollEvent event, int32_t track) {
    const ScrollBar& b = hScrollBar;
    const int32_t last = b.maximum - (b.page - 1);
    switch (event) {
    case LineUp:
        if (b.position >= 1)
            StoreHorizontal(b.position - 1);
        break;
    case LineDown:
        if (b.position < last)
            StoreHorizontal(b.position + 1);
        break;
    case PageUp:
        StoreHorizontal(b.position - b.page);
        break;
    case PageDown:
        StoreHorizontal(b.position + b.page);
        break;
    case ThumbTrack:
        if (track >= 0 && track <= last)
            StoreHorizontal(track);
        break;
    default:
        break;
    }
}

void MainView::ScrollMeasure(int32_t direction) {
    HorizontalScroll(direction < 0 ? LineUp : LineDown, 0);
}

void MainView::VerticalScroll(ScrollEvent event, int32_t track) {
    ScrollBar& b = vScrollBar;
    const int32_t last = b.maximum - (b.page - 1);
    int32_t to = -1;
    if (event == LineUp && rowList.firstVisible != 0)
        to = rowList.firstVisible - 1;
    else if (event == LineDown && b.position < last)
        to = b.position + 1;
    else if (event == ThumbTrack && track >= 0 && track <= last)
        to = track;
    if (to < 0)
        return;
    rowList.firstVisible = to;
    b.position = to;
    RebuildRowList();
    Repaint();
}

void MainView::ClearSlots() {
    for (RowSlot& s : slots) {
        s.highlighted = 0;
        s.visible = 0;
    }
}

void MainView::UnplaceListRows() {
    rowList.UnplaceAll();
}

void MainView::SetViewMode(int32_t mode) {
    if (mode < 1 || mode > 3)
        return;
    if (mode != viewMode && theClockDisplay != nullptr)
        theClockDisplay->Clear();
    if (viewMode == Insts) {
        if (mode != Insts)
            DropFocus();
        ClearSlots();
        for (Instrument* i : instruments)
            i->GetSequencer()->Unplace();
        SelectInstrument(currentInstrument);
        RebuildRowList();
    } else {
        ClearSlots();
        UnplaceListRows();
    }
    viewMode = static_cast<uint8_t>(mode);
    Repaint();
}

void MainView::RegisterCurrentPlayhead() {
    theEngine->AddPlayhead(Current()->GetSchedule()->GetPlayhead());
}

void MainView::PushNotationalFractions() {
    for (Instrument* i : instruments)
        i->GetBank()->SetLinesFractions(notationalFractions);
}

double MainView::TempoStepMs() const {
    return instruments.empty() ? 0.0 : instruments[0]->GetSchedule()->stepMs;
}

void MainView::SetTempoAll(double stepMs) {
    for (Instrument* i : instruments)
        i->GetSchedule()->SetTempo(stepMs);
}

void MainView::SkipAll(int32_t ticks) {
    for (Instrument* i : instruments)
        i->GetSchedule()->playhead.Skip(ticks);
}

void MainView::Repaint() {
    FillSlots();
    host->RequestRepaint();
}

bool MainView::HoldsLine(const Line* line) const {
    return line != nullptr && rowList.Contains(line);
}

// A deleted line cannot keep the key focus: the engine would send keys to it
// and the focus slot would name a row that is gone.
void MainView::DeleteHighlighted() {
    const Row* focused = focusSlot != -1 && focusKind == -1 ? slots[focusSlot].row : nullptr;
    for (int32_t i = 0; i < rowList.Count(); ++i)
        if (rowList.At(i).highlighted && rowList.At(i).row == focused)
            DropFocus();
    rowList.DeleteHighlighted();
}

void MainView::DropFocus() {
    if (Line* line = FocusedLine())
        line->Unhighlight();
    theEngine->ClearHighlights();
    host->AskFrame(FrameAsk::EmptyBar);
    focusSlot = -1;
    focusKind = -1;
    fillKeyState = 0;
}

Line* MainView::FocusedLine() const {
    if (focusSlot == -1 || focusKind != -1 || focusSlot >= static_cast<int32_t>(slots.size()) ||
        slots[focusSlot].visible == 0)
        return nullptr;
    Row* row = slots[focusSlot].row;
    return row != nullptr && row->type == Row::LineRow ? static_cast<Line*>(row) : nullptr;
}

void MainView::FocusSequencer(SequencerRow* sequencer) {
    DropFocus();
    for (size_t s = 0; s < slots.size(); ++s) {
        const RowSlot& slot = slots[s];
        if (slot.visible && slot.type == Row::SequencerRowKind && slot.row == sequencer) {
            focusSlot = static_cast<int32_t>(s);
            theEngine->AddHighlightedSequencer(sequencer);
            focusKind = -2;
            return;
        }
    }
}

void MainView::AddFocusSequencer(SequencerRow* sequencer) {
    if (focusKind != -2) {
        FocusSequencer(sequencer);
        return;
    }
    for (const RowSlot& slot : slots)
        if (slot.visible && slot.type == Row::SequencerRowKind && slot.row == sequencer) {
            theEngine->AddHighlightedSequencer(sequencer);
            return;
        }
}

void MainView::MoveToInstrument(int32_t index) {
    if (index < 0 || index >= static_cast<int32_t>(instruments.size()))
        return;
    const bool refocus = focusKind == -2 || viewMode == Insts;
    SelectInstrument(index);
    RebuildRowList();
    Repaint();
    if (!refocus)
        return;
    DropFocus();
    Current()->GetSequencer()->FocusMainBox();
}

// Key codes of the arrows, Grave and the top-row digits 1 to 0.
void MainView::OnInstrumentKey(uint32_t scanCode, bool shiftDown) {
    constexpr uint32_t Up = 200, Down = 208, Grave = 41, One = 2, Zero = 11;
    if (scanCode == Up || scanCode == Down) {
        MoveToInstrument(currentInstrument + (scanCode == Up ? -1 : 1));
    } else if (scanCode == Grave) {
        Current()->GetSequencer()->RequestPattern(-1);
    } else if (scanCode >= One && scanCode <= Zero) {
        const int32_t number = static_cast<int32_t>(scanCode) - 1;
        if (shiftDown)
            Current()->GetSequencer()->RequestPattern(number);
        else
            Current()->GetBank()->patternRow->ShowPattern(number - 1);
    }
}
