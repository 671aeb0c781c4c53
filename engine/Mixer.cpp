#include "engine/Mixer.h"

#include "engine/MixLoops.h"

#include <cmath>
#include <cstring>

namespace {

// Gain of an attenuation in hundredths of a dB; -10000 and below is silence.
float Attenuation(int32_t hundredthsDb) {
    if (hundredthsDb <= -10000)
        return 0.0f;
    return static_cast<float>(std::pow(10.0, hundredthsDb / 2000.0));
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
    for (int32_t i = 0; i < old->playingCount; ++i)
        grown->playing[i] = old->playing[i];
    grown->playingCount = old->playingCount;
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
        if (v.playing)
            Unlist(c.voice);
        v = Voice{};
        v.sample = static_cast<SampleData*>(c.data);
        Retune(v);
        return;
    case MixerCommand::Release:
        if (v.sample == nullptr)
            return;
        if (v.playing)
            Unlist(c.voice);
        v.playing = false;
        {
            SampleData* sample = v.sample;
            v.sample = nullptr;
            Retire(MixerRetired::Sample, c.voice, sample);
        }
        return;
    case MixerCommand::Play:
        if (v.sample != nullptr && !v.playing) {
            v.playing = true;
            List(c.voice);
        }
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

// Audio thread: enters a voice that starts playing in the list of playing
// voices, which stays in the order of the voice numbers so that the voices
// are summed in the same order whenever they started.
void Mixer::List(int32_t voice) {
    int32_t* list = table->playing;
    int32_t at = table->playingCount++;
    for (; at > 0 && list[at - 1] > voice; --at)
        list[at] = list[at - 1];
    list[at] = voice;
}

// Audio thread: takes a voice that stops playing out of the list.
void Mixer::Unlist(int32_t voice) {
    int32_t* list = table->playing;
    int32_t kept = 0;
    for (int32_t i = 0; i < table->playingCount; ++i)
        if (list[i] != voice)
            list[kept++] = list[i];
    table->playingCount = kept;
}

// Only the playing voices are visited; with none, the output is silence and
// nothing else is done.
void Mixer::Mix(float* out, int32_t frames) {
    std::memset(out, 0, sizeof(float) * 2 * static_cast<size_t>(frames));
    int32_t* list = table->playing;
    int32_t kept = 0;
    for (int32_t i = 0; i < table->playingCount; ++i) {
        Voice& v = table->voices[list[i]];
        const SampleData& s = *v.sample;
        // Output frames left before the position passes the last frame.
        const uint64_t remaining = (static_cast<uint64_t>(s.frames) << 32) - v.position;
        const uint64_t left = (remaining + v.step - 1) / v.step;
        const int32_t n =
            left < static_cast<uint64_t>(frames) ? static_cast<int32_t>(left) : frames;
        if (s.words != nullptr && s.channels == 2)
            MixStereo(out, s.words, v.position, v.step, n, v.gainLeft, v.gainRight);
        else if (s.words != nullptr)
            MixMono(out, s.words, v.position, v.step, n, v.gainLeft, v.gainRight);
        else if (s.channels == 2)
            MixStereo(out, s.samples, v.position, v.step, n, v.gainLeft, v.gainRight);
        else
            MixMono(out, s.samples, v.position, v.step, n, v.gainLeft, v.gainRight);
        if (left <= static_cast<uint64_t>(frames)) {
            // The sample has ended: the voice stops and its cursor returns to the start.
            v.playing = false;
            v.position = 0;
        } else {
            v.position += v.step * static_cast<uint64_t>(n);
            list[kept++] = list[i];
        }
    }
    table->playingCount = kept;
    sounding.store(kept, std::memory_order_relaxed);
}

const Voice* Mixer::VoiceAt(int32_t voice) const {
    if (voice < 0 || voice >= table->capacity)
        return nullptr;
    return &table->voices[voice];
}
