#pragma once

#include "engine/SyncSwitches.h"

#include <QObject>
#include <string>

class CMainFrame;
class KeyMap;
class QAction;
class QMenu;
class QTimer;

// The MIDI control items of the Sync menu: "Follow MIDI Clock", "MIDI
// Learn..." and "Clear MIDI Map". The map is read from its file at start and
// written whenever it changes. Following the clock excludes sending it and
// Link, and the items say so by being disabled. GUI thread only.
class MidiMenu : public QObject {
  public:
    // How often the followed tempo is looked at.
    static constexpr int FollowMs = 50;

    // link and sendClock are the Sync menu's own items. The map file is the
    // settings folder's, or the one --midi-map names for the run, which must
    // then be there; --follow-midi-clock switches following on for the run.
    MidiMenu(QMenu* menu, QAction* link, QAction* sendClock, CMainFrame& frame, KeyMap& keyMap,
             const SyncSwitches& once);

    QAction* follow;
    QAction* learn;
    QAction* clear;

  private:
    void LoadMap(bool named);
    void Learn();
    void Clear();
    void FollowChanged();
    void Exclude();
    void FollowTempo();

    QAction* link;
    QAction* sendClock;
    bool linkAvailable;
    CMainFrame& frame;
    KeyMap& keyMap;
    std::string mapPath;
    QTimer* tempoPoll;
};
