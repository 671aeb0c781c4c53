#include "engine/Mixer.h"

#include <cmath>
#include <cstring>

namespace {

// Gain of an attenuation in hundredths of a dB; -10000 and below is silence.
float Attenuation(int32_t hundredthsDb) {
    if (hundredthsDb <= -10000)
        return 0.0f;
    return static_cast<float>(std::pow(10.0, hundredthsDb / 2000.0));
}

// Audio thread: adds n frames of a stereo sample, linearly interpolated, from
// position onward. The caller guarantees every read frame lies before the pad's end.
void MixStereo(float* __restrict out, const float* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const float* s = data + 2 * (position >> 32);
        const float frac = static_cast<float>(static_cast<uint32_t>(position)) * 0x1p-32f;
        const float left = s[0] + frac * (s[2] - s[0]);
        const float right = s[1] + frac * (s[3] - s[1]);
        out[2 * i] += gainLeft * left;
        out[2 * i + 1] += gainRight * right;
        position += step;
    }
}

// Audio thread: as MixStereo, for a mono sample heard on both sides.
void MixMono(float* __restrict out, const float* __restrict data, uint64_t position, uint64_t step,
             int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const float* s = data + (position >> 32);
        const float frac = static_cast<float>(static_cast<uint32_t>(position)) * 0x1p-32f;
        const float value = s[0] + frac * (s[1] - s[0]);
        out[2 * i] += gainLeft * value;
        out[2 * i + 1] += gainRight * value;
        position += step;
    }
}

} // namespace

Mixer::Mixer() : table(new VoiceTable(TableStep)), reservedVoices(TableStep) {}

Mixer::~Mixer() {
    // The output has stopped, so this thread may act as the audio side too.
    ApplyCommands();
    Collect();
    MixerCommand c;
    while (commands.Pop(c)) {
        // Only reached if the return queue was full during ApplyCommands.
        if (c.kind == MixerCommand::Attach)
            delete static_cast<SampleData*>(c.data);
        else if (c.kind == MixerCommand::Grow)
            delete static_cast<VoiceTable*>(c.data);
    }
    // Only the current table's voices own samples; older linked tables hold stale copies.
    for (int32_t i = 0; i < table->capacity; ++i)
        delete table->voices[i].sample;
    while (table != nullptr) {
        VoiceTable* previous = table->previous;
        delete table;
        table = previous;
    }
}

int32_t Mixer::Attach(SampleData* sample) {
    int32_t voice;
    if (!freeVoices.empty()) {
        voice = freeVoices.back();
        freeVoices.pop_back();
    } else {
        voice = nextVoice++;
    }
    if (voice >= reservedVoices) {
        VoiceTable* grown = new VoiceTable(reservedVoices + TableStep);
        if (!commands.Push(MixerCommand{MixerCommand::Grow, -1, grown->capacity, grown})) {
            delete grown;
            freeVoices.push_back(voice);
            return -1;
        }
        reservedVoices = grown->capacity;
    }
    if (!commands.Push(MixerCommand{MixerCommand::Attach, voice, 0, sample})) {
        freeVoices.push_back(voice);
        return -1;
    }
    return voice;
}

void Mixer::Collect() {
    MixerRetired r;
    while (retired.Pop(r)) {
        if (r.kind == MixerRetired::Sample) {
            delete static_cast<SampleData*>(r.data);
            freeVoices.push_back(r.voice);
        } else {
            delete static_cast<VoiceTable*>(r.data);
        }
    }
}

void Mixer::SetOutputRate(int32_t rate) {
    outputRate = rate;
    for (int32_t i = 0; i < table->capacity; ++i)
        Retune(table->voices[i]);
}

// Audio thread: the step from the voice's rate (or its sample's own) to the output's.
void Mixer::Retune(Voice& v) const {
    if (v.sample == nullptr)
        return;
    const int64_t rate = v.frequency != 0 ? v.frequency : v.sample->rate;
    v.step = static_cast<uint64_t>((rate << 32) / outputRate);
}

void Mixer::ApplyCommands() {
    MixerCommand c;
    while (commands.Pop(c))
        Apply(c);
}

// Audio thread: hands a sample or a table back to the GUI thread. When the
// return queue is full the mixer keeps it (a released sample stays on its idle
// voice, a replaced table stays linked to its successor) and the destructor
// frees it; nothing is ever freed while the mixer can still reach it.
void Mixer::Retire(uint8_t kind, int32_t voice, void* data) {
    if (retired.Push(MixerRetired{kind, voice, data}))
        return;
    if (kind == MixerRetired::Table) {
        VoiceTable* old = static_cast<VoiceTable*>(data);
        old->previous = table->previous;
        table->previous = old;
    } else
        table->voices[voice].sample = static_cast<SampleData*>(data);
}

