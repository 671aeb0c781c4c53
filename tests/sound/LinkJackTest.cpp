// The tick grid on a Link session, through the program's own JACK output on a
// real server (the dummy driver): a Link peer of the test's own at 130 BPM
// shares the session, one instrument clicks on every measure start, and a
// client of the test records the output. Each click's instant at the
// speakers, from JACK's own frame-to-time mapping and the port's playback
// latency, is turned into a beat by the peer: it must fall on a bar.
#include "ClickKit.h"
#include "JackServerKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/JackOutput.h"
#include "engine/LinkSync.h"

#include <ableton/Link.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <mutex>
#include <vector>

namespace {

constexpr double Bpm = 130.0;
constexpr int Seconds = 24;

// The test's input: the instant of every onset on the peer's clock, in
// microseconds, into a fixed array.
class OnsetRecorder {
  public:
    static constexpr int32_t Capacity = 1024;

    OnsetRecorder(jack_client_t* c, ableton::Link& l) : client(c), peer(l), instants(Capacity) {
        port = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(client, Process, this);
        jack_activate(client);
    }
    ~OnsetRecorder() {
        jack_deactivate(client);
        jack_client_close(client);
    }

    static int Process(jack_nframes_t n, void* arg) {
        OnsetRecorder& r = *static_cast<OnsetRecorder*>(arg);
        const jack_nframes_t start = jack_last_frame_time(r.client);
        const float* in = static_cast<const float*>(jack_port_get_buffer(r.port, n));
        const int64_t offset =
            r.peer.clock().micros().count() - static_cast<int64_t>(jack_get_time());
        int32_t at = r.count.load(std::memory_order_relaxed);
        for (jack_nframes_t i = 0; i < n && at < Capacity; ++i) {
            const bool onset = in[i] != 0.0f && r.last == 0.0f;
            r.last = in[i];
            if (onset) {
                const jack_nframes_t heard = start + i + r.latency.load(std::memory_order_relaxed);
                r.instants[at++] =
                    static_cast<int64_t>(jack_frames_to_time(r.client, heard)) + offset;
            }
        }
        r.count.store(at, std::memory_order_release);
        return 0;
    }

    jack_client_t* client;
    ableton::Link& peer;
    jack_port_t* port = nullptr;
    float last = 0.0f;
    std::vector<int64_t> instants;
    std::atomic<int32_t> count{0};
    std::atomic<jack_nframes_t> latency{0};
};

TEST(LinkJack, MeasureStartsFallOnTheSessionsBars) {
    JackServer server;
    jack_client_t* client = server.Connect("oxlink");
    ASSERT_NE(client, nullptr) << "jackd -n " << server.name << " did not come up";

    ableton::Link peer(Bpm);
    peer.enable(true);
    LinkSync session;
    session.SetSessionTempo(Bpm);
    session.Enable(true);
    for (int i = 0; i < 100 && (session.Peers() == 0 || peer.numPeers() == 0); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_EQ(session.Peers(), 1) << "the peers did not find each other";

    // Measures of 4 steps at 130 BPM, a click on each measure's start.
    Mixer mixer;
    ClickKit kit(mixer, Rate,
                 {ClickKit::Note(0, 0), ClickKit::Note(256, 0), ClickKit::Note(512, 0),
                  ClickKit::Note(768, 0)},
                 1024);
    kit.schedule.Stop();
    kit.schedule.SetTempo(60000.0 / Bpm);
    theEngine = &kit.engine;
    AudioCallback callback(&kit.engine, mixer);
    JackOutput output;
    output.SetLink(&session);
    ASSERT_TRUE(output.Start(callback));
    OnsetRecorder recorder(client, peer);
    ASSERT_EQ(jack_connect(client, "oxbowlantern:outport 0", "oxlink:in"), 0);
    jack_latency_range_t range;
    jack_port_get_latency_range(jack_port_by_name(client, "oxbowlantern:outport 0"),
                                JackPlaybackLatency, &range);
    recorder.latency.store(range.max);

    // Started off the bar: the first measure is stretched to reach one.
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        Schedule& s = kit.schedule;
        s.playhead.StartAt(0, s.lengthTicks, s.ticks, s.events);
    }
    std::this_thread::sleep_for(std::chrono::seconds(Seconds));
    output.Stop();
    theEngine = nullptr;

    const int32_t n = recorder.count.load(std::memory_order_acquire);
    const ableton::Link::SessionState state = peer.captureAppSessionState();
    const double msPerBeat = 60000.0 / Bpm;
    ASSERT_GE(n, Seconds * Bpm / 60 / 4 - 1);
    double worst = 0.0;
    for (int32_t i = 1; i < n; ++i) { // the first measure reaches for the bar
        const double beat =
            state.beatAtTime(std::chrono::microseconds(recorder.instants[i]), TickGrid::Quantum);
        const double offMs = (beat - TickGrid::NearestBar(beat)) * msPerBeat;
        EXPECT_LT(std::fabs(offMs), 1.0) << "click " << i << " at beat " << beat;
        worst = std::max(worst, std::fabs(offMs));
    }
    std::printf("%d measure starts, worst %.3f ms off the bar\n", n - 1, worst);
}

} // namespace
