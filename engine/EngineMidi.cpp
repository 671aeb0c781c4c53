// The engine's MIDI input: messages from the inboxes, taken in the tick of
// their frame, played through the key map by the MIDI map, and the clock
// that the engine may follow.
#include "engine/Engine.h"

#include "engine/Schedule.h"
#include "engine/SequencerRow.h"

uint64_t Engine::MidiDropped() const {
    uint64_t dropped = 0;
    for (const MidiInbox& inbox : midiInboxes)
        dropped += inbox.Dropped();
    return dropped;
}

// Audio thread, engine lock held: up to MidiPerTick messages due in this
// tick, the earliest frame first across the inboxes. A message for a later
// tick waits, and so does everything behind it in its inbox.
void Engine::TakeMidi() {
    const bool follow = followClock.load(std::memory_order_relaxed);
    if (following && !follow)
        clockFollower.Reset();
    following = follow;
    for (int n = 0; n < MidiPerTick; ++n) {
        MidiInbox* earliest = nullptr;
        int64_t frame = 0;
        for (MidiInbox& inbox : midiInboxes) {
            const StampedMidi* front = inbox.Front();
            if (front == nullptr)
                continue;
            const int64_t f = front->frame;
            const bool due = f < tickEnd || f - tickEnd >= MidiStaleFrames;
            if (due && (earliest == nullptr || f < frame)) {
                earliest = &inbox;
                frame = f;
            }
        }
        if (earliest == nullptr)
            return;
        const StampedMidi e = *earliest->Front();
        earliest->Pop();
        OnMidi(e);
    }
}

// Audio thread, engine lock held. A note-on and a controller rising to 64
// or more are heard (for learning); a controller acts only when it crosses
// 64, so a stream of high values is one press.
void Engine::OnMidi(const StampedMidi& e) {
    const MidiMessage& m = e.msg;
    if (m.status >= 0xF8) {
        OnClockByte(m.status, e.frame);
        return;
    }
    const auto channel = static_cast<uint8_t>((m.status & 0x0F) + 1);
    switch (m.status & 0xF0) {
    case 0x90:
        heardMidi.Push({MidiBinding::Note, channel, m.data1});
        PlayBinding({MidiBinding::Note, channel, m.data1}, 1);
        break;
    case 0x80:
        PlayBinding({MidiBinding::Note, channel, m.data1}, 0);
        break;
    case 0xB0: {
        const uint8_t high = m.data2 >= 64 ? 1 : 0;
        uint8_t& was = controllerHigh[channel - 1][m.data1];
        if (high == was)
            return;
        was = high;
        const MidiBinding b{MidiBinding::Controller, channel, m.data1};
        if (high)
            heardMidi.Push(b);
        PlayBinding(b, high);
        break;
    }
    default:
        break;
    }
}

// Audio thread, engine lock held: a mapped binding is its key position
// pressed or released, with the key map's rules as for a key.
void Engine::PlayBinding(MidiBinding b, uint8_t pressed) {
    const uint32_t key = midiMap.KeyFor(b);
    if (key != 0)
        OnKeyEvent(pressed, key);
}

// Audio thread, engine lock held, only while following: a pulse times the
// tempo (one without a frame counts at the tick's start); Start and Continue
// start the lead instrument's sequencer from the beginning of its pattern,
// as Enter does, and Stop stops it, as numpad 0 does.
void Engine::OnClockByte(uint8_t status, int64_t frame) {
    if (!following)
        return;
    if (status == 0xF8) {
        if (tickRate > 0)
            clockFollower.Pulse(frame >= 0 ? frame : tickStart, tickRate);
        return;
    }
    if (status != 0xFA && status != 0xFB && status != 0xFC)
        return;
    const Playhead* lead = LeadPlayhead();
    if (lead == nullptr || lead->schedule == nullptr)
        return;
    SequencerRow* sequencer = lead->schedule->sequencer;
    if (sequencer == nullptr)
        return;
    if (status == 0xFC) {
        sequencer->Stop();
        sequencer->Repaint();
    } else {
        sequencer->Restart();
    }
}
