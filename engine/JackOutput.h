#pragma once

#include "engine/AudioOutput.h"
#include "engine/JackTransport.h"
#include "engine/MidiClock.h"
#include "engine/MidiParser.h"

#include <atomic>
#include <cstdint>
#include <jack/types.h>
#include <string>

// The program's own JACK client, used whenever a JACK server runs: client
// "oxbowlantern" with the audio output ports "outport 0" (left) and
// "outport 1" (right), connected to the first two physical playback ports,
// the MIDI output port "midi out", which carries MIDI clock when it is
// switched on, and the MIDI input port "midi in", whose messages go to the
// engine stamped with their frames. The server's rate and period are the output's.
//
// A server that goes away reaches the client through its shutdown callback,
// which only raises the flag that Lost reads; the GUI thread acts on it. The
// client of a server that went away is never closed: closing it can wait for
// good on the client's own threads, and would keep the program from ending.
// Stop then only waits, briefly, for a period still being rendered.
class JackOutput : public AudioOutput {
  public:
    static constexpr const char* ClientName = "oxbowlantern";

    JackOutput() = default;
    ~JackOutput() override;
    JackOutput(const JackOutput&) = delete;
    JackOutput& operator=(const JackOutput&) = delete;

    bool Start(AudioCallback& callback) override;
    void Stop() override;
    int32_t SampleRate() const override { return rate; }
    int32_t PeriodFrames() const override { return period.load(std::memory_order_relaxed); }
    std::string Describe() const override;
    bool Lost() override { return lost.load(std::memory_order_acquire); }
    std::string Failure() const override { return failure; }

    void SetSync(bool midiClock, bool transportMaster) override;
    void FollowSync() override { transport.Follow(); }
    // The transport's state, and MIDI ports the server would not give.
    std::string SyncNote() const override;
    void SetLink(LinkSync* l) override { link.store(l, std::memory_order_release); }

  private:
    // Frames rendered at a time into the interleaved scratch buffer.
    static constexpr int32_t ChunkFrames = 512;

    bool Open();
    void ConnectToPlayback();
    static int Process(jack_nframes_t frames, void* self);
    static int OnBufferSize(jack_nframes_t frames, void* self);
    static void OnLatency(jack_latency_callback_mode_t mode, void* self);
    static void OnShutdown(jack_status_t code, const char* reason, void* self);
    static void OnTick(void* self, int64_t tick);
    static void WriteMidi(void* self, int32_t offset, uint8_t byte);
    void ReadMidi(jack_nframes_t frames);
    static int64_t PlaceTick(void* self, int64_t tick, int64_t frame);
    void BeginLinkPeriod(LinkSync& session, jack_nframes_t frames);

    jack_client_t* client = nullptr;
    jack_port_t* ports[2] = {};
    jack_port_t* midiPort = nullptr;
    jack_port_t* midiInPort = nullptr;
    MidiParser midiParser;      // the process thread's
    void* midiBuffer = nullptr; // the period's, in Process
    AudioCallback* callback = nullptr;
    int32_t rate = 0;
    std::atomic<int32_t> period{0};
    std::atomic<jack_nframes_t> playbackLatency{0};
    std::atomic<bool> lost{false};
    std::atomic<bool> processing{false}; // while Process runs
    std::atomic<bool> clockOn{false};
    MidiClock clock;
    JackTransport transport;
    std::atomic<LinkSync*> link{nullptr};
    LinkSync* periodLink = nullptr; // the period's, in Process
    std::string failure;
    float scratch[2 * ChunkFrames] = {};
};
