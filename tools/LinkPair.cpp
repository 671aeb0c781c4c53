// The helper of tools/link_pair.sh: a Link peer and a JACK client that plays
// two running instances of the program by MIDI and listens to both.
//
//     link_pair BPM STARTS [COMMAND]
//
// Joins the session, waits for the two instances ("oxbowlantern" and
// "oxbowlantern-01"), and sets the session to BPM. Both are played by notes on
// their own "midi in" (channel 10: note 36 highlights the sequencer, 38
// starts it, 40 stops it), so that each hears only its own. Each is first
// started once as a warm-up, shown but not judged; A is then started again
// and B STARTS times more, each at a moment of no account and stopped again
// a second after it sounds. Every sound that starts after silence on either
// "outport 0" is taken at the instant it reaches the speakers (JACK's frame
// time plus the port's playback latency) on the session's clock. B's first
// sound after each start must lie within a millisecond of one of A's measure
// starts (A's first sound and every bar after it). The count of clock pulses
// crowded into one instant is shown too.
//
// With COMMAND, a shell command that changes A's tempo by its controls, the
// tool then runs it and times the MIDI clock on both "midi out" ports: A's
// pulses must come at a new tempo, and B's at the same within a second.
// Exit code 0 when every check holds.
#include <ableton/Link.hpp>
#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr double Quantum = 4.0;
constexpr int32_t Capacity = 16384;
constexpr int Highlight = 36, Start = 38, Stop = 40;
const char* const Names[2] = {"oxbowlantern", "oxbowlantern-01"};

// Instants on the session's clock in microseconds, written by the process
// thread, read by the main thread up to `count`.
struct Instants {
    std::vector<int64_t> micros = std::vector<int64_t>(Capacity);
    std::atomic<int32_t> count{0};

    void Push(int64_t t) {
        const int32_t at = count.load(std::memory_order_relaxed);
        if (at < Capacity) {
            micros[at] = t;
            count.store(at + 1, std::memory_order_release);
        }
    }
    // The first instant after t, waiting up to `wait` for it; -1 if none.
    int64_t FirstAfter(int64_t t, std::chrono::milliseconds wait) const {
        for (auto end = std::chrono::steady_clock::now() + wait;;) {
            const int32_t n = count.load(std::memory_order_acquire);
            for (int32_t i = 0; i < n; ++i)
                if (micros[i] > t)
                    return micros[i];
            if (std::chrono::steady_clock::now() > end)
                return -1;
            std::this_thread::sleep_for(5ms);
        }
    }
};

// One instance as the tool sees it: a note to send, the instant the last
// one went, its sounds and its clock pulses.
struct Side {
    jack_port_t* notes = nullptr;
    jack_port_t* sound = nullptr;
    jack_port_t* clock = nullptr;
    jack_nframes_t latency = 0;
    float last = 0.0f;
    std::atomic<int> note{-1};
    std::atomic<int64_t> sent{-1};
    Instants onsets;
    Instants pulses;
};

struct Pair {
    // The notes go out from a client of their own: one client that both fed
    // the instances and heard them would close a loop in JACK's graph, and
    // what it heard would come a period late.
    jack_client_t* sender = nullptr;
    jack_client_t* listener = nullptr;
    ableton::Link* link = nullptr;
    Side sides[2];

    // The instant on the session's clock at which `frame` begins.
    int64_t At(jack_nframes_t frame) const {
        const int64_t offset =
            link->clock().micros().count() - static_cast<int64_t>(jack_get_time());
        return static_cast<int64_t>(jack_frames_to_time(listener, frame)) + offset;
    }

    // The sender's process thread: each side's note at the period's last
    // frame, its release at once.
    static int Send(jack_nframes_t n, void* arg) {
        Pair& p = *static_cast<Pair*>(arg);
        for (Side& s : p.sides) {
            void* out = jack_port_get_buffer(s.notes, n);
            jack_midi_clear_buffer(out);
            const int note = s.note.exchange(-1);
            if (note < 0)
                continue;
            const uint8_t on[3] = {0x99, static_cast<uint8_t>(note), 100};
            const uint8_t off[3] = {0x89, static_cast<uint8_t>(note), 0};
            jack_midi_event_write(out, n - 1, on, 3);
            jack_midi_event_write(out, n - 1, off, 3);
            s.sent.store(p.At(jack_last_frame_time(p.sender) + n - 1));
        }
        return 0;
    }

    // The listener's process thread, after the instances': the sounds and
    // the pulses heard.
    static int Listen(jack_nframes_t n, void* arg) {
        Pair& p = *static_cast<Pair*>(arg);
        const jack_nframes_t start = jack_last_frame_time(p.listener);
        for (Side& s : p.sides) {
            const auto* in = static_cast<const float*>(jack_port_get_buffer(s.sound, n));
            for (jack_nframes_t i = 0; i < n; ++i) {
                if (std::fabs(in[i]) > 1e-6f && std::fabs(s.last) <= 1e-6f)
                    s.onsets.Push(p.At(start + i + s.latency));
                s.last = in[i];
            }
            void* clock = jack_port_get_buffer(s.clock, n);
            jack_midi_event_t e;
            for (uint32_t i = 0; jack_midi_event_get(&e, clock, i) == 0; ++i)
                if (e.size == 1 && e.buffer[0] == 0xF8)
                    s.pulses.Push(p.At(start + e.time));
        }
        return 0;
    }

