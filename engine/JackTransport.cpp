#include "engine/JackTransport.h"

#include "engine/Playhead.h"
#include "engine/TickTime.h"

#include <cerrno>
#include <cmath>
#include <jack/jack.h>

void JackTransport::Attach(jack_client_t* c) {
    client = c;
    master = false;
    busy = false;
    rolling = false;
    if (client != nullptr && wanted)
        TakeTimebase();
}

void JackTransport::Detach() {
    if (client != nullptr && master) {
        jack_transport_stop(client);
        jack_release_timebase(client);
    }
    client = nullptr;
    master = false;
}

void JackTransport::Want(bool m) {
    wanted = m;
    if (client == nullptr)
        return;
    if (wanted && !master) {
        TakeTimebase();
    } else if (!wanted && master) {
        if (rolling)
            jack_transport_stop(client);
        jack_release_timebase(client);
        master = false;
        rolling = false;
    }
    if (!wanted)
        busy = false;
}

// Asks only if no other client is the master.
void JackTransport::TakeTimebase() {
    const int result = jack_set_timebase_callback(client, 1, Timebase, this);
    master = result == 0;
    busy = result == EBUSY;
}

void JackTransport::Follow() {
    if (client == nullptr || !master)
        return;
    const bool playing = running.load(std::memory_order_relaxed);
    if (playing == rolling)
        return;
    rolling = playing;
    if (playing) {
        jack_transport_locate(client, 0);
        jack_transport_start(client);
    } else {
        jack_transport_stop(client);
    }
}

std::string JackTransport::Note() const {
    if (busy)
        return "Another JACK timebase master leads the transport";
    return master ? "JACK transport master" : "";
}

void JackTransport::AfterTick(int64_t tick, const Playhead* first) {
    const bool now = first != nullptr && first->running != 0;
    if (now && !wasRunning)
        beats = 0.0;
    else if (now)
        beats += static_cast<double>(tick - lastTick) * TickTime::TickMs / stepMs;
    if (now)
        stepMs = first->stepMs;
    wasRunning = now;
    lastTick = tick;
    running.store(now, std::memory_order_relaxed);
}

void JackTransport::FillPosition(double beats, double stepMs, jack_position_t& pos) {
    const double whole = std::floor(beats);
    const int64_t beat = static_cast<int64_t>(whole);
    pos.valid = JackPositionBBT;
    pos.bar = static_cast<int32_t>(beat / BeatsPerBar + 1);
    pos.beat = static_cast<int32_t>(beat % BeatsPerBar + 1);
    pos.tick = static_cast<int32_t>((beats - whole) * TicksPerBeat);
    pos.bar_start_tick = static_cast<double>(pos.bar - 1) * BeatsPerBar * TicksPerBeat;
    pos.beats_per_bar = BeatsPerBar;
    pos.beat_type = 4;
    pos.ticks_per_beat = TicksPerBeat;
    pos.beats_per_minute = 60000.0 / stepMs;
}

// JACK's process thread of this client, after its process callback.
void JackTransport::Timebase(jack_transport_state_t, jack_nframes_t, jack_position_t* pos, int,
                             void* arg) {
    const JackTransport& self = *static_cast<JackTransport*>(arg);
    FillPosition(self.beats, self.stepMs, *pos);
}
