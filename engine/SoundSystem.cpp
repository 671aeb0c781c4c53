#include "engine/SoundSystem.h"

#include "engine/EngineLock.h"
#include "engine/SoundBuffer.h"

#include <mutex>
#include <new>

SoundSystem* theSoundSystem = nullptr;

int32_t SoundSystem::LoadWave(const std::string& path, const std::string& name,
                              SoundBuffer* target) {
    WaveFile wave;
    const WaveStatus status = ReadWave(path, wave);
    {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        HandOver(status, wave, path, name, target);
    }
    // A sample the mixer did not take is freed here, outside the lock, and
    // so is what the mixer let go of.
    CollectRetired();
    return 1;
}

void SoundSystem::HandOver(WaveStatus status, WaveFile& wave, const std::string& path,
                           const std::string& name, SoundBuffer* target) {
    lastStatus = status;
    waveDataSize = wave.dataSize;
    int32_t voice = -1;
    if (status == WaveStatus::Ok) {
        try {
            voice = mixer.Attach(wave.sample.get());
        } catch (const std::bad_alloc&) {
            voice = -1; // no room for a larger voice table: the load fails
        }
        if (voice < 0)
            lastStatus = WaveStatus::OutOfMemory;
    }
    if (voice >= 0) {
        wave.sample.release(); // the mixer owns it now and hands it back when released
        target->SetLoaded(voice, mixer.Commands(), name, path, wave.LengthMs(), wave.format.rate,
                          wave.AverageBytesPerSecond());
    } else {
        target->SetFailed();
    }
    target->MarkReady();
}
