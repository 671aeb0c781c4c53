#pragma once

#include "engine/ClockFollower.h"
#include "engine/MidiInbox.h"
#include "engine/MidiMap.h"
#include "engine/SpscRing.h"

#include <atomic>
#include <cstdint>

class ClockDisplay;
class Playhead;
class Row;
class SequencerRow;

// A raw key event by key position: the DirectInput scan code of the key and
// whether it went down.
struct KeyEvent {
    uint8_t pressed;
    uint32_t scanCode;
};

// Where the engine sends the key events it takes from the queue. The key map
// implements it; the view keeps the engine's target up to date.
class KeyTarget {
  public:
    virtual ~KeyTarget() = default;
    virtual void OnKey(uint8_t pressed, uint32_t scanCode) = 0;
};

// The one object that keeps time: the registry of every instrument's playhead,
// what is highlighted for the keys, and the tick. The tick runs on the audio
// thread (see OnTimer); every other operation runs with the engine lock held.
class Engine {
  public:
    static constexpr int MaxHighlights = 30;
    static constexpr int KeysPerTick = 3;
    static constexpr int ClockCells = 30;
    static constexpr int ClockPeriod = 32;
    // MIDI producers, each with its own inbox: the JACK process thread and
    // the ALSA sequencer's input thread.
    static constexpr int MidiFromJack = 0;
    static constexpr int MidiFromAlsa = 1;
    static constexpr int MidiSources = 2;
    // MIDI messages taken a tick at most; the rest wait, in order.
    static constexpr int MidiPerTick = 32;
    // A message stamped this far beyond the tick is from a clock that started
    // again (a new output) and acts at once rather than wait for its frame.
    static constexpr int64_t MidiStaleFrames = 65536;

    Engine();
    virtual ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    void AddPlayhead(Playhead* playhead);
    void RemovePlayhead(Playhead* playhead);

    void HighlightLine(Row* row);
    void AddHighlightedSequencer(SequencerRow* sequencer);
    void ClearHighlights();

    // The key dispatcher's entry: guards against re-entry, then hands the
    // event to the key target.
    void OnKeyEvent(uint8_t pressed, uint32_t scanCode);

    // The key feed's one producing thread (the GUI thread or its X thread),
    // lock-free: queues a key event for the tick, then calls the key wake.
    // False when the queue is full and the event is lost.
    bool PostKey(uint8_t pressed, uint32_t scanCode) {
        const bool queued = keyQueue.Push(KeyEvent{pressed, scanCode});
        if (keyWake != nullptr)
            keyWake(keyWakeContext);
        return queued;
    }

    // Set before the key feed starts: called on the posting thread after
    // every key, so that the GUI, which polls slowly at rest, looks at once
    // for what the key's tick will ask of it.
    void SetKeyWake(void (*wake)(void*), void* context) {
        keyWake = wake;
        keyWakeContext = context;
    }

    // One tick: every playhead advances, up to three queued key events run,
    // then the MIDI due in this tick, and every 32nd tick the clock values go
    // to the clock display.
    // Audio thread, engine lock held: no waits, no allocation, no I/O.
    void OnTimer();

    // A tick whose notes are dropped: every playhead moves on and pattern
    // ends switch patterns as usual, but nothing plays and no key event is
    // taken (they wait for the next sounding tick). Returns the notes
    // dropped. Audio thread, engine lock held, when ticks ran very late.
    int32_t SilentTick();

    // The instrument that MIDI clock, the transport and a shared session
    // follow, and that a followed clock starts and stops: the first in the
    // registry that plays, else the first with lines, else the first; null
    // when there is none. The first one that plays rather than
    // the first one: the program starts with an empty instrument, and a kit
    // loaded beside it is what the performer plays. Engine lock held.
    const Playhead* LeadPlayhead() const;

