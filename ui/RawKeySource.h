#pragma once

#include "ui/ScanCodes.h"

#include <thread>

class Engine;
typedef struct _XDisplay Display;

// Every key of an X display, whichever program is in front: the XInput2 raw
// key events of the master keyboards, selected on the root window and read
// on a thread of its own over a connection of its own. That thread posts the
// keys to the engine's queue and is, while the source runs, the queue's only
// producer. Start and Stop are called by one thread (the GUI thread).
class RawKeySource {
  public:
    explicit RawKeySource(Engine& engine) : poster(engine) {}
    ~RawKeySource() { Stop(); }
    RawKeySource(const RawKeySource&) = delete;
    RawKeySource& operator=(const RawKeySource&) = delete;

    // Opens a connection of its own to the server of sameServerAs (when
    // null, to $DISPLAY) and starts the thread. False, with nothing started,
    // when the display cannot be opened or has no XInput2 of version 2.0 or
    // later.
    bool Start(Display* sameServerAs);

    // Ends the thread within a poll's wake-up and closes the connection.
    void Stop();

    bool Running() const { return display != nullptr; }

  private:
    void Run();

    KeyPoster poster;
    Display* display = nullptr;
    int xiOpcode = 0;
    int wakePipe[2] = {-1, -1};
    std::thread thread;
};
