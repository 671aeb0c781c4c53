#pragma once

#include "engine/MidiParser.h"
#include "engine/SpscRing.h"

#include <atomic>
#include <cstdint>

// A MIDI message with the frame it belongs to, counted as the audio callback
// counts frames; -1 for "as soon as possible".
struct StampedMidi {
    int64_t frame;
    MidiMessage msg;
};

// The MIDI of one producing thread on its way to the tick: a fixed ring, in
// the order the messages came. A full ring drops the newest message and
// counts it. Post is lock-free for the one producer; the rest runs in the
// tick, the one consumer.
class MidiInbox {
  public:
    static constexpr std::size_t Capacity = 1024;

    // The producer thread: false when the ring is full and the message is lost.
    bool Post(int64_t frame, const MidiMessage& msg) {
        if (ring.Push(StampedMidi{frame, msg}))
            return true;
        dropped.fetch_add(1, std::memory_order_relaxed);
        return false;
    }

    // Audio thread: the oldest message not yet taken, or null. It stays the
    // front until Pop.
    const StampedMidi* Front() {
        if (!held)
            held = ring.Pop(front);
        return held ? &front : nullptr;
    }
    // Audio thread: takes the front.
    void Pop() { held = false; }

    // Any thread: messages lost to a full ring since the start.
    uint64_t Dropped() const { return dropped.load(std::memory_order_relaxed); }

  private:
    SpscRing<StampedMidi, Capacity> ring;
    StampedMidi front{};
    bool held = false;
    std::atomic<uint64_t> dropped{0};
};
