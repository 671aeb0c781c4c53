#pragma once

#include <atomic>
#include <cstdint>
#include <jack/transport.h>
#include <string>

class Playhead;

// The JACK transport led by the first instrument, when chosen: this client
// becomes the timebase master and gives bar, beat, tick and tempo from the
// first instrument's playhead (4 beats a bar, one step a beat), and the
// transport rolls while that instrument plays. Another master already
// present keeps the transport; the note says so and the sound plays on.
class JackTransport {
  public:
    static constexpr double TicksPerBeat = 1920.0;
    static constexpr int32_t BeatsPerBar = 4;

    // GUI thread: the client has been activated (null: the server went away
    // with the last one), or is about to be closed.
    void Attach(jack_client_t* client);
    void Detach();
    // GUI thread: whether to be the master, now and after every Attach.
    void Want(bool master);
    // GUI thread, every few tens of milliseconds: starts or stops the
    // transport when the first instrument started or stopped.
    void Follow();
    // GUI thread: a note for the status line, or empty.
    std::string Note() const;

    // Audio thread, engine lock held: the first playhead (or null) as tick
    // `tick` left it.
    void AfterTick(int64_t tick, const Playhead* first);

    // Bar, beat and tick of a position `beats` beats after the start, and
    // the tempo of a step of stepMs milliseconds, into pos.
    static void FillPosition(double beats, double stepMs, jack_position_t& pos);

  private:
    void TakeTimebase();
    static void Timebase(jack_transport_state_t state, jack_nframes_t frames, jack_position_t* pos,
                         int newPosition, void* self);

    jack_client_t* client = nullptr;
    bool wanted = false;
    bool master = false;
    bool busy = false;    // another master was there when asked
    bool rolling = false; // what this client last told the transport
    std::atomic<bool> running{false};

    // JACK's process thread of this client (the tick, then the timebase).
    bool wasRunning = false;
    int64_t lastTick = 0;
    double beats = 0.0;
    double stepMs = 500.0;
};
