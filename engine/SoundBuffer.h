#pragma once

#include "engine/MixerCommand.h"
#include "song/PlayPoint.h"

#include <cstdint>
#include <string>

class Instrument;

// One loaded wave sample: a voice of the mixer together with what the program
// remembers about it. The line keeps it tuned with line-wide values; a play
// point brings its own values when it fires. Calls become mixer commands, sent
// by whoever holds the engine lock.
class SoundBuffer {
  public:
    explicit SoundBuffer(Instrument* owner);
    // Engine lock held: the mixer lets go of the voice's sample and frees it
    // later on the GUI thread.
    virtual ~SoundBuffer();
    SoundBuffer(const SoundBuffer&) = delete;
    SoundBuffer& operator=(const SoundBuffer&) = delete;

    // GUI thread, engine lock held: binds the buffer to its mixer voice.
    void SetLoaded(int32_t voice, MixerCommandQueue* commands, const std::string& name,
                   const std::string& path, int32_t lengthMs, int32_t frequency,
                   int32_t averageBytesPerSecond);
    void SetFailed();
    void MarkReady() { empty = 0; }

    const std::string& GetName() const { return name; }
    const std::string& GetPath() const { return path; }
    int32_t GetLengthMs() const { return lengthMs; }

    // Audio thread (tick) or GUI thread (skip), engine lock held: volume and
    // pan when changed, start, then the toe-in position. Never allocates.
    bool Play(PlayPoint p);

    // Engine lock held, either thread: the line's own tuning, sent at once
    // and not remembered in lastVolume or lastPan.
    bool SetVolume(int32_t v) { return Send(MixerCommand::SetVolume, v); }
    bool SetPan(int32_t p) { return Send(MixerCommand::SetPan, p); }
    bool SetFrequency(int32_t f) { return Send(MixerCommand::SetFrequency, f); }

    std::string path;
    int32_t bytesPerMs = 0;
    int16_t lineToeIn = 0;
    double linePan = 0.0;
    double volumeFraction = 1.0;
    int32_t frequency = 0;
    int16_t lastPan = 0;
    int16_t lastVolume = 0;
    Instrument* owner;
    int32_t lengthMs = 0;
    int32_t empty = 1;
    std::string name = "empty buffer";
    // Whether the last command reached the queue. A command the mixer cannot
    // carry out (a position beyond the sample) is simply not heard.
    bool lastResult = true;
    int32_t voice = -1;
    MixerCommandQueue* commands = nullptr;

  private:
    bool Send(uint8_t kind, int32_t value);
};
