#pragma once

#include <cstdint>
#include <string>

class AudioCallback;

// Where the program's frames go: a sound device, or a test pulling them by
// hand. The output calls AudioCallback::Prepare with its rate, then Render
// once per period on its own audio thread.
class AudioOutput {
  public:
    virtual ~AudioOutput() = default;

    // GUI thread: opens the output and starts pulling from callback. False
    // when no usable output could be opened.
    virtual bool Start(AudioCallback& callback) = 0;
    // GUI thread: stops pulling; no Render runs after it returns.
    virtual void Stop() = 0;

    virtual int32_t SampleRate() const = 0;
    virtual int32_t PeriodFrames() const = 0;
    // What was opened, for one line of text: the system, rate and period.
    virtual std::string Describe() const = 0;
};
