#pragma once

#include "ui/Bars.h"
#include "ui/FrameCommands.h"

#include <QMainWindow>
#include <cstdint>

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
    uint8_t barState = EmptyBarUp;

  private:
    void CreateMenus();
    void CreateStockToolBar();
    void CreateCommandToolBar();
    void CreateBars();
    void BringUp(BottomBar* bar, BarState state);
    void RepaintFrame();
    void ShowAbout();
};
