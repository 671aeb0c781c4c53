#pragma once

#include "editing/SamplePanel.h"
#include "editing/VolumePanel.h"
#include "song/InstrumentView.h"
#include "song/PlayPoint.h"
#include "ui/Canvas.h"
#include "ui/RowList.h"
#include "ui/ScrollBar.h"

#include <cstdint>
#include <string>
#include <vector>

class Instrument;
class Line;

// The frame's operations that the view and the keys ask for, in the order
// asked. Line bars and note bars name their line.
enum class FrameAsk : uint8_t {
    EmptyBar,
    ToggleViewBar,
    TimersBar,
    LineBar,
    MultiLineBar,
    InstrumentBar,
    PatternBar,
    RefreshPatternBar,
    DefaultNoteBar,
    SelectionNoteBar,
    LoadWaves,
    LoadSamples, // into the sample panel's line
};

// What the view asks of its window. Called with the engine lock held, also
// from the tick (keys): an implementation only raises flags or queues, and
// the GUI thread does the window work.
class ViewHost {
  public:
    virtual ~ViewHost() = default;
    // The whole view is to be drawn anew.
    virtual void RequestRepaint() = 0;
    // The scroll bars or the layout of the window's parts changed.
    virtual void ScrollBarsChanged() = 0;
    virtual void AskFrame(FrameAsk ask, Line* line = nullptr) = 0;
    // The panels were refilled, shown or hidden.
    virtual void PanelsChanged() {}
};

// The view's logic and drawing: the list of open instruments, which one is on
// the screen, its rows stacked in screen slots, the view modes, the zooms and
// the two scroll positions. It draws on a Canvas; the window replays that.
// Every operation runs with the engine lock held.
class MainView : public InstrumentView, public PanelView {
  public:
    enum Mode : uint8_t { LineDetail = 1, Insts = 2 };
    // The level the first instrument gets at start; every other new or
    // loaded instrument starts at 0.0.
    static constexpr double FirstInstrumentLevel = 0.9;
    enum ScrollEvent { LineUp, LineDown, PageUp, PageDown, ThumbTrack, ThumbRelease };

    explicit MainView(ViewHost* host);
    ~MainView() override;
    MainView(const MainView&) = delete;
    MainView& operator=(const MainView&) = delete;

    void NewInstrument();
    void AddInstrument(Instrument* instrument);
    void CloseInstrument();
    void SelectInstrument(int32_t index);
    void RebuildRowList();
    void RefreshInstrument() override;
    void PatternLengthChanged() override;
    // A line got a selection (it takes the key focus and shows it on the
    // note bar) or lost it (null: the focus is dropped).
    void LineSelectionChanged(Line* line) override;
    void FocusSequencer(SequencerRow* sequencer) override;
    void AddFocusSequencer(SequencerRow* sequencer) override;
    void DropFocus();
    // Arrow keys, Grave and the top-row digits.
    void OnInstrumentKey(uint32_t scanCode, bool shiftDown);
    void SetSlotCount(int32_t count);
    void SelectZoom1() { SelectZoom12(1, zoom1Measures); }
    void SelectZoom2() { SelectZoom12(2, zoom2Measures); }
    void SelectZoom3();
    void ChangeZoom(int32_t which, int32_t direction);
    void ScrollMeasure(int32_t direction);
    void SetViewMode(int32_t mode);
    void RegisterCurrentPlayhead();
    void PushNotationalFractions();
    double TempoStepMs() const;
    void SetTempoAll(double stepMs);
    void SkipAll(int32_t ticks);
    void VerticalScroll(ScrollEvent event, int32_t track);
    void HorizontalScroll(ScrollEvent event, int32_t track);
    // The panels (ui/MainViewPanels.cpp). Refills every panel from the
    // model and tells the window.
    void RefreshPanels() override;
    // RefreshInstrument, then the names of the top band, after a rename.
    void RefreshInstrumentAndNames();
    // The tab key, in the tick: the popup panel with the highlighted lines.
    void ShowPopupVolumePanel();
    void HidePopupVolumePanel();
    void AddHighlightedToPanel();
    // A right click on a line's name cell: the line alone in the popup panel.
    void MakePopupLine(Line* line);
    // Whether line is a line of any open instrument.
    bool IsLineOfAny(const Line* line) const;
    // For a drop of files: the line whose name cell holds (x, y), and
    // whether (x, y) is on an empty row of the name column (Line Detail).
    Line* NameCellLine(int32_t x, int32_t y) const { return NameColumnLine(x, y); }
    bool IsEmptyNameCell(int32_t x, int32_t y) const;
    // Fills the top panel with every instrument and takes lines that are no
    // longer in any instrument out of the other two panels.
    void RefreshPanelLists();
    // Fills the screen slots from the model at once, so that hit tests and
    // the key focus see the new rows, and asks the window for a paint.
    void Repaint();

