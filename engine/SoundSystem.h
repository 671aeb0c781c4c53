#pragma once

#include "engine/Mixer.h"
#include "engine/WaveFile.h"

#include <cstdint>
#include <string>

class SoundBuffer;

// Turns wave files into voices of the mixer. It owns the mixer, which stands
// in for the sound device's buffers; the output that pulls the mixer's frames
// is opened apart from it (AudioOutput).
class SoundSystem {
  public:
    SoundSystem() = default;
    virtual ~SoundSystem() = default;
    SoundSystem(const SoundSystem&) = delete;
    SoundSystem& operator=(const SoundSystem&) = delete;

    Mixer& GetMixer() { return mixer; }

    // GUI thread, engine lock not held: reads and decodes the file, then takes
    // the engine lock only to hand the sample to target. Target is told of the
    // outcome (SetLoaded or SetFailed) and is marked ready either way. Always 1.
    int32_t LoadWave(const std::string& path, const std::string& name, SoundBuffer* target);

    // GUI thread, engine lock held: the hand-over step of LoadWave, for a wave
    // read with ReadWave. Takes the decoded sample out of wave on success.
    void HandOver(WaveStatus status, WaveFile& wave, const std::string& path,
                  const std::string& name, SoundBuffer* target);

    // GUI thread, engine lock not held: frees what the mixer has let go of
    // since the last call (the samples of deleted buffers, replaced voice
    // tables). The mixer lets go at its next slice after a buffer is deleted,
    // so the GUI calls this from its polling timer.
    void CollectRetired() { mixer.Collect(); }

    uint32_t waveDataSize = 0;              // bytes of the "data" chunk last read
    WaveStatus lastStatus = WaveStatus::Ok; // outcome of the last load

  private:
    Mixer mixer;
};

// The program's sound system, set at start-up for the GUI's polling timer.
extern SoundSystem* theSoundSystem;
