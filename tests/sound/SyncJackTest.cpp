// MIDI clock and the JACK transport through the program's own JACK output on
// a real server (the dummy driver): a client of the test records "midi out"
// with the frame of every byte, and reads the transport, while the first
// instrument starts, plays and stops.
#include "ClickKit.h"
#include "JackServerKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/JackOutput.h"
#include "engine/MidiClock.h"

#include <gtest/gtest.h>
#include <jack/midiport.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

namespace {

// The test's MIDI input: every one-byte event with its frame on the server's
// clock, and the server's frame time of every period, into fixed arrays.
class MidiRecorder {
  public:
    static constexpr int32_t Capacity = 4096;

    explicit MidiRecorder(jack_client_t* c) : client(c), events(Capacity), periods(Capacity * 4) {
        port = jack_port_register(client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(client, Process, this);
        jack_activate(client);
    }
    ~MidiRecorder() {
        jack_deactivate(client);
        jack_client_close(client);
    }

    static int Process(jack_nframes_t n, void* arg) {
        MidiRecorder& r = *static_cast<MidiRecorder*>(arg);
        const jack_nframes_t start = jack_last_frame_time(r.client);
        const int32_t p = r.periodCount.load(std::memory_order_relaxed);
        if (p < static_cast<int32_t>(r.periods.size())) {
            r.periods[p] = start;
            r.periodCount.store(p + 1, std::memory_order_release);
        }
        void* buffer = jack_port_get_buffer(r.port, n);
        const uint32_t count = jack_midi_get_event_count(buffer);
        int32_t at = r.count.load(std::memory_order_relaxed);
        for (uint32_t i = 0; i < count && at < Capacity; ++i) {
            jack_midi_event_t e;
            if (jack_midi_event_get(&e, buffer, i) == 0 && e.size == 1)
                r.events[at++] = {static_cast<int64_t>(start) + e.time, e.buffer[0]};
        }
        r.count.store(at, std::memory_order_release);
        return 0;
    }

    jack_client_t* client;
    jack_port_t* port = nullptr;
    std::vector<std::pair<int64_t, uint8_t>> events;
    std::vector<jack_nframes_t> periods;
    std::atomic<int32_t> count{0}, periodCount{0};
};

void UnderLock(const std::function<void()>& f) {
    std::lock_guard<EngineMutex> guard(theEngineLock);
    f();
}

void StartFirst(Schedule& s) {
    UnderLock([&] { s.playhead.StartAt(0, s.lengthTicks, s.ticks, s.events); });
}

TEST(JackServer, MidiClockPulsesArriveOnTheirFrames) {
    JackServer server;
    ASSERT_GT(server.pid, 0);
    jack_client_t* client = server.Connect("oxmidi");
    ASSERT_NE(client, nullptr) << "jackd -n " << server.name << " did not come up";
    MidiRecorder recorder(client);

    // One instrument at 120 BPM: a pulse every 1000 frames.
    Mixer mixer;
    ClickKit kit(mixer, Rate, {ClickKit::Note(0, 0)}, 256);
    kit.schedule.Stop();
    theEngine = &kit.engine;
    AudioCallback callback(&kit.engine, mixer);
    JackOutput output;
    output.SetSync(true, false);
    ASSERT_TRUE(output.Start(callback));
    ASSERT_EQ(jack_connect(client, "oxbowlantern:midi out", "oxmidi:in"), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));

