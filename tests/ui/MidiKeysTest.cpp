// MIDI through the engine into the key map, and the clock's start and stop
// of the first instrument's sequencer.
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Step {
    const char* what;
    bool follow;
    std::vector<MidiMessage> messages;
    uint8_t stopped; // the sequencer's, after
};

TEST(MidiKeys, NotesPlayKeysAndFollowedClockStartsAndStops) {
    ViewFixture f;
    f.AddLines(1);
    SongFixture::Store(*f.view.Current(), 0, {{0, 0}});
    Engine& engine = f.song.engine;
    engine.midiMap.Set({MidiBinding::Note, 10, 36}, KeyMap::Grave);
    engine.midiMap.Set({MidiBinding::Controller, 10, 64}, KeyMap::Return);
    const Step steps[] = {
        {"clock ignored", false, {{0xFA, 0, 0}}, 1},
        {"Grave then Enter by MIDI", false, {{0x99, 36, 99}, {0x89, 36, 0}, {0xB9, 64, 127}}, 0},
        {"Stop", true, {{0xFC, 0, 0}}, 1},
        {"Start", true, {{0xFA, 0, 0}}, 0},
        {"Stop again", true, {{0xFC, 0, 0}}, 1},
        {"Continue starts", true, {{0xFB, 0, 0}}, 0},
    };
    for (const Step& s : steps) {
        engine.SetFollowMidiClock(s.follow);
        for (const MidiMessage& m : s.messages)
            ASSERT_TRUE(engine.PostMidi(Engine::MidiFromJack, -1, m));
        f.song.Ticks(3);
        EXPECT_EQ(f.view.Current()->GetSequencer()->stopped, s.stopped) << s.what;
        EXPECT_EQ(f.view.Current()->GetSchedule()->playhead.running, !s.stopped) << s.what;
    }
    // From its beginning: three ticks after the start.
    EXPECT_EQ(f.view.Current()->GetSchedule()->playhead.position, 2);
}

// The program starts with an empty instrument; the clock's Start plays the
// kit loaded beside it, which then leads.
TEST(MidiKeys, FollowedClockStartsTheKitBesideAnEmptyFirstInstrument) {
    ViewFixture f;
    f.view.NewInstrument();
    f.AddLines(1);
    SongFixture::Store(*f.view.Current(), 0, {{0, 0}});
    Instrument* kit = f.view.Current();
    Engine& engine = f.song.engine;
    engine.SetFollowMidiClock(true);
    ASSERT_TRUE(engine.PostMidi(Engine::MidiFromJack, -1, {0xFA, 0, 0}));
    f.song.Ticks(2);
    EXPECT_EQ(kit->GetSequencer()->stopped, 0);
    EXPECT_EQ(engine.LeadPlayhead(), kit->GetSchedule()->GetPlayhead());
}

} // namespace
