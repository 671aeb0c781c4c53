#include "SongFixture.h"
#include "editing/Line.h"

#include <gtest/gtest.h>

namespace {

using Notes = std::vector<std::pair<int32_t, int>>;

Notes Contents(const PlayPointList& list) {
    Notes out;
    for (int32_t i = 0; i < list.count; ++i)
        out.emplace_back(list.items[i].time, list.items[i].line);
    return out;
}

// A note placed on its line, as note placement does: the line's list first,
// then the bank.
void AddNote(PatternBank& bank, PlayPoint p) {
    bank.GetLine(p.line)->points->Insert(p);
    bank.AddPoint(p);
}

Notes Compiled(Instrument& inst) {
    Notes out;
    const Schedule& s = *inst.GetSchedule();
    for (int32_t i = 0; i < s.count; ++i)
        out.emplace_back(s.events[i].time, s.events[i].line);
    return out;
}

TEST(PatternBank, LinesShowTheWorkingPatternByLine) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(3);
    PatternBank& bank = *inst.GetBank();
    SongFixture::Store(inst, 0, {{0, 0}, {10, 2}, {20, 0}, {30, 7}});
    EXPECT_EQ(Contents(*bank.GetLine(0)->points), (Notes{{0, 0}, {20, 0}}));
    EXPECT_EQ(Contents(*bank.GetLine(1)->points), Notes{});
    EXPECT_EQ(Contents(*bank.GetLine(2)->points), (Notes{{10, 2}}));
    EXPECT_EQ(bank.GetLine(3), nullptr);
}

struct CommandCase {
    const char* name;
    void (*command)(PatternBank&);
    Notes working, stored, heard;
};

// Shown pattern 1 plays the stored note (0, 0); the working pattern has an
// unsaved note (64, 0) added while it played.
class BankCommands : public testing::TestWithParam<CommandCase> {};

TEST_P(BankCommands, CopyWhatTheyCopyWhere) {
    const CommandCase& c = GetParam();
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    SongFixture::Store(inst, 0, {{0, 0}});
    inst.GetSequencer()->Restart();
    AddNote(bank, SongFixture::Point(64, 0));
    c.command(bank);
    EXPECT_EQ(Contents(bank.working), c.working);
    EXPECT_EQ(Contents(bank.patterns[0]), c.stored);
    EXPECT_EQ(Compiled(inst), c.heard);
    EXPECT_EQ(Contents(*bank.GetLine(0)->points), c.working);
}

const Notes N0{{0, 0}}, Both{{0, 0}, {64, 0}}, Doubled{{0, 0}, {64, 0}, {512, 0}, {576, 0}};

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Commands, BankCommands,
    testing::Values(
        CommandCase{"edit", [](PatternBank&) {}, Both, N0, Both},
        CommandCase{"save", [](PatternBank& b) { b.SaveWorking(); }, Both, Both, Both},
        CommandCase{"restore", [](PatternBank& b) { b.RestoreWorking(); }, N0, N0, Both},
        CommandCase{"clear", [](PatternBank& b) { b.ClearWorking(); }, {}, N0, Both},
        CommandCase{"switchAway", [](PatternBank& b) { b.LoadPattern(3); }, {}, N0, Both},
        CommandCase{"saveAndSwitch", [](PatternBank& b) { b.SaveWorking(); b.LoadPattern(3); },
                    {}, Both, Both},
        CommandCase{"double", [](PatternBank& b) { b.DoublePattern(); }, Doubled, Doubled, Doubled}),
    [](const testing::TestParamInfo<CommandCase>& i) { return std::string(i.param.name); });
// clang-format on

TEST(PatternBank, EditsOfAPatternThatDoesNotPlayAreNotHeard) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    inst.GetSequencer()->RequestPattern(2);
    AddNote(bank, SongFixture::Point(64, 0));
    EXPECT_EQ(Compiled(inst), Notes{});
    bank.RemovePoint(SongFixture::Point(64, 0));
    EXPECT_EQ(bank.working.count, 0);
}

TEST(PatternBank, DoubleMakesTheShownPatternPlay) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    bank.ChangeLength(-1); // one measure
    AddNote(bank, SongFixture::Point(0, 0));
    AddNote(bank, SongFixture::Point(100, 0));
    bank.DoublePattern();
    EXPECT_EQ(Contents(bank.working), (Notes{{0, 0}, {100, 0}, {256, 0}, {356, 0}}));
    EXPECT_EQ(bank.working.bound, 512);
    EXPECT_EQ(bank.patterns[0].bound, 512);
    EXPECT_EQ(bank.playing, 0);
    EXPECT_EQ(inst.GetSchedule()->playhead.running, 1);
}

TEST(PatternBank, LengthStopsAtOneMeasureAndHiddenPointsComeBack) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    inst.GetSequencer()->Restart();
    PlayPoint late = SongFixture::Point(300, 0);
    late.volume = -700;
    AddNote(bank, late);
    bank.ChangeLength(-1);
    EXPECT_EQ(bank.working.bound, 256);
    EXPECT_EQ(bank.GetLine(0)->points->count, 0);
    EXPECT_EQ(inst.GetSchedule()->lengthTicks, 400);
    EXPECT_EQ(inst.GetSchedule()->count, 0);
    bank.ChangeLength(-1);
    EXPECT_EQ(bank.working.bound, 256);
    bank.ChangeLength(1);
    ASSERT_EQ(bank.GetLine(0)->points->count, 1);
    EXPECT_EQ(bank.GetLine(0)->points->items[0].volume, -700);
    EXPECT_EQ(inst.GetSchedule()->count, 1);
}

TEST(PatternBank, DeleteLineRenumbersEveryPatternAndTheSchedule) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(4);
    PatternBank& bank = *inst.GetBank();
    for (int p = 0; p < 16; ++p)
        SongFixture::Store(inst, p, {{p, 0}, {p, 1}, {p, 2}, {p, 3}});
    inst.GetSequencer()->Restart();
    Line* second = bank.GetLine(1);
    second->Remove();
    ASSERT_EQ(bank.GetLineCount(), 3);
    for (int p = 0; p < 16; ++p)
        EXPECT_EQ(Contents(bank.patterns[p]), (Notes{{p, 0}, {p, 1}, {p, 2}})) << "pattern " << p;
    EXPECT_EQ(Contents(bank.working), (Notes{{0, 0}, {0, 1}, {0, 2}}));
    EXPECT_EQ(Compiled(inst), (Notes{{0, 0}, {0, 1}, {0, 2}}));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bank.GetLine(i)->index, i);
}

TEST(PatternBank, GetPatternGivesTheWorkingCopyForTheShownOne) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    SongFixture::Store(inst, 5, {{1, 0}});
    AddNote(bank, SongFixture::Point(2, 0));
    EXPECT_EQ(Contents(bank.GetPattern(0)), (Notes{{2, 0}}));
    EXPECT_EQ(Contents(bank.GetPattern(5)), (Notes{{1, 0}}));
}

} // namespace
