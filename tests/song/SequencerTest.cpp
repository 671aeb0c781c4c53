#include "SongFixture.h"
#include "ui/RecordingCanvas.h"

#include <gtest/gtest.h>

namespace {

using Plays = std::vector<std::pair<int64_t, int>>;

// Numpad keys by digit.
constexpr uint32_t Numpad[10] = {82, 79, 80, 81, 75, 76, 77, 71, 72, 73};
constexpr uint32_t NumpadPlus = 78;

void Type(SequencerRow& s, int8_t focus, int32_t slot, int digit) {
    s.focus = focus;
    s.focusSlot = slot;
    s.OnKey(Numpad[digit]);
}

struct CueCase {
    const char* name;
    uint8_t mode;
    std::vector<int> queue;   // pattern numbers typed into the queue
    std::vector<int> program; // pattern numbers typed into the program
    std::vector<int> played;  // pattern numbers over five passes, 0 stopped
    uint8_t modeAfter;
};

class CueModes : public testing::TestWithParam<CueCase> {};

TEST_P(CueModes, DecideWhatFollowsAtEachPatternEnd) {
    const CueCase& c = GetParam();
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    for (size_t i = 0; i < c.queue.size(); ++i)
        Type(s, 1, static_cast<int32_t>(i), c.queue[i]);
    for (size_t i = 0; i < c.program.size(); ++i)
        Type(s, 2, static_cast<int32_t>(i), c.program[i]);
    s.SetCueMode(c.mode);
    s.Restart();
    EXPECT_EQ(f.Patterns(inst, 5 * 800), c.played);
    EXPECT_EQ(s.cueMode, c.modeAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Scenarios, CueModes,
    testing::Values(CueCase{"lockRepeats", 0, {3}, {}, {1}, 0},
                    CueCase{"nextTakesTheQueueThenLocks", 1, {3, 7}, {}, {1, 3}, 0},
                    CueCase{"nextWithEmptyQueueRepeats", 1, {}, {}, {1}, 1},
                    CueCase{"backPullsTheQueueThenStops", 2, {3, 4}, {}, {1, 3, 4, 0}, 2},
                    CueCase{"progLoopsTheFilledSlots", 3, {}, {3, 5}, {1, 3, 5, 3, 5, 3}, 3},
                    CueCase{"progWithEmptyProgramRepeats", 3, {}, {}, {1}, 3}),
    [](const testing::TestParamInfo<CueCase>& i) { return std::string(i.param.name); });

TEST(Sequencer, StoppedByTheQueueKeepsItsNumberForEnter) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    Type(s, 1, 0, 4);
    s.SetCueMode(2);
    s.Restart();
    f.Ticks(2 * 800);
    EXPECT_EQ(s.stopped, 1);
    EXPECT_EQ(s.currentNumber, 4);
    s.Restart();
    EXPECT_EQ(inst.GetBank()->playing, 3);
    EXPECT_EQ(inst.GetSchedule()->playhead.position, 0);
}

TEST(Sequencer, ClickingTheCueBoxRoundToProgStartsAgainAtTheFirstSlot) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    RecordingCanvas canvas;
    s.Place(Rect{0, 0, 600, 30}, &canvas);
    Type(s, 2, 0, 3);
    Type(s, 2, 1, 5);
    s.SetCueMode(3);
    s.Restart();
    f.Ticks(800); // P1 taken
    EXPECT_EQ(s.programIndex, 1);
    s.SetCueMode(3); // F8 keeps the place
    EXPECT_EQ(s.programIndex, 1);
    for (int i = 0; i < 4; ++i)
        s.OnLButtonDown(Row::LeftButton, 60, 10);
    EXPECT_EQ(s.cueMode, 3);
    EXPECT_EQ(s.programIndex, 0);
}

struct SlotCase {
    const char* name;
    std::vector<uint8_t> before; // pattern indexes in the queue
    int32_t slot;
    int digit;
    std::vector<uint8_t> after;
};

