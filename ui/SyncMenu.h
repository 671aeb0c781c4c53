#pragma once

#include "engine/SyncSwitches.h"

#include <QObject>

#include <functional>

class LinkSync;
class OutputKeeper;
class QAction;
class QMenu;
class QTimer;

// The Sync menu: playing with other programs and machines. "Ableton Link",
// "Send MIDI Clock" and "JACK Transport Master" are remembered between runs;
// the command-line switches turn them on for one run without changing what is
// remembered. While the transport is led, it is made to follow the first
// instrument every 20 ms. While Link is on, the instruments' tempo and the
// session's are kept one every 50 ms: a tempo command here sets the
// session's, and a tempo set by a peer reaches every instrument. GUI thread
// only; the menu belongs to the frame, this object to whoever made it, and it
// goes before the keeper and the session do.
class SyncMenu : public QObject {
  public:
    static constexpr int FollowMs = 20;
    static constexpr int LinkMs = 50;

    // The instruments' tempo: the first one's step, and a tempo command's
    // setting of every one's.
    struct Tempo {
        std::function<double()> stepMs;
        std::function<void(double stepMs)> set;
    };

    SyncMenu(QMenu* menu, const SyncSwitches& once, OutputKeeper& keeper, LinkSync& session,
             Tempo tempo);

    QAction* link;
    QAction* clock;
    QAction* transport;

  private:
    // Saves the items' states and hands them to the outputs.
    void Changed();
    void Apply();
    void ApplyLink();
    // Settles a tempo changed on either side since the last time.
    void FollowLink();

    OutputKeeper& keeper;
    LinkSync& session;
    Tempo tempo;
    QTimer* follow;
    QTimer* linkTimer;
    double agreedLocal = 0.0; // the tempos each side had when they last agreed
    double agreedShared = 0.0;
};
