#pragma once

#include <QObject>

class QSocketNotifier;
class QWidget;

// Closes a window on SIGTERM or SIGINT as "E&xit" does, so that a logout or a
// Ctrl+C ends the program through its ordinary end. The handler only writes
// the signal's number into a pipe, which is safe in a signal handler on any
// thread; the GUI thread reads the pipe through a QSocketNotifier and closes
// the window. One instance at a time; made and destroyed on the GUI thread.
class SignalExit : public QObject {
  public:
    // Installs the handlers and unblocks both signals on the calling thread,
    // which may have inherited a mask that blocks them. Without a pipe the
    // signals keep their default action, which ends the process at once.
    explicit SignalExit(QWidget* window);
    // Puts the default handlers back.
    ~SignalExit() override;

  private:
    static void OnSignal(int signal);
    void OnReadable();

    QWidget* window;
    QSocketNotifier* notifier = nullptr;
};
