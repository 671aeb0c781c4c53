#pragma once

#include "engine/AudioOutput.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class AudioCallback;
class LinkSync;

// Keeps the program's sound output open. Opens the first output that works,
// in order: the program's own JACK client, then RtAudio (PulseAudio, then
// ALSA). Asked once a second, it notices an output that went away, lets it go
// and tries them all again in the same order until one opens. The model and
// the engine stay as they are meanwhile; no tick runs without an output, and
// a new output starts the ticks again at its frame 0, at its own rate.
// GUI thread only.
class OutputKeeper {
  public:
    using Outputs = std::vector<std::unique_ptr<AudioOutput>>;

    // With the program's outputs: JackOutput, then RtAudioOutput.
    explicit OutputKeeper(AudioCallback& callback);
    // With the given outputs, tried in their order.
    OutputKeeper(AudioCallback& callback, Outputs outputs);
    ~OutputKeeper();
    OutputKeeper(const OutputKeeper&) = delete;
    OutputKeeper& operator=(const OutputKeeper&) = delete;

    // Opens the first output that starts. False when none did; Failure
    // then says why for each.
    bool Open();
    // Once a second: lets a lost output go, and while there is none, tries
    // the outputs again. True while an output plays.
    bool Check();
    // Stops the output; nothing is pulled after it returns.
    void Close();
    // MIDI clock and leading the JACK transport, for every output.
    void SetSync(bool midiClock, bool transportMaster);
    // The shared session for every output, or null; its peers go on the
    // status line while it is switched on.
    void SetLink(LinkSync* link);
    // Every few tens of milliseconds: the transport follows the first
    // instrument.
    void FollowSync() {
        if (current != nullptr)
            current->FollowSync();
    }

    bool Playing() const { return current != nullptr; }
    const AudioOutput* Current() const { return current; }
    // Why each output failed to open at the last try, on one line.
    std::string Failure() const;
    // Ticks that ran late since the program started, over every output.
    uint64_t LateTicks() const;
    // Notes left out when the tick caught up after a long hold, likewise.
    uint64_t DroppedNotes() const;
    // The status line: the open output, or that the sound is gone and is
    // being tried again; then the counters since start.
    std::string StatusText() const;

  private:
    std::string CountsText() const;

    AudioCallback& callback;
    Outputs outputs;
    AudioOutput* current = nullptr;
    LinkSync* link = nullptr;
    uint64_t lateBefore = 0;    // late ticks of the outputs before the current one
    uint64_t droppedBefore = 0; // and their dropped notes
    std::string lostOutput;     // the system of the output that went away
    int32_t tries = 0;          // tries since it went away
};
