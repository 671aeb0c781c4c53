#pragma once

#include "ui/RawKeySource.h"
#include "ui/ScanCodes.h"

#include <QObject>

class Engine;

// The program's one source of raw key events by key position, feeding the
// engine's key queue. Exactly one of two sources runs, chosen at Start:
// - Raw: on X11 with XInput2, the display's raw key events, so that keys
//   count while another program is in front. The X thread is the queue's
//   producer.
// - QtEvents: elsewhere (Wayland, offscreen, no XInput2), the key events of
//   every window of the program, its dialogs included, seen by a filter on
//   the application that never takes them from their window. The GUI thread
//   is the queue's producer; the keys count while the program has the focus.
// Created, started and stopped on the GUI thread, after the application
// object and the engine exist; stopped before the engine goes.
class KeyFeed : public QObject {
  public:
    enum class Source { None, Raw, QtEvents };

    explicit KeyFeed(Engine& engine);
    ~KeyFeed() override;

    Source Start();
    void Stop();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void OnApplicationStateChanged(Qt::ApplicationState state);

    KeyPoster poster;
    RawKeySource raw;
    Source source = Source::None;
};
