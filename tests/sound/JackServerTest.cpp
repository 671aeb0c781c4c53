// Plays a pattern of clicks through the program's own output path on a real
// JACK server (the dummy driver, under a server name of this test's own) and
// records the program's output ports through a JACK client of the test; and
// stops the server under the program's output and starts another.
#include "ClickKit.h"
#include "JackServerKit.h"

#include "engine/AudioCallback.h"
#include "engine/JackOutput.h"
#include "engine/OutputKeeper.h"

#include <gtest/gtest.h>
#include <jack/jack.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// Under ThreadSanitizer: JACK hands port buffers from client to client in the
// order of its process graph, through its own shared memory and semaphores,
// which the sanitizer cannot see. That is not this program's code.
extern "C" const char* __tsan_default_suppressions() {
    return "race:JackOutput::Process\n";
}

namespace {

constexpr int32_t FramesPerTick = 240;

// The test's own client: two input ports recorded into fixed arrays from the
// process callback, with the server's frame time of every period.
class Recorder {
  public:
    static constexpr int64_t Capacity = 4 * Rate;

    explicit Recorder(jack_client_t* c) : client(c), left(Capacity), right(Capacity) {
        ports[0] = jack_port_register(client, "left", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        ports[1] = jack_port_register(client, "right", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        periodStarts.reserve(Capacity);
        jack_set_process_callback(client, Process, this);
        jack_activate(client);
    }
    ~Recorder() {
        jack_deactivate(client);
        jack_client_close(client);
    }

    static int Process(jack_nframes_t n, void* arg) {
        Recorder& r = *static_cast<Recorder*>(arg);
        if (!r.recording.load(std::memory_order_acquire))
            return 0;
        const int64_t at = r.written.load(std::memory_order_relaxed);
        const int64_t take = std::min<int64_t>(n, Capacity - at);
        const auto* l = static_cast<const float*>(jack_port_get_buffer(r.ports[0], n));
        const auto* g = static_cast<const float*>(jack_port_get_buffer(r.ports[1], n));
        std::copy(l, l + take, r.left.begin() + at);
        std::copy(g, g + take, r.right.begin() + at);
        if (take > 0 && r.periodStarts.size() < r.periodStarts.capacity())
            r.periodStarts.push_back(jack_last_frame_time(r.client));
        r.written.store(at + take, std::memory_order_release);
        return 0;
    }

    jack_client_t* client;
    jack_port_t* ports[2];
    std::vector<float> left, right;
    std::vector<jack_nframes_t> periodStarts; // written only by the process thread
    std::atomic<bool> recording{false};
    std::atomic<int64_t> written{0};
};

std::vector<std::string> Connections(jack_client_t* client, const std::string& port) {
    std::vector<std::string> names;
    jack_port_t* p = jack_port_by_name(client, port.c_str());
    if (p == nullptr)
        return names;
    const char** list = jack_port_get_all_connections(client, p);
    for (const char** c = list; c != nullptr && *c != nullptr; ++c)
        names.emplace_back(*c);
    jack_free(list);
    return names;
}

TEST(JackServer, ClicksArriveOnTheirTicksThroughTheProgramsOutput) {
    JackServer server;
    ASSERT_GT(server.pid, 0);
    jack_client_t* client = server.Connect("oxrecorder");
    ASSERT_NE(client, nullptr) << "jackd -n " << server.name << " did not come up";
    Recorder recorder(client);

    // The program's side: an engine whose pattern plays one-frame clicks,
    // through the same output the program opens.
    Mixer mixer;
    // Notes at ticks 0, 4, 15, 34 and 62 of a 100-tick pattern: every gap
    // differs, so the recording shows which note is which.
    ClickKit kit(mixer, Rate,
                 {ClickKit::Note(0, 0), ClickKit::Note(3, 0), ClickKit::Note(10, 0),
                  ClickKit::Note(22, 0), ClickKit::Note(40, 0)},
                 64);
    ASSERT_EQ(kit.schedule.lengthTicks, 100);
    AudioCallback callback(&kit.engine, mixer);
    JackOutput output;
    ASSERT_TRUE(output.Start(callback));
    EXPECT_EQ(output.Describe(), "JACK, 48000 Hz, 256 frames (5.3 ms)");
    EXPECT_EQ(output.SampleRate(), Rate);
    EXPECT_EQ(output.PeriodFrames(), 256);

    const char** ours =
        jack_get_ports(client, "^oxbowlantern:", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
    ASSERT_NE(ours, nullptr);
    std::vector<std::string> outputs;
    for (const char** p = ours; *p != nullptr; ++p)
        outputs.emplace_back(*p);
    jack_free(ours);
    ASSERT_EQ(outputs.size(), 2u);
    EXPECT_EQ(Connections(client, outputs[0]), std::vector<std::string>{"system:playback_1"});
    EXPECT_EQ(Connections(client, outputs[1]), std::vector<std::string>{"system:playback_2"});
    ASSERT_EQ(jack_connect(client, outputs[0].c_str(), "oxrecorder:left"), 0);
    ASSERT_EQ(jack_connect(client, outputs[1].c_str(), "oxrecorder:right"), 0);

    recorder.recording.store(true, std::memory_order_release);
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    recorder.recording.store(false, std::memory_order_release);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    output.Stop();
    const int64_t frames = recorder.written.load(std::memory_order_acquire);
    ASSERT_GE(frames, Rate) << "less than a second was recorded";

    // Where the server skipped a period (on a starved machine), the recording
    // has a hole; gaps are only measured between onsets on the same side of it.
    std::vector<int64_t> holes;
    const std::vector<jack_nframes_t>& starts = recorder.periodStarts;
    for (size_t i = 1; i < starts.size(); ++i)
        if (starts[i] - starts[i - 1] != 256u)
            holes.push_back(static_cast<int64_t>(i) * 256);
    EXPECT_LE(holes.size(), 2u) << "the server skipped too many periods to judge";

    const std::vector<std::pair<int64_t, float>> onsets = Onsets(
        [&] {
            std::vector<float> interleaved(2 * frames);
            for (int64_t f = 0; f < frames; ++f) {
                interleaved[2 * f] = recorder.left[f];
                interleaved[2 * f + 1] = recorder.right[f];
            }
            return interleaved;
        }()
            .data(),
        frames);
    // Two seconds hold four rounds of the five notes; the ends may cut one.
    ASSERT_GE(onsets.size(), 18u);
    for (const auto& [frame, height] : onsets) {
        EXPECT_EQ(height, ClickKit::Height(0)) << "frame " << frame;
        EXPECT_EQ(recorder.right[frame], ClickKit::Height(0)) << "frame " << frame;
    }

    // The gaps in ticks, round the pattern. Each gap is one of them and comes
    // after the one before: a lost or doubled note breaks the round.
    const std::vector<int64_t> gaps = {4, 11, 19, 28, 38};
    int64_t previous = -1; // index in gaps of the last gap seen, -1 after a hole
    int checked = 0;
    for (size_t i = 1; i < onsets.size(); ++i) {
        const int64_t from = onsets[i - 1].first, to = onsets[i].first;
        if (std::any_of(holes.begin(), holes.end(),
                        [&](int64_t h) { return from < h && h <= to; })) {
            previous = -1;
            continue;
        }
        const int64_t frames = to - from;
        EXPECT_EQ(frames % FramesPerTick, 0) << "onsets " << from << " and " << to;
        const auto at = std::find(gaps.begin(), gaps.end(), frames / FramesPerTick);
        ASSERT_NE(at, gaps.end()) << "a gap of " << frames << " frames after frame " << from;
        const int64_t index = at - gaps.begin();
        if (previous >= 0) {
            EXPECT_EQ(index, (previous + 1) % 5) << "the gap after frame " << from;
        }
        previous = index;
        ++checked;
    }
    EXPECT_GE(checked, 14);
    EXPECT_EQ(callback.LateTicks(), 0u);
}

// Asks the keeper as the window's timer does, but every 50 ms, until done
// holds or the time is up.
template <class Done> bool Eventually(OutputKeeper& keeper, int milliseconds, Done done) {
    for (int waited = 0; waited < milliseconds; waited += 50) {
        keeper.Check();
        if (done())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

void CountTick(void* ticks) {
    static_cast<std::atomic<int64_t>*>(ticks)->fetch_add(1, std::memory_order_relaxed);
}
int32_t CountSilentTick(void* ticks) {
    CountTick(ticks);
    return 0;
}

TEST(JackServer, OutputComesBackOnANewServerWithItsRate) {
    auto first = std::make_unique<JackServer>();
    jack_client_t* probe = first->Connect("oxprobe");
    ASSERT_NE(probe, nullptr) << "jackd -n " << first->name << " did not come up";
    jack_client_close(probe);

    Mixer mixer;
    std::atomic<int64_t> ticks{0};
    AudioCallback callback(CountTick, CountSilentTick, &ticks, mixer);
    OutputKeeper::Outputs outputs;
    outputs.push_back(std::make_unique<JackOutput>());
    OutputKeeper keeper(callback, std::move(outputs));
    ASSERT_TRUE(keeper.Open());
    ASSERT_TRUE(Eventually(keeper, 2000, [&] { return callback.FramesRendered() > 0; }));

    first.reset(); // the server goes away under the running client
    EXPECT_TRUE(Eventually(keeper, 3000, [&] { return !keeper.Playing(); }));
    EXPECT_EQ(keeper.StatusText().rfind("No sound: the JACK output went away.", 0), 0u)
        << keeper.StatusText();
    const int64_t ticksBefore = ticks.load();

    JackServer second(44100, 512);
    jack_client_t* client = second.Connect("oxprobe");
    ASSERT_NE(client, nullptr) << "jackd -n " << second.name << " did not come up";
    ASSERT_TRUE(Eventually(keeper, 3000, [&] { return keeper.Playing(); }));
    EXPECT_EQ(keeper.StatusText().rfind("Sound: JACK, 44100 Hz, 512 frames (11.6 ms)", 0), 0u)
        << keeper.StatusText();
    EXPECT_EQ(callback.SampleRate(), 44100);
    EXPECT_EQ(Connections(client, "oxbowlantern:outport 0"),
              std::vector<std::string>{"system:playback_1"});
    EXPECT_EQ(Connections(client, "oxbowlantern:outport 1"),
              std::vector<std::string>{"system:playback_2"});

    // Frames flow again and the ticks run on the new clock.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_GE(callback.FramesRendered(), 44100u / 4);
    EXPECT_GE(ticks.load() - ticksBefore, 50);
    keeper.Close();
    jack_client_close(client);
}

} // namespace