    // The producer thread of `source` (MidiFromJack or MidiFromAlsa),
    // lock-free: queues a message for the tick of its frame (-1: the next
    // tick). False when that source's inbox is full and the message is lost.
    bool PostMidi(int source, int64_t frame, const MidiMessage& msg) {
        return midiInboxes[source].Post(frame, msg);
    }
    // Any thread: messages lost to full inboxes since the start.
    uint64_t MidiDropped() const;
    // GUI thread: the next note-on or controller raised to 64 or more that a
    // tick took, mapped or not, for learning a mapping. False when none.
    bool TakeHeardMidi(MidiBinding& out) { return heardMidi.Pop(out); }

    // Any thread: whether incoming MIDI clock sets the tempo and starts and
    // stops the first instrument.
    void SetFollowMidiClock(bool on) { followClock.store(on, std::memory_order_relaxed); }
    bool FollowsMidiClock() const { return followClock.load(std::memory_order_relaxed); }
    // Any thread: the step in milliseconds of the followed clock, 0 when
    // there is none.
    double FollowedStepMs() const { return clockFollower.StepMs(); }

    // Audio thread, engine lock held, before each sounding tick: the frames
    // the tick spans, [start, end), on a clock of `rate` frames a second.
    // MIDI stamped before `end` acts in it, so MIDI of a tick that already
    // ran acts in the next. Without it (ticks run by hand) every queued
    // message is due.
    void SetTickFrames(int64_t start, int64_t end, int32_t rate) {
        tickStart = start;
        tickEnd = end;
        tickRate = rate;
    }
    // A start by Enter that waits for a bar of a session shared with other
    // programs: hold says whether a start is to wait, due whether the tick
    // being run is the one to start in. Both are asked in the tick.
    struct StartGate {
        bool (*hold)(void* context) = nullptr;
        bool (*due)(void* context) = nullptr;
        void* context = nullptr;
    };
    // With the engine lock held; a default gate holds nothing.
    void SetStartGate(StartGate gate) { startGate = gate; }
    // The key map, in the tick: true when the start by Enter is held; every
    // highlighted sequencer then restarts in the tick that the gate says.
    bool HoldStart();

    void SetClockDisplay(ClockDisplay* display) { clockDisplay = display; }
    void SetKeyTarget(KeyTarget* target) { keyTarget = target; }

    int8_t highlightCount = 0;
    SequencerRow* highlightedSequencers[MaxHighlights] = {};
    uint8_t highlightMode = 0;
    Row* highlightedLine = nullptr;
    int32_t playheadCapacity = 10;
    int32_t playheadCount = 0;
    Playhead** playheads;

    int32_t refreshCounter = 0;
    int32_t clockMeasures[32] = {};
    int32_t clockBeats[32] = {};
    int32_t clockIds[32] = {};

    // Which key position each MIDI note and controller plays; read in the
    // tick, changed with the engine lock held.
    MidiMap midiMap;

  private:
    void CountClock();
    void ClockPass();
    void TakeMidi();
    void OnMidi(const StampedMidi& e);
    void PlayBinding(MidiBinding b, uint8_t pressed);
    void OnClockByte(uint8_t status, int64_t frame);
    void RunHeldStart();

    SpscRing<KeyEvent, 256> keyQueue;
    KeyTarget* keyTarget = nullptr;
    void (*keyWake)(void*) = nullptr;
    void* keyWakeContext = nullptr;
    ClockDisplay* clockDisplay = nullptr;
    uint8_t keyBusy = 0;

    MidiInbox midiInboxes[MidiSources];
    SpscRing<MidiBinding, 16> heardMidi;
    uint8_t controllerHigh[16][128] = {}; // each controller's last side of 64
    ClockFollower clockFollower;
    std::atomic<bool> followClock{false};
    bool following = false; // as the tick last saw followClock
    int64_t tickStart = 0;
    int64_t tickEnd = INT64_MAX;
    int32_t tickRate = 0;
    StartGate startGate;
    uint8_t startHeld = 0;
};

// The one engine of the program, set up at start.
extern Engine* theEngine;
