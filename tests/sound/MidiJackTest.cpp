// MIDI into the program's own JACK output on a real server (the dummy
// driver): a client of the test sends a note at a chosen offset in its
// period to "midi in", the note is mapped to the key that starts the first
// instrument, and a second client hears the first click on "outport 0". The
// click comes on the boundary of the tick after the note's tick, or one tick
// later when the note's tick began before the note's period.
#include "ClickKit.h"
#include "JackServerKit.h"

#include "engine/AudioCallback.h"
#include "engine/EngineLock.h"
#include "engine/JackOutput.h"

#include <gtest/gtest.h>
#include <jack/midiport.h>

#include <atomic>
#include <mutex>
#include <vector>

namespace {

constexpr int32_t Period = 256;
constexpr int32_t TickFrames = Rate / 200;

// Sends one note-on at the asked offset of the next period, and keeps its
// frame on the server's clock.
struct Sender {
    explicit Sender(jack_client_t* c) : client(c) {
        port = jack_port_register(client, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
        jack_set_process_callback(client, Process, this);
        jack_activate(client);
    }
    ~Sender() { jack_client_close(client); }
    static int Process(jack_nframes_t n, void* arg) {
        Sender& s = *static_cast<Sender*>(arg);
        void* buffer = jack_port_get_buffer(s.port, n);
        jack_midi_clear_buffer(buffer);
        const int32_t offset = s.offset.exchange(-1);
        if (offset >= 0) {
            const uint8_t note[3] = {0x99, 36, 100};
            jack_midi_event_write(buffer, static_cast<jack_nframes_t>(offset), note, 3);
            s.sent.store(jack_last_frame_time(s.client) + offset);
        }
        return 0;
    }
    jack_client_t* client;
    jack_port_t* port;
    std::atomic<int32_t> offset{-1};
    std::atomic<int64_t> sent{-1};
};

// The frame, on the server's clock, of the first sound after it is cleared,
// and whether any period of the server went missing.
struct Listener {
    explicit Listener(jack_client_t* c) : client(c) {
        port = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(client, Process, this);
        jack_activate(client);
    }
    ~Listener() { jack_client_close(client); }
    static int Process(jack_nframes_t n, void* arg) {
        Listener& l = *static_cast<Listener*>(arg);
        const int64_t start = jack_last_frame_time(l.client);
        if (l.last >= 0 && start - l.last != Period)
            l.holes.fetch_add(1);
        l.last = start;
        const float* in = static_cast<const float*>(jack_port_get_buffer(l.port, n));
        for (jack_nframes_t i = 0; i < n && l.onset.load() < 0; ++i)
            if (in[i] != 0.0f)
                l.onset.store(start + i);
        return 0;
    }
    jack_client_t* client;
    jack_port_t* port;
    int64_t last = -1;
    std::atomic<int64_t> onset{-1};
    std::atomic<int32_t> holes{0};
};

// The key target: key 28 starts the kit's pattern, as Enter starts a
// highlighted sequencer.
struct StartKey : KeyTarget {
    explicit StartKey(Schedule& s) : schedule(s) {}
    void OnKey(uint8_t pressed, uint32_t code) override {
        if (pressed && code == 28)
            schedule.playhead.StartAt(0, schedule.lengthTicks, schedule.ticks, schedule.events);
    }
    Schedule& schedule;
};

TEST(JackServer, MidiNotePlaysOnTheTickOfItsFrame) {
    JackServer server(Rate, Period);
    jack_client_t* sendClient = server.Connect("oxsend");
    ASSERT_NE(sendClient, nullptr) << "jackd -n " << server.name << " did not come up";
    Sender sender(sendClient);
    Listener listener(server.Connect("oxhear"));

    Mixer mixer;
    ClickKit kit(mixer, Rate, {ClickKit::Note(0, 0)}, 256);
    kit.schedule.Stop();
    StartKey start(kit.schedule);
    kit.engine.SetKeyTarget(&start);
    kit.engine.midiMap.Set({MidiBinding::Note, 10, 36}, 28);
    theEngine = &kit.engine;
    AudioCallback callback(&kit.engine, mixer);
    JackOutput output;
    ASSERT_TRUE(output.Start(callback));
    ASSERT_EQ(jack_connect(sendClient, "oxsend:out", "oxbowlantern:midi in"), 0);
    ASSERT_EQ(jack_connect(sendClient, "oxbowlantern:outport 0", "oxhear:in"), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));

    // The offsets from 239 on fall in a tick that began inside their period.
    const int32_t offsets[] = {255, 0, 120, 239, 250, 17, 238};
    std::vector<std::pair<int64_t, int64_t>> heard; // (sent, onset)
    for (int32_t offset : offsets) {
        listener.onset.store(-1);
        sender.sent.store(-1);
        sender.offset.store(offset);
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        heard.emplace_back(sender.sent.load(), listener.onset.load());
        std::lock_guard<EngineMutex> guard(theEngineLock);
        kit.schedule.Stop();
    }
    output.Stop();
    theEngine = nullptr;
    kit.engine.SetKeyTarget(nullptr);

    // The program's tick grid on the server's clock, from the first click.
    const int64_t grid = heard[0].second % TickFrames;
    for (size_t i = 0; i < heard.size(); ++i) {
        const auto [sent, onset] = heard[i];
        ASSERT_GE(sent, 0) << "offset " << offsets[i];
        ASSERT_GE(onset, 0) << "offset " << offsets[i];
        const int64_t since = onset - sent;
        EXPECT_GT(since, 0) << "offset " << offsets[i];
        EXPECT_LE(since, offsets[i] >= TickFrames - 1 ? TickFrames : 2 * TickFrames)
            << "offset " << offsets[i];
        if (listener.holes.load() > 0)
            continue; // a starved server moved its clock against the program's
        const int64_t tickStart = sent - ((sent - grid) % TickFrames + TickFrames) % TickFrames;
        const bool ranBefore = tickStart < sent - offsets[i];
        EXPECT_EQ(onset, tickStart + (ranBefore ? 2 : 1) * TickFrames) << "offset " << offsets[i];
    }
}

} // namespace
