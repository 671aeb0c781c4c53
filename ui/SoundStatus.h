#pragma once

#include <QObject>

class OutputKeeper;
class QLabel;
class QStatusBar;
class QTimer;

// Drives the output keeper once a second from the GUI thread and shows its
// line in the window's status bar: the open output with its rate and
// period, or that the sound is gone and is being tried again, and the
// counters since start. The line is a label of its own in the bar, so that
// the menus' passing tips do not wipe it.
// The label belongs to the bar; this object to whoever made it, and it
// goes before the bar does.
class SoundStatus : public QObject {
  public:
    SoundStatus(OutputKeeper& keeper, QStatusBar* bar);

    // Checks the output now and shows the outcome; the timer calls it.
    void Refresh();

  private:
    OutputKeeper& keeper;
    QLabel* line;
    QTimer* timer;
};
