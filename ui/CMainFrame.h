#pragma once

#include "ui/Bars.h"
#include "ui/FrameCommands.h"
#include "ui/InstrumentPrompts.h"
#include "ui/WavePrompts.h"

#include <QMainWindow>
#include <QUrl>
#include <cstdint>

class QMenu;
class QToolBar;

// The program's window: the command toolbar at the top, the main view below
// it and one bar at the bottom edge, chosen by barState. The frame owns the
// view, gives it the keyboard focus and reaches the model through
// FrameCommands. Every operation runs on the GUI thread; what the tick asks
// of the frame reaches it through the queue that the GUI drains.
class CMainFrame : public QMainWindow {
  public:
    // Values of barState; 6 is never used.
    enum BarState : uint8_t {
        EmptyBarUp = 0,
        ViewBarUp = 1,
        TimersBarUp = 2,
        LineBarUp = 3,
        InstrumentBarUp = 4,
        PatternBarUp = 5,
        NoteBarUp = 7
    };

    // Takes ownership of view. Covers the whole screen from (0, 0).
    CMainFrame(QWidget* view, FrameCommands* commands);

    void HideBars();
    void ShowEmptyBar();
    void ToggleViewBar();
    void ShowTimersBar();
    void ShowLineBar(Line* line);
    void ShowMultiLineBar();
    void ShowInstrumentBar();
    void ShowPatternBar();
    void RefreshPatternBar();
    void ShowNoteBar(Line* line, bool isSelection);

    // The timers bar's commands. Modes: 0 the slider let go, 1 one BPM,
    // 2 a tenth of a BPM, each d times; 3, 4 and 5 every playhead d, 8 d and
    // 32 d ticks on. The BPM field then shows the first instrument's tempo.
    void OnTempoControl(int32_t mode, int32_t d);
    // A tempo from outside (a clock being followed): every instrument takes
    // it, and the timers bar's field and slider show it.
    void TakeTempo(double bpm);
    // "LOAD WAVES", also the view's double click on an empty name cell: each
    // picked file becomes a line of the current instrument; the refused ones
    // are named in one message at the end.
    void LoadWaves();
    // "LOAD" of the sample panel and the double clicks on a line's name: the
    // picked files become samples of the panel's line while it has room.
    void LoadSamples();
    // Each wave file into the line, while it has room, or as a new line of
    // its own with a null line; the refused ones are named in one message.
    void LoadWaveFiles(const QStringList& files, Line* line);

    // The instrument commands (ui/InstrumentCommands.cpp). A refused file or
    // a failed save is named with its reason in a message box, and nothing
    // changes; waves that a loaded file names but that cannot be used are
    // listed in one message with the folders they were looked for in.
    void LoadInstrumentCommand();
    // Returns whether the instrument was added.
    bool LoadInstrumentPath(const QString& path);
    void SaveInstrumentCommand();
    void SaveAsCommand();
    void ChangeNameCommand();
    void ShowTutorial(int number);
    // Files dropped at a point of the view: ".nst" files load as
    // "&Load Instrument" loads them, wherever they land; ".wav" files dropped
    // on a line's name become its samples, on an empty row new lines.
    // Returns whether any file was taken.
    bool DropFiles(const QList<QUrl>& urls, QPoint atView);

    QWidget* view;
    FrameCommands* commands;
    QToolBar* stockToolBar;
    QToolBar* commandToolBar;
    QWidget* bottomDock;
    ViewBar* viewBar;
    BottomBar* emptyBar;
    TimersBar* timersBar;
    LineBar* lineBar;
    InstrumentBar* instrumentBar;
    PatternBar* patternBar;
    NoteBar* noteBar;
    // The Sync menu, after View; SyncMenu fills it.
    QMenu* syncMenu = nullptr;
    uint8_t barState = EmptyBarUp;
    // The file dialog and the message box of LoadWaves.
    WavePrompts wavePrompts = SystemWavePrompts();
    // The file dialogs and the name dialog of the instrument commands.
    InstrumentPrompts instrumentPrompts = SystemInstrumentPrompts();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void CreateMenus();
    void CreateStockToolBar();
    void CreateCommandToolBar();
    void CreateBars();
    // ui/BarCommands.cpp: the commands of the bars' controls.
    void ConnectTimersBar();
    void ConnectViewBar();
    // The tempo in the timers bar's field; on its slider too when asked.
    void ShowTempo(bool moveSlider);
    void ConnectLineBar();
    void ConnectInstrumentBar();
    void ConnectPatternBar();
    void OnInstrumentSpin(int32_t control, int spinDelta);
    void OnPatternSpin(bool length, int spinDelta);
    void WarnSaveFailed(const std::string& reason);
    void OnSplitButton(int32_t direction);
    void OnSlotButton(int32_t delta);
    void OnZoomSpin(int32_t which, int spinDelta);
    void OnMaxZoom3();
    void OnFractionsCheck();
    void OnDeleteLines();
    void OnControlGroupSpin(int spinDelta);
    // ui/NoteBarCommands.cpp: the line bar's filter spin and the note bar.
    void OnFilterSpin(int spinDelta);
    void ConnectNoteBar();
    void OnNoteSlider(int32_t code, int32_t position);
    void OnNoteSpin(int32_t code, int spinDelta);
    void OnZeroPan();
    void ShowNoteTexts(int32_t code, int16_t value, int32_t longestMs);
    void BringUp(BottomBar* bar, BarState state);
    void RepaintFrame();
    void ShowAbout();
};
