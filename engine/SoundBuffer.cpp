#include "engine/SoundBuffer.h"

#include "song/Instrument.h"

SoundBuffer::SoundBuffer(Instrument* owner) : owner(owner) {}

SoundBuffer::~SoundBuffer() {
    if (voice >= 0)
        Send(MixerCommand::Release, 0);
}

void SoundBuffer::SetLoaded(int32_t voiceId, MixerCommandQueue* queue, const std::string& n,
                            const std::string& p, int32_t ms, int32_t rate,
                            int32_t averageBytesPerSecond) {
    voice = voiceId;
    commands = queue;
    path = p;
    name = n;
    frequency = rate;
    bytesPerMs = static_cast<int32_t>(averageBytesPerSecond * 0.001);
    if (ms > 0)
        lengthMs = ms;
    if (owner != nullptr)
        owner->SampleLoaded(this);
}

void SoundBuffer::SetFailed() {
    if (owner != nullptr)
        owner->SampleFailed();
}

bool SoundBuffer::Send(uint8_t kind, int32_t value) {
    if (commands == nullptr)
        return false;
    lastResult = commands->Push(MixerCommand{kind, voice, value});
    return lastResult;
}

bool SoundBuffer::Play(PlayPoint p) {
    if (empty != 0)
        return false;
    const int16_t v =
        static_cast<int16_t>(static_cast<int32_t>((p.volume + 10000) * volumeFraction) - 10000);
    if (v != lastVolume)
        Send(MixerCommand::SetVolume, v);
    int32_t n = p.pan + static_cast<int32_t>(linePan * 10000.0);
    n = n < -10000 ? -10000 : (n > 10000 ? 10000 : n);
    if (n != lastPan)
        Send(MixerCommand::SetPan, n);
    int16_t t = static_cast<int16_t>(p.toeIn + lineToeIn);
    if (t > lengthMs)
        t = static_cast<int16_t>(lengthMs);
    Send(MixerCommand::Play, 0);
    Send(MixerCommand::SetPosition, bytesPerMs * t);
    lastPan = static_cast<int16_t>(n);
    lastVolume = v;
    return lastResult;
}
