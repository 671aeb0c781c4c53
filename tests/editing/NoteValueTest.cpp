#include "LineFixture.h"

#include "engine/Mixer.h"
#include "engine/SampleData.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using F = LineFixture;

TEST(NoteValues, SelectionTakesOneFieldAndKeepsTheOthers) {
    LineFixture f;
    f.SetTimes({0, 64, 128, 192, 256, 320, 384, 448});
    for (int32_t i = 0; i < 8; ++i)
        f.line->points->items[i].pan = static_cast<int16_t>(100 * i);
    f.Select(0, 1023);
    f.line->SetNoteValue(FieldVolume, -3000, false);
    for (int32_t i = 0; i < 8; ++i) {
        EXPECT_EQ(f.line->points->items[i].volume, -3000);
        EXPECT_EQ(f.line->points->items[i].pan, 100 * i);
        EXPECT_EQ(f.bank->working.items[i].volume, -3000);
    }
    f.line->SetNoteValue(FieldVolume, -100, true); // the default note only
    EXPECT_EQ(f.line->defaultNote.volume, -100);
    EXPECT_EQ(f.line->points->items[0].volume, -3000);
    f.line->pointsHighlighted = 0; // no highlighted points: nothing changes
    f.line->SetNoteValue(FieldVolume, -50, false);
    EXPECT_EQ(f.line->points->items[0].volume, -3000);
}

// The line's samples play on voices of a real mixer: the commands of the
// fixture's queue are handed on to it after each tick.
struct MixerChain {
    explicit MixerChain(LineFixture& f) : f(f) {
        EXPECT_EQ(mixer.Attach(new SampleData(48000, 1, 48000, 2)), 0);
        mixer.ApplyCommands();
        f.line->SetOuterLevel(1, 1.0); // the control group at full level
        f.line->SetValue(Line::FirstSampleVolume, 1.0, 0);
    }
    void Forward() {
        MixerCommand c;
        while (f.song.queue.Pop(c))
            mixer.Commands()->Push(c);
        mixer.ApplyCommands();
    }
    void Tick() {
        f.song.engine.OnTimer();
        Forward();
    }
    const Voice& voice() const { return *mixer.VoiceAt(0); }
    LineFixture& f;
    Mixer mixer;
};

struct LevelCase {
    int16_t noteVolume;
    double lineVolume;
    bool muted;
    int32_t heard; // hundredths of a dB at the voice
};

class LevelChain : public testing::TestWithParam<LevelCase> {};

TEST_P(LevelChain, NoteBarValueReachesTheMixersGain) {
    const LevelCase& c = GetParam();
    LineFixture f(512);
    MixerChain chain(f);
    f.SetTimes({0});
    f.Select(0, 0);
    f.line->SetNoteValue(FieldVolume, c.noteVolume, false);
    f.line->SetValue(Line::VolumeCode, c.lineVolume, 0);
    if (c.muted)
        f.line->Mute();
    f.bank->Play(0, 0, 1);
    chain.Tick();
    ASSERT_TRUE(chain.voice().playing);
    EXPECT_EQ(chain.voice().volume, c.heard);
    const float gain = c.heard <= -10000 ? 0.0f : std::pow(10.0f, c.heard / 2000.0f);
    EXPECT_NEAR(chain.voice().gainLeft, gain, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Table, LevelChain,
                         testing::Values(LevelCase{0, 1.0, false, 0},
                                         LevelCase{-2000, 1.0, false, -2000},
                                         LevelCase{-5000, 0.5, false, -7500},
                                         LevelCase{0, 0.5, false, -5000},
                                         LevelCase{0, 1.0, true, -10000}));

TEST(LevelChain, LineVolumeReachesASoundingNoteAtOnce) {
    LineFixture f(512);
    MixerChain chain(f);
    f.SetTimes({0});
    f.line->SetValue(Line::VolumeCode, 1.0, 0);
    f.bank->Play(0, 0, 1);
    chain.Tick();
    ASSERT_TRUE(chain.voice().playing);
    f.line->SetValue(Line::VolumeCode, 0.5, 0);
    chain.Forward();
    EXPECT_EQ(chain.voice().volume, -5000);
}

// At 500 ms a step a 512-unit pattern lasts 800 ticks: time t plays at
// tick t x 1.5625.
TEST(LiveEdits, ReachThePlayingPassAtOnce) {
    LineFixture f(512);
    f.SetTimes({128, 384});
    f.bank->Play(0, 0, 1);
    const int64_t start = f.song.tick;
    f.song.Ticks(100);
    f.line->OnLButtonDown(1, F::X(256), F::Y); // a new note at 256, ahead
    f.line->OnLButtonDown(5, F::X(384), F::Y); // the note at 384 erased
    f.line->OnLButtonDown(1, F::X(32), F::Y);  // behind: only the next pass
    f.line->SetWindow(8, 0);
    f.line->OnLButtonDown(1, F::X(600), F::Y); // past the pattern's end: nowhere
    f.song.Ticks(699);
    std::vector<int64_t> heard;
    for (const auto& [tick, voice] : f.song.plays)
        heard.push_back(tick - start);
    EXPECT_EQ(heard, (std::vector<int64_t>{200, 400}));
    f.song.Ticks(100);
    EXPECT_EQ(f.song.plays.back().first - start, 850);
}

} // namespace