class QueueSlots : public testing::TestWithParam<SlotCase> {};

TEST_P(QueueSlots, EntriesStandAtTheFrontWithoutGaps) {
    const SlotCase& c = GetParam();
    SongFixture f;
    SequencerRow& s = *f.AddInstrument(1).GetSequencer();
    for (size_t i = 0; i < c.before.size(); ++i)
        s.queue[i] = c.before[i];
    Type(s, 1, c.slot, c.digit);
    std::vector<uint8_t> after(s.queue, s.queue + 16);
    while (!after.empty() && after.back() == SequencerRow::Empty)
        after.pop_back();
    EXPECT_EQ(after, c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Typing, QueueSlots,
    testing::Values(SlotCase{"intoFirst", {}, 0, 4, {3}},
                    SlotCase{"beyondTheEndLandsBehindTheLast", {1, 2}, 4, 9, {1, 2, 8}},
                    SlotCase{"overwrite", {1, 2, 3}, 1, 6, {1, 5, 3}},
                    SlotCase{"emptyInTheMiddlePullsForward", {1, 2, 3, 4}, 1, 0, {1, 3, 4}},
                    SlotCase{"emptyBeyondTheEndChangesNothing", {1, 2}, 7, 0, {1, 2}}),
    [](const testing::TestParamInfo<SlotCase>& i) { return std::string(i.param.name); });

struct PlusCase {
    int digit;
    int pattern; // the pattern number that plays
};

class NumpadPlusKey : public testing::TestWithParam<PlusCase> {};

TEST_P(NumpadPlusKey, AddsTenUpToSixteen) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    s.focus = 0;
    s.OnKey(NumpadPlus);
    s.OnKey(Numpad[GetParam().digit]);
    EXPECT_EQ(s.currentNumber, GetParam().pattern);
    EXPECT_EQ(inst.GetBank()->playing, GetParam().pattern - 1);
    EXPECT_EQ(s.plusPending, 0);
}

INSTANTIATE_TEST_SUITE_P(Digits, NumpadPlusKey,
                         testing::Values(PlusCase{6, 16}, PlusCase{0, 10}, PlusCase{7, 7},
                                         PlusCase{9, 9}));

TEST(Sequencer, NumpadZeroInTheMainBoxStops) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    s.Restart();
    Type(s, 0, 0, 0);
    EXPECT_EQ(s.stopped, 1);
    EXPECT_EQ(inst.GetBank()->playing, -1);
}

TEST(Sequencer, MasterStartsFollowersOneOrTwoTicksAheadByRegistryOrder) {
    SongFixture f;
    Instrument& before = f.AddInstrument(1); // voice 0, ticks before the master
    Instrument& master = f.AddInstrument(1); // voice 1
    Instrument& after = f.AddInstrument(1);  // voice 2, ticks after the master
    for (int i = 0; i < 3; ++i)
        SongFixture::Store(*f.instruments[i], 0, {{0, 0}});
    for (Instrument* i : {&master, &before, &after})
        f.engine.AddHighlightedSequencer(i->GetSequencer());
    master.GetSequencer()->cueFlag = 1;
    master.GetSequencer()->Restart();
    f.Ticks(1601);
    EXPECT_EQ(f.plays,
              (Plays{{0, 1}, {798, 2}, {799, 0}, {800, 1}, {1598, 2}, {1599, 0}, {1600, 1}}));
    EXPECT_EQ(before.GetSequencer()->stopped, 0);
}

TEST(Sequencer, LaunchTakesTheQueueOrTheProgramOfAFollower) {
    SongFixture f;
    Instrument& master = f.AddInstrument(1);
    Instrument& queued = f.AddInstrument(1);
    Instrument& programmed = f.AddInstrument(1);
    Type(*queued.GetSequencer(), 1, 0, 6);
    Type(*programmed.GetSequencer(), 2, 0, 2);
    programmed.GetSequencer()->SetCueMode(3);
    for (Instrument* i : {&master, &queued, &programmed})
        f.engine.AddHighlightedSequencer(i->GetSequencer());
    master.GetSequencer()->cueFlag = 1;
    master.GetSequencer()->Restart();
    f.Ticks(800);
    EXPECT_EQ(queued.GetBank()->playing, 5);
    EXPECT_EQ(queued.GetSequencer()->cueMode, 0);
    EXPECT_EQ(programmed.GetBank()->playing, 1);
    EXPECT_EQ(master.GetBank()->playing, 0);
}