// Audio thread: moves every voice into the larger table. No allocation: the
// GUI thread made the table.
void Mixer::Grow(VoiceTable* grown) {
    VoiceTable* old = table;
    for (int32_t i = 0; i < old->capacity; ++i)
        grown->voices[i] = old->voices[i];
    grown->previous = old->previous;
    old->previous = nullptr;
    table = grown;
    Retire(MixerRetired::Table, -1, old);
}

// Audio thread: one command. A call that the voice cannot take (no sample, a
// value out of range, a position beyond the sample) fails and changes nothing.
void Mixer::Apply(const MixerCommand& c) {
    if (c.kind == MixerCommand::Grow) {
        Grow(static_cast<VoiceTable*>(c.data));
        return;
    }
    if (c.voice < 0 || c.voice >= table->capacity)
        return;
    Voice& v = table->voices[c.voice];
    switch (c.kind) {
    case MixerCommand::Attach:
        v = Voice{};
        v.sample = static_cast<SampleData*>(c.data);
        Retune(v);
        return;
    case MixerCommand::Release:
        if (v.sample == nullptr)
            return;
        v.playing = false;
        {
            SampleData* sample = v.sample;
            v.sample = nullptr;
            Retire(MixerRetired::Sample, c.voice, sample);
        }
        return;
    case MixerCommand::Play:
        if (v.sample != nullptr)
            v.playing = true;
        return;
    case MixerCommand::SetPosition: {
        if (v.sample == nullptr || c.value < 0)
            return;
        const int32_t frame = c.value / v.sample->bytesPerFrame;
        if (frame >= v.sample->frames)
            return;
        v.position = static_cast<uint64_t>(frame) << 32;
        return;
    }
    case MixerCommand::SetVolume:
        if (c.value < -10000 || c.value > 0)
            return;
        v.volume = c.value;
        break;
    case MixerCommand::SetPan:
        if (c.value < -10000 || c.value > 10000)
            return;
        v.pan = c.value;
        break;
    case MixerCommand::SetFrequency:
        if (c.value != 0 && (c.value < 100 || c.value > MaxFrequency))
            return;
        v.frequency = c.value;
        Retune(v);
        return;
    default:
        return;
    }
    // Volume or pan changed: a positive pan attenuates the left side, a
    // negative one the right, each by that many hundredths of a dB; at 10000
    // that side is silent, as the volume is at -10000. The new gains hold from
    // the next frame mixed, without a ramp: commands arrive on tick
    // boundaries and a note's values are set before it starts.
    const float gain = Attenuation(v.volume);
    v.gainLeft = gain * Attenuation(v.pan > 0 ? -v.pan : 0);
    v.gainRight = gain * Attenuation(v.pan < 0 ? v.pan : 0);
}

void Mixer::Mix(float* out, int32_t frames) {
    std::memset(out, 0, sizeof(float) * 2 * static_cast<size_t>(frames));
    int32_t count = 0;
    for (int32_t i = 0; i < table->capacity; ++i) {
        Voice& v = table->voices[i];
        if (!v.playing)
            continue;
        const SampleData& s = *v.sample;
        // Output frames left before the position passes the last frame.
        const uint64_t remaining = (static_cast<uint64_t>(s.frames) << 32) - v.position;
        const uint64_t left = (remaining + v.step - 1) / v.step;
        const int32_t n =
            left < static_cast<uint64_t>(frames) ? static_cast<int32_t>(left) : frames;
        if (s.channels == 2)
            MixStereo(out, s.samples, v.position, v.step, n, v.gainLeft, v.gainRight);
        else
            MixMono(out, s.samples, v.position, v.step, n, v.gainLeft, v.gainRight);
        if (left <= static_cast<uint64_t>(frames)) {
            // The sample has ended: the voice stops and its cursor returns to the start.
            v.playing = false;
            v.position = 0;
        } else {
            v.position += v.step * static_cast<uint64_t>(n);
            ++count;
        }
    }
    sounding.store(count, std::memory_order_relaxed);
}

const Voice* Mixer::VoiceAt(int32_t voice) const {
    if (voice < 0 || voice >= table->capacity)
        return nullptr;
    return &table->voices[voice];
}
