// A Link peer for the real-program tests: joins the session at BPM (a bar of
// 4 beats), waits for another peer, sets the session's tempo to BPM, and,
// given a JACK output port, records it for SECONDS. Every sound that starts
// after silence is turned into a beat of the session at the instant it
// reaches the speakers (JACK's frame time plus the port's playback latency):
// each must lie within a millisecond of a bar. With "first", only the first
// sound is judged (music that is not all on the bars). Prints one line per
// sound judged; exits 0 when every one lay on a bar and there was one.
//
//     link_peer BPM SECONDS [PORT [first]]
#include <ableton/Link.hpp>
#include <jack/jack.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr double Quantum = 4.0;
constexpr int32_t Capacity = 4096;

struct Recorder {
    jack_client_t* client = nullptr;
    jack_port_t* port = nullptr;
    ableton::Link* link = nullptr;
    jack_nframes_t latency = 0;
    float last = 0.0f;
    std::vector<int64_t> instants = std::vector<int64_t>(Capacity);
    std::atomic<int32_t> count{0};

    // JACK's process thread: the instant of each sound's first frame on
    // the session's clock.
    static int Process(jack_nframes_t n, void* arg) {
        Recorder& r = *static_cast<Recorder*>(arg);
        const jack_nframes_t start = jack_last_frame_time(r.client);
        const float* in = static_cast<const float*>(jack_port_get_buffer(r.port, n));
        const int64_t offset =
            r.link->clock().micros().count() - static_cast<int64_t>(jack_get_time());
        int32_t at = r.count.load(std::memory_order_relaxed);
        for (jack_nframes_t i = 0; i < n; ++i) {
            const bool onset = std::fabs(in[i]) > 1e-6f && std::fabs(r.last) <= 1e-6f;
            r.last = in[i];
            if (onset && at < Capacity)
                r.instants[at++] =
                    static_cast<int64_t>(jack_frames_to_time(r.client, start + i + r.latency)) +
                    offset;
        }
        r.count.store(at, std::memory_order_release);
        return 0;
    }
};

bool Record(ableton::Link& link, const char* source, int seconds, Recorder& r) {
    r.link = &link;
    r.client = jack_client_open("oxlinkpeer", JackNoStartServer, nullptr);
    if (r.client == nullptr) {
        std::fprintf(stderr, "link_peer: no JACK server\n");
        return false;
    }
    r.port = jack_port_register(r.client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    jack_port_t* from = jack_port_by_name(r.client, source);
    if (r.port == nullptr || from == nullptr) {
        std::fprintf(stderr, "link_peer: no port %s\n", source);
        return false;
    }
    jack_latency_range_t range;
    jack_port_get_latency_range(from, JackPlaybackLatency, &range);
    r.latency = range.max;
    jack_set_process_callback(r.client, Recorder::Process, &r);
    if (jack_activate(r.client) != 0 || jack_connect(r.client, source, jack_port_name(r.port)) != 0)
        return false;
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    jack_deactivate(r.client);
    jack_client_close(r.client);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 5) {
        std::fprintf(stderr, "usage: link_peer BPM SECONDS [PORT [first]]\n");
        return 2;
    }
    const double bpm = std::atof(argv[1]);
    const int seconds = std::atoi(argv[2]);
    ableton::Link link(bpm);
    link.enable(true);
    for (int i = 0; i < 300 && link.numPeers() == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    if (link.numPeers() == 0) {
        std::fprintf(stderr, "link_peer: no other peer came\n");
        return 1;
    }
    // The session may have kept the other peer's tempo: this one sets it.
    ableton::Link::SessionState tempo = link.captureAppSessionState();
    tempo.setTempo(bpm, link.clock().micros());
    link.commitAppSessionState(tempo);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    std::printf("link_peer: %zu peer(s) at %.3f BPM\n", link.numPeers(),
                link.captureAppSessionState().tempo());
    if (argc == 3) {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        return 0;
    }
    Recorder recorder;
    if (!Record(link, argv[3], seconds, recorder))
        return 1;
    const ableton::Link::SessionState state = link.captureAppSessionState();
    const double msPerBeat = 60000.0 / state.tempo();
    const int32_t recorded = recorder.count.load(std::memory_order_acquire);
    const int32_t n = argc == 5 && recorded > 0 ? 1 : recorded;
    int32_t off = 0;
    for (int32_t i = 0; i < n; ++i) {
        const double beat =
            state.beatAtTime(std::chrono::microseconds(recorder.instants[i]), Quantum);
        const double ms = (beat - std::round(beat / Quantum) * Quantum) * msPerBeat;
        std::printf("sound %d at beat %.4f: %.3f ms from the bar\n", i, beat, ms);
        if (std::fabs(ms) >= 1.0)
            ++off;
    }
    return n > 0 && off == 0 ? 0 : 1;
}
