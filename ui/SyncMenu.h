#pragma once

#include "engine/SyncSwitches.h"

#include <QObject>

class OutputKeeper;
class QAction;
class QMenu;
class QTimer;

// The Sync menu: playing with other programs and machines. "Send MIDI Clock"
// and "JACK Transport Master" are remembered between runs; the command-line
// switches turn them on for one run without changing what is remembered.
// "Ableton Link" is not available in this version and stays greyed. While
// the transport is led, it is made to follow the first instrument every
// 20 ms. GUI thread only; the menu belongs to the frame, this object to
// whoever made it, and it goes before the keeper does.
class SyncMenu : public QObject {
  public:
    static constexpr int FollowMs = 20;

    SyncMenu(QMenu* menu, const SyncSwitches& once, OutputKeeper& keeper);

    QAction* link;
    QAction* clock;
    QAction* transport;

  private:
    // Saves the items' states and hands them to the outputs.
    void Changed();
    void Apply();

    OutputKeeper& keeper;
    QTimer* follow;
};
