// The helper of tools/follow_clock.sh: a MIDI clock source at BPM on the
// program's JACK port "midi in", and the judge of what the program makes of
// it through the JACK transport that it leads.
//
//     clock_source BPM [PORT]
//
// Sends Start, then 24 pulses a beat, each on its frame, for eight seconds.
// The program, following the clock, starts its lead instrument and takes the
// clock's tempo; leading the transport, it publishes that tempo and rolls.
// Exit code 0 when, within two beats of the first pulse, the transport rolls
// at BPM (to a hundredth), stays at it, and its beats go on at BPM for the
// rest of the run (within 1 %).
#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/transport.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

struct Source {
    jack_client_t* client = nullptr;
    jack_port_t* out = nullptr;
    double framesPerPulse = 0.0;
    double next = -1.0;                 // the frame of the next pulse; below 0 until the first
    std::atomic<int64_t> first{-1};     // the frame of the first pulse
    std::atomic<bool> connected{false}; // nothing is sent before
};

// JACK's process thread: Start and the pulses of the period, each at its
// frame.
int Process(jack_nframes_t n, void* arg) {
    Source& s = *static_cast<Source*>(arg);
    void* buffer = jack_port_get_buffer(s.out, n);
    jack_midi_clear_buffer(buffer);
    if (!s.connected.load(std::memory_order_acquire))
        return 0;
    const jack_nframes_t start = jack_last_frame_time(s.client);
    if (s.next < 0.0) {
        const uint8_t begin = 0xFA;
        jack_midi_event_write(buffer, 0, &begin, 1);
        s.next = start + 1.0;
        s.first.store(start + 1, std::memory_order_release);
    }
    const uint8_t pulse = 0xF8;
    // A pulse sounds on the first frame at or after its instant.
    for (double at = std::ceil(s.next); at < static_cast<double>(start) + n;
         at = std::ceil(s.next)) {
        jack_midi_event_write(buffer, static_cast<jack_nframes_t>(at - start), &pulse, 1);
        s.next += s.framesPerPulse;
    }
    return 0;
}

double Beats(const jack_position_t& p) {
    return (p.bar - 1) * p.beats_per_bar + (p.beat - 1) + p.tick / p.ticks_per_beat;
}

// Two beats to take the tempo, then the beats published for the rest of the
// run. 0 when the program kept to the clock.
int Judge(Source& s, double bpm, double rate) {
    const double takeFrames = 2.0 * 60.0 * rate / bpm;
    jack_position_t p{};
    double firstBeats = -1.0;
    jack_nframes_t firstFrame = 0;
    bool taken = false;
    for (int i = 0; i < 800; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const int64_t first = s.first.load(std::memory_order_acquire);
        const jack_transport_state_t state = jack_transport_query(s.client, &p);
        if (first < 0 || (p.valid & JackPositionBBT) == 0 || state != JackTransportRolling)
            continue;
        const bool atTempo = std::fabs(p.beats_per_minute - bpm) < 0.005;
        const double since = static_cast<double>(jack_frame_time(s.client) - first);
        if (!taken && atTempo) {
            taken = true;
            std::printf("tempo %.3f taken %.0f frames after the first pulse\n", p.beats_per_minute,
                        since);
            if (since > takeFrames)
                return 1;
            firstBeats = Beats(p);
            firstFrame = p.frame;
        }
        if (taken && !atTempo) {
            std::printf("the tempo left %.2f: %.3f\n", bpm, p.beats_per_minute);
            return 1;
        }
    }
    if (!taken) {
        std::printf("the transport never rolled at %.2f BPM (last %.3f)\n", bpm,
                    p.beats_per_minute);
        return 1;
    }
    const double beats = Beats(p) - firstBeats;
    const double expected = (p.frame - firstFrame) * bpm / (60.0 * rate);
    std::printf("%.3f beats published over %.3f expected\n", beats, expected);
    return std::fabs(beats - expected) < 0.01 * expected ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fputs("usage: clock_source BPM [PORT]\n", stderr);
        return 2;
    }
    const double bpm = std::atof(argv[1]);
    Source s;
    s.client = jack_client_open("oxclocksource", JackNoStartServer, nullptr);
    if (s.client == nullptr || bpm <= 0.0)
        return 2;
    const double rate = jack_get_sample_rate(s.client);
    s.framesPerPulse = 60.0 * rate / (bpm * 24.0);
    s.out = jack_port_register(s.client, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    jack_set_process_callback(s.client, Process, &s);
    if (jack_activate(s.client) != 0 ||
        jack_connect(s.client, jack_port_name(s.out),
                     argc == 3 ? argv[2] : "oxbowlantern:midi in") != 0)
        return 2;
    // A few periods for the new connection to reach the graph.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    s.connected.store(true, std::memory_order_release);
    const int result = Judge(s, bpm, rate);
    jack_client_close(s.client);
    return result;
}
