#pragma once

#include <QObject>

class CMainFrame;
class FakeFrameCommands;

// The note bar's controls and the line bar's filter spin against a model
// stand-in: the value each control sends, and what the bar shows after it.
class NoteBarTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void noteControl_data();
    void noteControl();
    void filterSpin_data();
    void filterSpin();

  private:
    FakeFrameCommands* commands = nullptr;
    CMainFrame* frame = nullptr;
};
