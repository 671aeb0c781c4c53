#pragma once

#include "engine/ClockDisplay.h"
#include "engine/SpscRing.h"
#include "ui/FrameCommands.h"
#include "ui/MainView.h"
#include "ui/RecordingCanvas.h"

#include <QRegion>
#include <QWidget>
#include <atomic>
#include <functional>

class CMainFrame;
class SamplePanelWindow;
class VolumePanelWindow;
class QScrollBar;
class QTimer;

// The canvas the rows keep between paints. Drawing is recorded during the
// view's paint; a row's request for a repaint, which may come from the tick,
// only raises a flag that the GUI thread polls.
class SharedCanvas : public RecordingCanvas {
  public:
    void RequestRepaint(const Rect&) override { wanted.store(true, std::memory_order_release); }
    bool TakeRequest() { return wanted.exchange(false, std::memory_order_acq_rel); }

  private:
    std::atomic<bool> wanted{false};
};

// The main view's window: it paints the view's records with QPainter, draws
// the clocks, mirrors the horizontal and vertical scroll bars, and turns
// requests made under the engine lock (also by the tick) into window work
// on a timer: every 5 ms while there is work, slowly after a second without
// any, and fast again on user input or a Wake. The view is painted left of the vertical bar, which
// stands in its own strip at the right edge. A clock refresh redraws only the clock cells, without
// the engine lock and without recording the rows. GUI thread only; it takes the engine lock around
// each model call and never holds it while drawing pixels.
class ViewWidget : public QWidget, public ViewHost, public FrameCommands {
  public:
    explicit ViewWidget(QWidget* parent = nullptr);
    ~ViewWidget() override;

    // Builds the model's view and its first instrument; call once, before
    // the tick starts.
    void CreateView();
    // Removes every playhead from the engine and deletes every instrument.
    void DeleteView();
    MainView* View() { return view; }
    // Paints that recorded the rows; the clocks' own refreshes are not among
    // them.
    int64_t RecordedPaints() const { return recordedPaints; }
    void SetFrame(CMainFrame* f) { frame = f; }
    // Any thread but the audio thread: the poll runs fast again, for what a
    // key posted to the engine will ask of the window.
    void Wake();
    // Where Load Waves reads its files; set before the event loop runs.

    // ViewHost: engine lock held, any thread.
    void RequestRepaint() override { repaintWanted.store(true, std::memory_order_release); }
    void ScrollBarsChanged() override { barsChanged.store(true, std::memory_order_release); }
    void AskFrame(FrameAsk ask, Line* line) override { frameAsks.Push(FrameAskRecord{ask, line}); }
    void PanelsChanged() override { panelsChanged.store(true, std::memory_order_release); }

    // The panels' windows (ui/ViewWidgetPanels.cpp). The late set-up, once
    // the frame is shown: the popup panel and the sample panel hidden, the
    // top panel over the top band.
    void CreatePanels();
    // Runs f on the view under the engine lock, then shows the panels as
    // the model now has them.
    void WithViewLocked(const std::function<void(MainView&)>& f);
    // Copies the panels under the lock and shows the copies.
    void SyncPanels();
    VolumePanelWindow* TopPanelWindow() const { return topWindow; }
    VolumePanelWindow* PopupPanelWindow() const { return popupWindow; }
    SamplePanelWindow* SamplePanelWin() const { return sampleWindow; }

    // FrameCommands: GUI thread.
    void NewInstrument() override;
    void CloseInstrument() override;
    void SetViewMode(int32_t mode) override;
    ViewBarFields ViewBarValues() override;
    double TempoStepMs() override;
    LineBarFields LineBarValues(Line* line) override;
    std::string MultiLineFilterText() override;
    InstrumentBarFields InstrumentBarValues() override;
    PatternBarFields PatternBarValues() override;
    NoteBarFields NoteBarValues(Line* line, bool isSelection) override;
    void SetTempoAll(double stepMs) override;
    void SkipAll(int32_t ticks) override;
    void SetSplit(double split) override;
    void SetSlotCount(int32_t count) override;
    void ChangeZoom(int32_t which, int32_t direction) override;
    bool FlipNotationalFractions() override;
    void DeleteHighlighted() override;
    void StepControlGroup(int32_t direction) override;
    int32_t ControlGroup() override;
    void SetFilter(int32_t value) override;
    int32_t SetNoteValue(int32_t code, int16_t value) override;
    WaveStatus LoadWaveAsLine(const std::string& path, const std::string& name) override;
    WaveStatus LoadWaveIntoLine(Line* line, const std::string& path, const std::string& name,
                                bool& full) override;
    Line* SamplePanelLine() override;
    DropPlace DropPlaceAt(int32_t x, int32_t y, Line*& line) override;
    void LoadInstrumentFile(const std::string& path, std::vector<MissingWave>& missing) override;
    Instrument* CurrentInstrument() override;
    std::string InstrumentName() override;
    void EndRename(const std::string* name) override;
    void InstrumentSpin(int32_t control, int32_t direction) override;
    void PatternCommand(PatternAction action) override;
    void SetSaveOnSwitch(bool on) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    // The panels leave the screen with the view, so that closing the frame
    // ends the program.
    void hideEvent(QHideEvent* event) override;

  private:
    void Poll();
    void PacePoll(bool busy);
    void MirrorScrollBars();
    void OnHorizontal(int action);
    void OnVertical(int action);
    void PaintClocks(QPainter& painter);
    bool DoFrameAsks();
    void UpdateClocks();
    int PaintWidth() const;
    void PlacePanels(const Rect& topPanel);

    MainView* view = nullptr;
    CMainFrame* frame = nullptr;
    SharedCanvas canvas;
    std::vector<CanvasRecord> replay; // the last paint's records, drawn without the lock
    QScrollBar* hBar;
    QScrollBar* vBar;
    QTimer* poll;
    int32_t quietPolls = 0; // polls in a row that found nothing to do
    ClockFrame clocks{};
    QRegion clockRegion; // the cells of clocks
    int64_t recordedPaints = 0;
    bool mirroring = false;
    std::atomic<bool> repaintWanted{false};
    std::atomic<bool> barsChanged{false};
    std::atomic<bool> panelsChanged{false};
    VolumePanelWindow* popupWindow = nullptr;
    SamplePanelWindow* sampleWindow = nullptr;
    VolumePanelWindow* topWindow = nullptr;
    // What the view asked of the frame, pushed by whoever holds the engine
    // lock and taken by the GUI thread's poll. A full ring drops the ask:
    // the next one brings the bar up to date.
    struct FrameAskRecord {
        FrameAsk ask;
        Line* line;
    };
    SpscRing<FrameAskRecord, 64> frameAsks;
};