    void AskFrame(FrameAsk ask, Line* line = nullptr) { host->AskFrame(ask, line); }
    void ToggleMute() { rowList.ToggleMute(); }
    void DeleteHighlighted();
    std::string FilterText() const { return rowList.FilterText(); }
    void SetFilter(int32_t value) { rowList.SetFilter(value); }
    // The line a note bar control acts on: yields it once per run, which
    // restart begins. Returns 1 with outLine set, else 0.
    int32_t NextNoteTarget(Line*& outLine, bool restart);
    // A note bar control: the value goes to the target line's selection, or
    // to its default note while no line has the key focus. Returns the
    // target, null with none.
    Line* SetNoteValue(int32_t code, int16_t value);
    // Audio thread (keys C, X with control, numpad asterisk and period): the
    // two-key fills and the note clipboard of the focused line.
    void OnSelectionKey(uint32_t scanCode);
    // The focused line, null unless a line has the key focus.
    Line* FocusedLine() const;
    void StepControlGroup(int32_t direction) { rowList.StepControlGroup(direction); }
    int32_t ControlGroup() const { return rowList.ControlGroup(); }
    // Whether line is a row of the current instrument; a line named in a
    // queued bar request may have gone before the window takes it.
    bool HoldsLine(const Line* line) const;

    // The mouse in the view (ui/MainViewMouse.cpp): flags are the buttons
    // held and the modifiers, compared for equality.
    void OnLButtonDown(uint32_t flags, int32_t x, int32_t y);
    void OnLButtonUp(uint32_t flags, int32_t x, int32_t y);
    void OnLButtonDblClk(uint32_t flags, int32_t x, int32_t y);
    void OnRButtonDown(uint32_t flags, int32_t x, int32_t y);
    void OnRButtonUp(uint32_t flags, int32_t x, int32_t y);
    void OnRButtonDblClk(uint32_t flags, int32_t x, int32_t y);

    // Draws the whole view for a client area of width by height pixels and
    // places the visible rows on the canvas, which they keep until the next
    // paint. GUI thread.
    void Paint(Canvas& canvas, int32_t width, int32_t height);

    Instrument* Current() const { return instruments[currentInstrument]; }

    uint8_t notationalFractions = 1;
    int32_t instrumentSerial = 0;
    uint8_t viewMode = LineDetail;
    uint8_t pasteMode = 0;
    uint8_t dropFilterKey = 0;
    uint8_t fillKeyState = 0;
    // The note clipboard: times from the start of the first note's measure,
    // line 0. Its array only grows, so a copy in the tick rarely allocates.
    int32_t clipboardCount = 0;
    std::vector<PlayPoint> clipboardNotes;
    int32_t focusKind = -1;
    int32_t focusSlot = -1;
    int32_t zoom3Position = 0;
    int32_t zoom12Position = 0;
    ScrollBar hScrollBar;
    ScrollBar vScrollBar;
    int32_t zoom3Measures = -1;
    int32_t zoom2Measures = 4;
    int32_t zoom1Measures = 2;
    int32_t zoomMode = 1;
    Rect clientRect{}, topBandRect{}, nameBoxRect{}, topPanelRect{};
    Rect zoomBoxRects[3] = {};
    Rect nameColumnRect{}, rowColumnRect{}, hScrollRect{};
    Rect nameCells[3] = {};
    uint8_t slotsLaidOut = 0;
    std::string instrumentNames[3];
    int32_t currentInstrument = 0;
    RowList rowList;
    std::vector<RowSlot> slots;
    int32_t slotCount = 15;
    std::vector<Instrument*> instruments;
    double split = 0.225;
    SamplePanel samplePanel{this};
    VolumePanel popupVolumePanel{this, true};
    VolumePanel topVolumePanel{this, false};
    uint8_t popupShown = 0; // the popup panel is on the screen

  private:
    void SelectZoom12(int32_t mode, int32_t width);
    void ApplyZoom();
    void SetLineWindow(int32_t measures, int32_t first);
    int32_t PatternMeasures() const;
    void SetVerticalBar();
    void ClearSlots();
    void UnplaceListRows();
    void ComputeRects(int32_t width, int32_t height);
    void LayOutSlots();
    void FillSlots();
    void PaintTopBand(Canvas& canvas);
    void StoreHorizontal(int32_t position);
    void MoveToInstrument(int32_t index);
    void ClickNameColumn(uint32_t flags, int32_t y);
    void ClickRowColumn(uint32_t flags, int32_t x, int32_t y);
    // The screen slot whose cell holds y strictly inside; -1 on an edge or
    // outside the stack.
    int32_t SlotAt(int32_t y) const;
    // The row of the visible slot at (x, y) in the row column, after the
    // gutter rule when gutter is set.
    Row* RowColumnHit(int32_t& x, int32_t y, bool gutter) const;
    Line* LineColumnHit(int32_t& x, int32_t y) const;
    Line* NameColumnLine(int32_t x, int32_t y) const;

    ViewHost* host;
    // NextNoteTarget's countdown.
    int32_t noteTargetCount = 0;
};
