#include "engine/JackOutput.h"

#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/LinkSync.h"

#include <algorithm>
#include <chrono>
#include <jack/jack.h>
#include <jack/midiport.h>
#include <thread>

namespace {

// libjack prints its own complaints while it looks for a server that is not
// there; the program says one line of its own instead.
void Quiet(const char*) {}

std::string StatusText(jack_status_t status) {
    if ((status & JackServerFailed) != 0)
        return "no JACK server is running";
    if ((status & JackVersionError) != 0)
        return "the JACK server speaks another protocol version";
    if ((status & JackShmFailure) != 0)
        return "JACK's shared memory could not be reached";
    return "the JACK server refused the client";
}

} // namespace

JackOutput::~JackOutput() {
    Stop();
}

bool JackOutput::Start(AudioCallback& c) {
    jack_set_error_function(Quiet);
    jack_set_info_function(Quiet);
    lost.store(false, std::memory_order_release);
    callback = &c;
    if (Open())
        return true;
    if (client != nullptr)
        jack_client_close(client);
    c.SetTickObserver(nullptr, nullptr);
    c.SetTickPlacer(nullptr, nullptr);
    client = nullptr;
    callback = nullptr;
    return false;
}

// Opens the client, registers its ports and callbacks, and starts it; the
// callback is prepared for the server's rate before the first period.
bool JackOutput::Open() {
    jack_status_t status{};
    client = jack_client_open(ClientName, JackNoStartServer, &status);
    if (client == nullptr) {
        failure = StatusText(status);
        return false;
    }
    ports[0] =
        jack_port_register(client, "outport 0", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    ports[1] =
        jack_port_register(client, "outport 1", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    midiPort = jack_port_register(client, "midi out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    midiInPort = jack_port_register(client, "midi in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    // A server without MIDI still plays; SyncNote says what is missing.
    if (ports[0] == nullptr || ports[1] == nullptr) {
        failure = "the JACK output ports could not be registered";
        return false;
    }
    rate = static_cast<int32_t>(jack_get_sample_rate(client));
    period.store(static_cast<int32_t>(jack_get_buffer_size(client)), std::memory_order_relaxed);
    jack_set_process_callback(client, Process, this);
    jack_set_buffer_size_callback(client, OnBufferSize, this);
    jack_set_latency_callback(client, OnLatency, this);
    jack_on_info_shutdown(client, OnShutdown, this);
    callback->Prepare(rate);
    clock.Prepare(rate, WriteMidi, this);
    callback->SetTickObserver(OnTick, this);
    callback->SetTickPlacer(PlaceTick, this);
    if (jack_activate(client) != 0) {
        failure = "the JACK client could not be activated";
        return false;
    }
    ConnectToPlayback();
    transport.Attach(client);
    return true;
}

void JackOutput::SetSync(bool midiClock, bool transportMaster) {
    clockOn.store(midiClock, std::memory_order_relaxed);
    transport.Want(transportMaster);
}

// The left port goes to the first playback port and the right one to the
// second, or to the first too when there is only one.
void JackOutput::ConnectToPlayback() {
    const char** playback = jack_get_ports(client, nullptr, JACK_DEFAULT_AUDIO_TYPE,
                                           JackPortIsPhysical | JackPortIsInput);
    if (playback == nullptr)
        return;
    for (int i = 0; i < 2 && playback[0] != nullptr; ++i) {
        const char* to = i == 1 && playback[1] != nullptr ? playback[1] : playback[0];
        jack_connect(client, jack_port_name(ports[i]), to);
    }
    jack_free(playback);
}

void JackOutput::Stop() {
    if (client == nullptr)
        return;
    if (!lost.load(std::memory_order_acquire)) {
        transport.Detach();
        jack_deactivate(client);
        jack_client_close(client);
    } else {
        // The client is left as it is (see the class). A server that is
        // gone starts no period, so at most the one under way ends here.
        for (int i = 0; i < 100 && processing.load(std::memory_order_acquire); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        transport.Attach(nullptr);
    }
    callback->SetTickObserver(nullptr, nullptr);
    callback->SetTickPlacer(nullptr, nullptr);
    client = nullptr;
    callback = nullptr;
}

std::string JackOutput::SyncNote() const {
    const std::string note = transport.Note();
    if (client == nullptr || (midiPort != nullptr && midiInPort != nullptr))
        return note;
    return "The JACK server gives no MIDI ports" + (note.empty() ? "" : "; " + note);
}

std::string JackOutput::Describe() const {
    return DescribeDevice("JACK", rate, PeriodFrames());
}

// Audio thread (JACK's process thread): queues the period's MIDI input for
// the ticks, renders interleaved stereo in chunks and spreads it over the two
// ports; the MIDI clock's bytes of the period go to "midi out". No waits, no
// allocation.
int JackOutput::Process(jack_nframes_t frames, void* arg) {
    JackOutput& self = *static_cast<JackOutput*>(arg);
    self.processing.store(true);
    self.ReadMidi(frames);
    const bool clockOn = self.midiPort != nullptr && self.clockOn.load(std::memory_order_relaxed);
    if (self.midiPort != nullptr) {
        self.midiBuffer = jack_port_get_buffer(self.midiPort, frames);
        jack_midi_clear_buffer(self.midiBuffer);
    }
    if (clockOn)
        self.clock.BeginPeriod(static_cast<int64_t>(self.callback->FramesRendered()),
                               static_cast<int32_t>(frames));
    // Link's timing is read only while it is on: at rest a period does
    // nothing for it.
    LinkSync* link = self.link.load(std::memory_order_acquire);
    self.periodLink = link != nullptr && link->Enabled() ? link : nullptr;
    if (self.periodLink != nullptr)
        self.BeginLinkPeriod(*self.periodLink, frames);
    float* left = static_cast<float*>(jack_port_get_buffer(self.ports[0], frames));
    float* right = static_cast<float*>(jack_port_get_buffer(self.ports[1], frames));
    const int32_t total = static_cast<int32_t>(frames);
    for (int32_t done = 0; done < total;) {
        const int32_t n = std::min(ChunkFrames, total - done);
        self.callback->Render(self.scratch, n);
        for (int32_t i = 0; i < n; ++i) {
            left[done + i] = self.scratch[2 * i];
            right[done + i] = self.scratch[2 * i + 1];
        }
        done += n;
    }
    if (clockOn)
        self.clock.EndPeriod();
    self.processing.store(false, std::memory_order_release);
    return 0;
}

// Audio thread: every message of the period on "midi in" goes to the engine
// stamped with its frame, before the period's ticks run, so each acts in the
// tick its frame falls in; when that tick began in an earlier period and has
// run, in the next one.
void JackOutput::ReadMidi(jack_nframes_t frames) {
    if (midiInPort == nullptr)
        return;
    void* in = jack_port_get_buffer(midiInPort, frames);
    Engine* engine = theEngine;
    if (in == nullptr || engine == nullptr)
        return;
    const int64_t start = static_cast<int64_t>(callback->FramesRendered());
    const uint32_t count = jack_midi_get_event_count(in);
    for (uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t e;
        if (jack_midi_event_get(&e, in, i) != 0)
            continue;
        MidiMessage msg;
        for (size_t b = 0; b < e.size; ++b)
            if (midiParser.Feed(e.buffer[b], msg))
                engine->PostMidi(Engine::MidiFromJack, start + e.time, msg);
    }
}

// Audio thread, engine lock held (the callback's tick observer): the clock
// and the transport follow the first instrument's playhead.
void JackOutput::OnTick(void* arg, int64_t tick) {
    const Playhead* first = theEngine != nullptr ? theEngine->LeadPlayhead() : nullptr;
    JackOutput& self = *static_cast<JackOutput*>(arg);
    self.clock.AfterTick(tick, first, self.callback->CurrentFrame());
    self.transport.AfterTick(tick, first);
    if (self.periodLink != nullptr)
        self.periodLink->AfterTick(tick, theEngine);
}

// Audio thread: the tick boundaries on the shared session's beats.
int64_t JackOutput::PlaceTick(void* arg, int64_t tick, int64_t frame) {
    LinkSync* session = static_cast<JackOutput*>(arg)->periodLink;
    return session != nullptr ? session->PlaceTick(tick, frame) : -1;
}

// Audio thread: when the period's first frame reaches the speakers, on the
// session's clock. JACK gives the cycle's start and the next one's on its
// own clock, and the latency callback the playback latency in frames; the
// offset between the two clocks is read anew each period, so that they need
// not share a time base (both read CLOCK_MONOTONIC_RAW here).
void JackOutput::BeginLinkPeriod(LinkSync& session, jack_nframes_t frames) {
    jack_nframes_t cycleFrame = 0;
    jack_time_t cycleStart = 0, nextStart = 0;
    float periodMicros = 0.0f;
    const int64_t first = static_cast<int64_t>(callback->FramesRendered());
    if (jack_get_cycle_times(client, &cycleFrame, &cycleStart, &nextStart, &periodMicros) != 0 ||
        nextStart <= cycleStart) {
        session.BeginPeriod(first, static_cast<int32_t>(frames), 0.0, 0.0, rate);
        return;
    }
    const double offset =
        static_cast<double>(session.Micros()) - static_cast<double>(jack_get_time());
    const double perFrame = static_cast<double>(nextStart - cycleStart) / frames;
    session.BeginPeriod(first, static_cast<int32_t>(frames),
                        static_cast<double>(cycleStart) + offset +
                            playbackLatency.load(std::memory_order_relaxed) * perFrame,
                        perFrame, rate);
}

// Audio thread: one byte into the period's MIDI buffer.
void JackOutput::WriteMidi(void* arg, int32_t offset, uint8_t byte) {
    jack_midi_event_write(static_cast<JackOutput*>(arg)->midiBuffer,
                          static_cast<jack_nframes_t>(offset), &byte, 1);
}

// JACK's thread, between periods: the server changed its period.
int JackOutput::OnBufferSize(jack_nframes_t frames, void* arg) {
    static_cast<JackOutput*>(arg)->period.store(static_cast<int32_t>(frames),
                                                std::memory_order_relaxed);
    return 0;
}

// JACK's thread, whenever the latencies of the graph change: the frames from
// "outport 0" to the speakers, for laying ticks on a shared session's beats.
void JackOutput::OnLatency(jack_latency_callback_mode_t mode, void* arg) {
    JackOutput& self = *static_cast<JackOutput*>(arg);
    if (mode != JackPlaybackLatency)
        return;
    jack_latency_range_t range{};
    jack_port_get_latency_range(self.ports[0], JackPlaybackLatency, &range);
    self.playbackLatency.store(range.max, std::memory_order_relaxed);
}

// JACK's thread, as from a signal handler: only raises the flag.
void JackOutput::OnShutdown(jack_status_t, const char*, void* arg) {
    static_cast<JackOutput*>(arg)->lost.store(true, std::memory_order_release);
}