    StartFirst(kit.schedule);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    UnderLock([&] { kit.schedule.Stop(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    output.Stop();
    theEngine = nullptr;

    // Periods the server skipped (on a starved machine) shift the clocks
    // apart; gaps across them are not judged.
    std::vector<int64_t> holes;
    for (int32_t i = 1; i < recorder.periodCount.load(); ++i)
        if (recorder.periods[i] - recorder.periods[i - 1] != 256u)
            holes.push_back(recorder.periods[i]);
    EXPECT_LE(holes.size(), 2u) << "the server skipped too many periods to judge";
    const auto across = [&](int64_t from, int64_t to) {
        return std::any_of(holes.begin(), holes.end(),
                           [&](int64_t h) { return from < h && h <= to; });
    };

    const int32_t n = recorder.count.load(std::memory_order_acquire);
    ASSERT_GE(n, 3);
    const auto& e = recorder.events;
    ASSERT_EQ(e[0].second, MidiClock::Start);
    ASSERT_EQ(e[n - 1].second, MidiClock::Stop);
    EXPECT_EQ(e[1], std::make_pair(e[0].first, MidiClock::Pulse)) << "pulse 0 with the start";
    int pulses = 0;
    for (int32_t i = 1; i < n - 1; ++i) {
        ASSERT_EQ(e[i].second, MidiClock::Pulse) << "byte " << i;
        ++pulses;
        if (i > 1 && !across(e[i - 1].first, e[i].first)) {
            EXPECT_EQ(e[i].first - e[i - 1].first, 1000) << "pulse " << i - 1;
        }
    }
    // 1.5 s hold 72 pulses; the stop comes on a tick boundary after the last.
    EXPECT_GE(pulses, 60);
    EXPECT_GT(e[n - 1].first, e[n - 2].first);
    EXPECT_LE(e[n - 1].first - e[n - 2].first, 1000);
    if (!across(e[0].first, e[n - 1].first)) {
        EXPECT_EQ((e[n - 1].first - e[0].first) % 240, 0);
    }
}

// The program leads the transport: it rolls while the first instrument plays,
// with bars of 4 steps at its tempo; a master already there keeps it.
TEST(JackServer, TransportFollowsTheFirstInstrumentUnlessAnotherLeads) {
    JackServer server;
    jack_client_t* client = server.Connect("oxtransport");
    ASSERT_NE(client, nullptr) << "jackd -n " << server.name << " did not come up";
    jack_activate(client);

    Mixer mixer;
    ClickKit kit(mixer, Rate, {ClickKit::Note(0, 0)}, 256);
    kit.schedule.Stop();
    theEngine = &kit.engine;
    AudioCallback callback(&kit.engine, mixer);
    JackOutput output;
    output.SetSync(false, true);
    ASSERT_TRUE(output.Start(callback));
    EXPECT_EQ(output.SyncNote(), "JACK transport master");

    const auto settle = [&] {
        for (int i = 0; i < 10; ++i) {
            output.FollowSync();
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    };
    StartFirst(kit.schedule);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    settle(); // 0.8 s in: beat 2 (1.6 beats) of bar 1 at 120 BPM
    jack_position_t pos;
    EXPECT_EQ(jack_transport_query(client, &pos), JackTransportRolling);
    ASSERT_NE(pos.valid & JackPositionBBT, 0);
    EXPECT_EQ(pos.beats_per_minute, 120.0);
    EXPECT_EQ(pos.beats_per_bar, 4.0f);
    EXPECT_EQ(pos.ticks_per_beat, 1920.0);
    EXPECT_EQ(pos.bar, 1);
    EXPECT_GE(pos.beat, 2); // later on a loaded machine
    EXPECT_LE(pos.beat, 3);
    UnderLock([&] { kit.schedule.Stop(); });
    settle();
    EXPECT_EQ(jack_transport_query(client, &pos), JackTransportStopped);
    output.Stop();

    // Another master first: the program says so and plays on.
    jack_set_timebase_callback(
        client, 0, [](jack_transport_state_t, jack_nframes_t, jack_position_t*, int, void*) {},
        nullptr);
    ASSERT_TRUE(output.Start(callback));
    EXPECT_EQ(output.SyncNote(), "Another JACK timebase master leads the transport");
    const uint64_t before = callback.FramesRendered();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_GT(callback.FramesRendered(), before);
    output.Stop();
    theEngine = nullptr;
    jack_client_close(client);
}

} // namespace
