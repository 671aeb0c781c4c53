#pragma once

#include "engine/SpscRing.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>

class RtMidiOut;

// MIDI clock out through the ALSA sequencer, for outputs without JACK: the
// port "midi out" of the client "oxbowlantern". The audio thread queues each
// byte with the instant it is due at the speakers; a thread of its own sleeps
// until then and sends it. The sequencer takes bytes as they come, so this is
// as close to the frame as its interface allows: the sender's wake-up, well
// under a millisecond.
class AlsaClockOut {
  public:
    AlsaClockOut();
    ~AlsaClockOut();
    AlsaClockOut(const AlsaClockOut&) = delete;
    AlsaClockOut& operator=(const AlsaClockOut&) = delete;

    // GUI thread: opens the port and starts the sender. False when there
    // is no sequencer; Failure then says why.
    bool Open();
    // GUI thread: stops the sender and closes the port; queued bytes are
    // dropped.
    void Close();
    bool IsOpen() const { return out != nullptr; }
    std::string Failure() const { return failure; }

    // Audio thread: queues one byte due at dueNs on the steady clock. Never
    // waits; a full queue drops the byte.
    void Queue(int64_t dueNs, uint8_t byte);

  private:
    struct Due {
        int64_t ns;
        uint8_t byte;
    };

    void Run();

    std::unique_ptr<RtMidiOut> out;
    std::thread sender;
    std::counting_semaphore<> wake{0};
    std::atomic<bool> running{false};
    SpscRing<Due, 1024> queue;
    std::string failure;
};