TEST(Sequencer, SkipForwardTakesTheNextEntryAtOnceWithoutStopping) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    s.SetCueMode(2);
    Type(s, 1, 0, 2);
    s.Restart();
    f.Ticks(300);
    s.SkipForward();
    EXPECT_EQ(inst.GetBank()->playing, 1);
    EXPECT_EQ(inst.GetSchedule()->playhead.position, 300);
    s.SkipForward(); // empty queue in <---: goes on
    EXPECT_EQ(s.stopped, 0);
}

struct SwitchCase {
    int32_t fromUnits, toUnits, at, position;
};

class SwitchKeepsPlace : public testing::TestWithParam<SwitchCase> {};

TEST_P(SwitchKeepsPlace, RunningInstrumentChangesPatternWithoutLosingItsPosition) {
    const SwitchCase& c = GetParam();
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SongFixture::Store(inst, 0, {}, c.fromUnits);
    SongFixture::Store(inst, 1, {}, c.toUnits);
    inst.GetSequencer()->Restart();
    f.Ticks(c.at);
    inst.GetSequencer()->RequestPattern(2);
    EXPECT_EQ(inst.GetSchedule()->playhead.position, c.position);
    EXPECT_EQ(inst.GetSequencer()->currentNumber, 2);
}

INSTANTIATE_TEST_SUITE_P(Lengths, SwitchKeepsPlace,
                         testing::Values(SwitchCase{512, 1024, 700, 700},
                                         SwitchCase{1024, 512, 1000, 200},
                                         SwitchCase{1024, 256, 1599, 399}));

TEST(Sequencer, MouseRectanglesFocusAndHighlight) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    SequencerRow& s = *inst.GetSequencer();
    RecordingCanvas canvas;
    s.Place(Rect{10, 100, 700, 130}, &canvas);
    s.OnLButtonDown(Row::LeftButton, 10 + 84 + 20 * 3 + 5, 110);
    EXPECT_EQ(s.focus, 1);
    EXPECT_EQ(s.focusSlot, 3);
    EXPECT_EQ(f.view.focused, &s);
    s.OnLButtonDown(Row::LeftButton, 10 + 424 + 20 * 7 + 19, 110);
    EXPECT_EQ(s.focus, 2);
    EXPECT_EQ(s.focusSlot, 7);
    s.cueFlag = 1;
    s.OnLButtonDown(Row::LeftButton | Row::Control, 20, 110);
    EXPECT_EQ(s.cueFlag, 0);
    EXPECT_EQ(s.focus, 0);
    EXPECT_EQ(f.view.added, std::vector<SequencerRow*>{&s});
    s.OnLButtonDblClk(Row::LeftButton | Row::Control, 20, 110);
    EXPECT_EQ(s.cueFlag, 1);
    s.OnLButtonDown(Row::LeftButton | Row::Shift, 20, 110);
    EXPECT_EQ(s.cueFlag, 1);
}

TEST(Sequencer, PlacingRegistersTheClockCell) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    RecordingCanvas canvas;
    inst.GetSequencer()->Place(Rect{10, 100, 700, 130}, &canvas);
    inst.GetSequencer()->Place(Rect{10, 200, 700, 230}, &canvas);
    ASSERT_EQ(f.clocks.count, 1);
    EXPECT_EQ(f.clocks.rects[0], (Rect{37, 205, 61, 226}));
    EXPECT_EQ(f.clocks.ids[0], 1);
    inst.GetSequencer()->Unplace();
    EXPECT_EQ(f.clocks.count, 0);
}

} // namespace
