// The helper of tools/midi_demo.sh: plays the running program by MIDI on its
// JACK port "midi in" and records what it sounds.
//
//     send_midi CAPTURE.wav SECONDS RENDER.wav
//
// Sends note 36 on channel 10 (mapped to Grave: highlight the sequencer),
// then note 38 (mapped to Enter: start its pattern) at the last frame of a
// period, and records "outport 0" and "outport 1" from that frame on for
// SECONDS into CAPTURE.wav. The pattern must start in the tick of that frame,
// so its first sound comes after the note by at most a tick plus where the
// first sound lies in the offline render RENDER.wav of the same pattern.
// Exit code 0 when it does.
#include "engine/WaveFile.h"

#include <jack/jack.h>
#include <jack/midiport.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <vector>

namespace {

struct Player {
    jack_client_t* sender = nullptr;
    jack_client_t* listener = nullptr;
    jack_port_t* midi = nullptr;
    jack_port_t* in[2] = {};
    std::atomic<int> note{-1};     // the note to send in the next period
    std::atomic<int64_t> sent{-1}; // the frame the start note went at
    std::vector<float> take;       // interleaved stereo, from `sent` on
    std::atomic<int64_t> taken{0}; // frames recorded
};

// The sender's process thread: one note-on and, a period later, its off.
int Send(jack_nframes_t n, void* arg) {
    Player& p = *static_cast<Player*>(arg);
    void* buffer = jack_port_get_buffer(p.midi, n);
    jack_midi_clear_buffer(buffer);
    const int note = p.note.exchange(-1);
    if (note < 0)
        return 0;
    const auto offset = static_cast<jack_nframes_t>(n - 1);
    const uint8_t on[3] = {0x99, static_cast<uint8_t>(note), 100};
    const uint8_t off[3] = {0x89, static_cast<uint8_t>(note), 0};
    jack_midi_event_write(buffer, offset, on, 3);
    if (note == 38)
        p.sent.store(jack_last_frame_time(p.sender) + offset);
    else
        jack_midi_event_write(buffer, offset, off, 3);
    return 0;
}

// The listener's process thread, after the program's in the same cycle.
int Listen(jack_nframes_t n, void* arg) {
    Player& p = *static_cast<Player*>(arg);
    const int64_t from = p.sent.load();
    if (from < 0)
        return 0;
    const int64_t start = jack_last_frame_time(p.listener);
    const auto* left = static_cast<const float*>(jack_port_get_buffer(p.in[0], n));
    const auto* right = static_cast<const float*>(jack_port_get_buffer(p.in[1], n));
    const int64_t capacity = static_cast<int64_t>(p.take.size() / 2);
    int64_t at = p.taken.load();
    for (int64_t i = std::max<int64_t>(0, from - start); i < n && at < capacity; ++i, ++at) {
        p.take[2 * at] = left[i];
        p.take[2 * at + 1] = right[i];
    }
    p.taken.store(at);
    return 0;
}

int64_t FirstSound(const float* samples, int64_t frames, int channels) {
    for (int64_t i = 0; i < frames * channels; ++i)
        if (std::fabs(samples[i]) > 1e-6f)
            return i / channels;
    return -1;
}

void PutLE(std::ofstream& out, uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.put(static_cast<char>(v >> (8 * i) & 0xFF));
}

void WriteFloatWave(const char* path, const std::vector<float>& take, uint32_t rate) {
    std::ofstream out(path, std::ios::binary);
    const auto bytes = static_cast<uint32_t>(take.size() * 4);
    out.write("RIFF", 4);
    PutLE(out, 36 + bytes, 4);
    out.write("WAVEfmt ", 8);
    PutLE(out, 16, 4);
    PutLE(out, 3, 2); // IEEE float
    PutLE(out, 2, 2);
    PutLE(out, rate, 4);
    PutLE(out, rate * 8, 4);
    PutLE(out, 8, 2);
    PutLE(out, 32, 2);
    out.write("data", 4);
    PutLE(out, bytes, 4);
    out.write(reinterpret_cast<const char*>(take.data()), bytes);
}

bool Connect(jack_client_t* c, const char* from, const char* to) {
    if (jack_connect(c, from, to) == 0)
        return true;
    std::fprintf(stderr, "send_midi: cannot connect %s to %s\n", from, to);
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: send_midi CAPTURE.wav SECONDS RENDER.wav\n");
        return 2;
    }
    WaveFile render;
    if (ReadWave(argv[3], render) != WaveStatus::Ok) {
        std::fprintf(stderr, "send_midi: cannot read %s\n", argv[3]);
        return 2;
    }
    Player p;
    p.sender = jack_client_open("oxsendmidi", JackNoStartServer, nullptr);
    p.listener = jack_client_open("oxhearmidi", JackNoStartServer, nullptr);
    if (p.sender == nullptr || p.listener == nullptr) {
        std::fprintf(stderr, "send_midi: no JACK server\n");
        return 2;
    }
    const uint32_t rate = jack_get_sample_rate(p.sender);
    p.take.assign(static_cast<size_t>(std::atof(argv[2]) * rate) * 2, 0.0f);
    p.midi = jack_port_register(p.sender, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    p.in[0] = jack_port_register(p.listener, "in 0", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    p.in[1] = jack_port_register(p.listener, "in 1", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    jack_set_process_callback(p.sender, Send, &p);
    jack_set_process_callback(p.listener, Listen, &p);
    if (jack_activate(p.sender) != 0 || jack_activate(p.listener) != 0 ||
        !Connect(p.sender, "oxsendmidi:out", "oxbowlantern:midi in") ||
        !Connect(p.listener, "oxbowlantern:outport 0", "oxhearmidi:in 0") ||
        !Connect(p.listener, "oxbowlantern:outport 1", "oxhearmidi:in 1"))
        return 2;

    using namespace std::chrono_literals;
    std::this_thread::sleep_for(300ms);
    p.note.store(36);
    std::this_thread::sleep_for(300ms);
    p.note.store(38);
    while (p.taken.load() < static_cast<int64_t>(p.take.size() / 2))
        std::this_thread::sleep_for(50ms);
    jack_client_close(p.sender);
    jack_client_close(p.listener);

    WriteFloatWave(argv[1], p.take, rate);
    const SampleData& r = *render.sample;
    const int64_t c0 = FirstSound(p.take.data(), static_cast<int64_t>(p.take.size() / 2), 2);
    const int64_t r0 = FirstSound(r.samples, r.frames, r.channels);
    const int64_t tick = rate / 200;
    std::printf("first sound %lld frames after the note; %lld in the render\n",
                static_cast<long long>(c0), static_cast<long long>(r0));
    return c0 >= 0 && r0 >= 0 && c0 - r0 > 0 && c0 - r0 <= tick ? 0 : 1;
}