    // Sends a note and returns the instant it went.
    int64_t Note(int side, int note) {
        sides[side].sent.store(-1);
        sides[side].note.store(note);
        while (sides[side].sent.load() < 0)
            std::this_thread::sleep_for(1ms);
        return sides[side].sent.load();
    }
};

bool Open(Pair& p) {
    p.sender = jack_client_open("oxpairnotes", JackNoStartServer, nullptr);
    p.listener = jack_client_open("oxpairears", JackNoStartServer, nullptr);
    if (p.sender == nullptr || p.listener == nullptr) {
        std::fprintf(stderr, "link_pair: no JACK server\n");
        return false;
    }
    const char* suffix[2] = {"a", "b"};
    char name[64];
    for (int i = 0; i < 2; ++i) {
        Side& s = p.sides[i];
        std::snprintf(name, sizeof name, "notes %s", suffix[i]);
        s.notes = jack_port_register(p.sender, name, JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        std::snprintf(name, sizeof name, "sound %s", suffix[i]);
        s.sound = jack_port_register(p.listener, name, JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        std::snprintf(name, sizeof name, "clock %s", suffix[i]);
        s.clock = jack_port_register(p.listener, name, JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    }
    jack_set_process_callback(p.sender, Pair::Send, &p);
    jack_set_process_callback(p.listener, Pair::Listen, &p);
    if (jack_activate(p.sender) != 0 || jack_activate(p.listener) != 0)
        return false;
    for (int i = 0; i < 2; ++i) {
        Side& s = p.sides[i];
        char in[64], out[64], clock[64];
        std::snprintf(in, sizeof in, "%s:midi in", Names[i]);
        std::snprintf(out, sizeof out, "%s:outport 0", Names[i]);
        std::snprintf(clock, sizeof clock, "%s:midi out", Names[i]);
        jack_port_t* from = jack_port_by_name(p.listener, out);
        if (from == nullptr || jack_connect(p.sender, jack_port_name(s.notes), in) != 0 ||
            jack_connect(p.listener, out, jack_port_name(s.sound)) != 0 ||
            jack_connect(p.listener, clock, jack_port_name(s.clock)) != 0) {
            std::fprintf(stderr, "link_pair: cannot connect to %s\n", Names[i]);
            return false;
        }
        jack_latency_range_t range;
        jack_port_get_latency_range(from, JackPlaybackLatency, &range);
        s.latency = range.max;
    }
    return true;
}

// Starts a side (its sequencer highlighted before) and returns the instant
// of its first sound, or -1.
int64_t Play(Pair& p, int side) {
    return p.sides[side].onsets.FirstAfter(p.Note(side, Start), 4000ms);
}

// The first start of each instance is a warm-up: shown, not judged (its
// first periods of sound may run late). A's measure starts are taken from
// its second start; B is then started `starts` times more, each judged
// against them. Returns the offsets in milliseconds, or fewer than `starts`
// when a sound did not come.
std::vector<double> StartBoth(Pair& p, int starts) {
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<int> pause(300, 1500);
    p.Note(0, Highlight);
    p.Note(1, Highlight);
    std::this_thread::sleep_for(300ms);
    int64_t firstA = Play(p, 0);
    std::this_thread::sleep_for(1000ms);
    p.Note(0, Stop);
    std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
    const int64_t warmA = firstA;
    firstA = Play(p, 0);
    if (warmA < 0 || firstA < 0) {
        std::printf("A made no sound\n");
        return {};
    }
    std::vector<double> offsets;
    for (int k = 0; k <= starts; ++k) {
        std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
        const int64_t sent = p.Note(1, Start);
        const int64_t heard = p.sides[1].onsets.FirstAfter(sent, 4000ms);
        if (heard < 0) {
            std::printf("start %d: B made no sound\n", k);
            return offsets;
        }
        const ableton::Link::SessionState state = p.link->captureAppSessionState();
        // Milliseconds from the nearest bar, a bar counted from `from` beats.
        auto bar = [&](int64_t t, double from) {
            const double d = state.beatAtTime(std::chrono::microseconds(t), Quantum) - from;
            return (d - std::round(d / Quantum) * Quantum) * 60000.0 / state.tempo();
        };
        const double ms = bar(heard, state.beatAtTime(std::chrono::microseconds(firstA), Quantum));
        if (k == 0)
            std::printf("warm-up starts: A %.3f ms and B %.3f ms from the session's bar\n",
                        bar(warmA, 0.0), bar(heard, 0.0));
        else
            std::printf("start %d: B sounded %.0f ms after its note, %.3f ms from A's measure "
                        "start, %.3f ms from the session's bar\n",
                        k, (heard - sent) / 1000.0, ms, bar(heard, 0.0));
        if (k > 0)
            offsets.push_back(ms);
        std::this_thread::sleep_for(1000ms);
        if (k < starts)
            p.Note(1, Stop);
    }
    return offsets;
}

// The tempo of the pulses around pulse `i`: the median of the seven
// intervals that end there, so that one odd interval does not count.
double Bpm(const Instants& pulses, int32_t i) {
    constexpr int32_t Window = 7;
    double us[Window];
    for (int32_t k = 0; k < Window; ++k)
        us[k] = static_cast<double>(pulses.micros[i - k] - pulses.micros[i - k - 1]);
    std::nth_element(us, us + Window / 2, us + Window);
    return 60e6 / (24.0 * us[Window / 2]);
}

// The instant from which the pulses keep to `bpm` (within 0.2 %) until the
// last, or -1.
int64_t SettledAt(const Instants& pulses, double bpm) {
    const int32_t n = pulses.count.load(std::memory_order_acquire);
    int32_t from = n;
    while (from - 1 >= 8 && std::fabs(Bpm(pulses, from - 1) / bpm - 1.0) < 0.002)
        --from;
    return from < n - 8 ? pulses.micros[from] : -1;
}

// Pulses that came within a millisecond of the one before: a clock that
// hurries to catch up.
int32_t Crowded(const Instants& pulses) {
    const int32_t n = pulses.count.load(std::memory_order_acquire);
    int32_t crowded = 0;
    for (int32_t i = 1; i < n; ++i)
        crowded += pulses.micros[i] - pulses.micros[i - 1] < 1000 ? 1 : 0;
    return crowded;
}

// Runs the command, then waits for A's clock to take a new tempo and for B's
// to follow; returns B's delay in milliseconds, or -1.
double FollowTempo(Pair& p, const char* command, double bpm) {
    if (std::system(command) != 0)
        std::printf("tempo: the command failed: %s\n", command);
    std::this_thread::sleep_for(3000ms);
    const Instants& a = p.sides[0].pulses;
    const int32_t n = a.count.load(std::memory_order_acquire);
    if (n < 50) {
        std::printf("tempo: A sent %d pulses\n", n);
        return -1;
    }
    const double now = Bpm(a, n - 1);
    const int64_t atA = SettledAt(a, now);
    const int64_t atB = SettledAt(p.sides[1].pulses, now);
    std::printf("tempo: A's clock at %.2f BPM, the session at %.3f BPM\n", now,
                p.link->captureAppSessionState().tempo());
    if (std::fabs(now - bpm) < 0.5 || atA < 0 || atB < 0) {
        std::printf("tempo: no change taken\n");
        return -1;
    }
    std::printf("tempo: B's clock followed %.0f ms after A's\n", (atB - atA) / 1000.0);
    return (atB - atA) / 1000.0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        std::fprintf(stderr, "usage: link_pair BPM STARTS [COMMAND]\n");
        return 2;
    }
    const double bpm = std::atof(argv[1]);
    const int starts = std::atoi(argv[2]);
    ableton::Link link(bpm);
    link.enable(true);
    for (int i = 0; i < 300 && link.numPeers() < 2; ++i)
        std::this_thread::sleep_for(50ms);
    if (link.numPeers() < 2) {
        std::fprintf(stderr, "link_pair: %zu peer(s), not the two instances\n", link.numPeers());
        return 1;
    }
    ableton::Link::SessionState tempo = link.captureAppSessionState();
    tempo.setTempo(bpm, link.clock().micros());
    link.commitAppSessionState(tempo);
    Pair pair;
    pair.link = &link;
    if (!Open(pair))
        return 1;
    std::this_thread::sleep_for(1000ms);

    std::vector<double> offsets = StartBoth(pair, starts);
    bool ok = static_cast<int>(offsets.size()) == starts;
    if (!offsets.empty()) {
        for (double& o : offsets)
            o = std::fabs(o);
        std::sort(offsets.begin(), offsets.end());
        std::printf("B's first sounds from A's measure starts: median %.3f ms, worst %.3f ms "
                    "over %zu starts\n",
                    offsets[offsets.size() / 2], offsets.back(), offsets.size());
        ok = ok && offsets.back() < 1.0;
    }
    if (argc == 4) {
        const double delay = FollowTempo(pair, argv[3], bpm);
        ok = ok && delay >= 0.0 && delay <= 1000.0;
    }
    std::printf("clock pulses within a millisecond of the one before: A %d, B %d\n",
                Crowded(pair.sides[0].pulses), Crowded(pair.sides[1].pulses));
    jack_client_close(pair.sender);
    jack_client_close(pair.listener);
    return ok ? 0 : 1;
}
