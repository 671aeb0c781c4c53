#pragma once

#include "engine/Engine.h"
#include "engine/LinkGrid.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

// Tempo and bars shared with other programs over the network (Ableton Link,
// a bar of 4 beats). Switched on, the program joins the session of the peers
// it finds, or plays on alone. The GUI thread keeps the tempo one with the
// session's; the JACK output lays the tick grid on the session's beats
// (TickGrid) after the first instrument that plays, and a start by Enter
// while peers are present waits for the session's next bar. Alone, a start
// of that instrument moves the session's bar onto it. The library's own headers stay in
// LinkSync.cpp.
class LinkSync {
  public:
    LinkSync();
    ~LinkSync();
    LinkSync(const LinkSync&) = delete;
    LinkSync& operator=(const LinkSync&) = delete;

    // GUI thread.
    void Enable(bool on);
    bool Enabled() const { return enabled.load(std::memory_order_relaxed); }
    int32_t Peers() const { return peers.load(std::memory_order_relaxed); }
    // For the status line while switched on: "Link: 1 peer", "Link: 2 peers".
    std::string Note() const;
    double SessionTempo() const;
    void SetSessionTempo(double bpm);

    // Any thread: now on the session's clock, in microseconds.
    int64_t Micros() const;

    // Audio thread, at the start of each period of the JACK output: the
    // period's first frame, counted as the audio callback counts them, sounds
    // at hostMicros on the session's clock, a frame lasting microsPerFrame.
    void BeginPeriod(int64_t frame, int32_t frames, double hostMicros, double microsPerFrame,
                     int32_t rate);
    // Audio thread: the frame at which tick `tick` begins, the tick before it
    // having begun at `frame`; -1 while switched off (the plain grid).
    int64_t PlaceTick(int64_t tick, int64_t frame);
    // Audio thread, engine lock held: the instruments as tick `tick` left
    // them.
    void AfterTick(int64_t tick, const Engine* engine);
    // For the engine: a start by Enter held until the tick before a bar.
    Engine::StartGate Gate();

  private:
    struct Session;
    void LineFromSession();
    void MoveBarTo(int64_t tick);

    std::unique_ptr<Session> session;
    std::atomic<bool> enabled{false};
    std::atomic<int32_t> peers{0};

    // Audio thread only.
    bool periodOn = false; // this period has a line
    int64_t periodFrame = 0;
    int64_t periodEnd = 0;
    double periodMicros = 0.0;
    double microsPerFrame = 0.0;
    double framesPerTick = 240.0;
    BeatLine line;
    TickGrid grid;
    int64_t lastPlaced = 0; // the tick whose boundary was placed last
    bool heldStart = false; // a held start ran in the tick being run
};
