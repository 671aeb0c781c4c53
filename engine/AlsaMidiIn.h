#pragma once

#include "engine/MidiParser.h"

#include <memory>
#include <string>
#include <vector>

class Engine;
class RtMidiIn;

// The ALSA sequencer's input port "midi in" of the client "oxbowlantern",
// for when the sound is not JACK's: what a controller sends there reaches
// the engine's ALSA inbox on RtMidi's own thread (the inbox's one producer),
// to act in the next tick. The sequencer gives no frame to stamp, so this is
// as soon as the tick after the message came.
class AlsaMidiIn {
  public:
    AlsaMidiIn();
    ~AlsaMidiIn();
    AlsaMidiIn(const AlsaMidiIn&) = delete;
    AlsaMidiIn& operator=(const AlsaMidiIn&) = delete;

    // GUI thread: opens the port, its messages going to engine. False when
    // there is no sequencer; Failure then says why.
    bool Open(Engine& engine);
    // GUI thread: closes the port; no message is posted after it returns.
    void Close();
    std::string Failure() const { return failure; }

  private:
    static void OnMessage(double seconds, std::vector<unsigned char>* bytes, void* self);

    std::unique_ptr<RtMidiIn> in;
    Engine* engine = nullptr;
    MidiParser parser;
    std::string failure;
};
