#pragma once

#include <QObject>

class CMainFrame;
class FakeFrameCommands;

// The main frame on a fake model: the window, the menus, the toolbars and
// where their commands go, the about box.
class FrameTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void windowCoversScreen();
    void menuTexts_data();
    void menuTexts();
    void commandButtons();
    void commandRouting_data();
    void commandRouting();
    void exitClosesFrame();
    void stockToolBar();
    void aboutOpens_data();
    void aboutOpens();

  private:
    FakeFrameCommands* commands = nullptr;
    CMainFrame* frame = nullptr;
};
