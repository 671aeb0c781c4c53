#pragma once

#include <cstdint>
#include <string>

class AudioCallback;
class LinkSync;

// Where the program's frames go: a sound device, or a test pulling them by
// hand. The output calls AudioCallback::Prepare with its rate, then Render
// once per period on its own audio thread.
class AudioOutput {
  public:
    virtual ~AudioOutput() = default;

    // GUI thread: opens the output and starts pulling from callback. False
    // when no usable output could be opened; Failure then says why.
    virtual bool Start(AudioCallback& callback) = 0;
    // GUI thread: stops pulling; no Render runs after it returns.
    virtual void Stop() = 0;

    virtual int32_t SampleRate() const = 0;
    virtual int32_t PeriodFrames() const = 0;
    // What was opened, for one line of text: the system, rate and period.
    virtual std::string Describe() const = 0;
    // GUI thread, asked about once a second while started: true once the
    // device or its server went away. Nothing is pulled any more; Stop still
    // has to be called.
    virtual bool Lost() { return false; }
    // GUI thread: why the last Start failed, as the library said it.
    virtual std::string Failure() const { return {}; }

    // GUI thread: MIDI clock out and leading the transport, on or off, kept
    // over Stop and Start. Outputs without them ignore this.
    virtual void SetSync(bool /*midiClock*/, bool /*transportMaster*/) {}
    // GUI thread, every few tens of milliseconds while started: lets the
    // transport follow the first instrument.
    virtual void FollowSync() {}
    // GUI thread: how the transport stands, for the status line, or empty.
    virtual std::string SyncNote() const { return {}; }
    // GUI thread: the shared session whose beats the ticks are laid on, or
    // null; kept over Stop and Start. Outputs without it ignore this.
    virtual void SetLink(LinkSync* /*link*/) {}
};

// The one line that Describe gives: "JACK, 48000 Hz, 256 frames (5.3 ms)".
std::string DescribeDevice(const std::string& system, int32_t rate, int32_t period);
