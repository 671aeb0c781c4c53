#include "song/PatternRow.h"
#include "SongFixture.h"
#include "ui/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using K = CanvasRecord::Kind;
using Times = std::vector<int32_t>;

// The row's rectangle: 300 pixels of ovals (width less 17), from x = 14 to
// 314, each 18.75 wide before truncation, from y = 54 to 76.
constexpr Rect RowRect{10, 50, 327, 80};

Times TimesOf(const PlayPointList& list) {
    Times out;
    for (int32_t i = 0; i < list.count; ++i)
        out.push_back(list.items[i].time);
    return out;
}

// An instrument of one line whose pattern 0 holds a note at 0 and pattern 2
// notes at 128 and 256; the working pattern has an unsaved note at 64.
class PatternRowTest : public ::testing::Test {
  protected:
    PatternRowTest() {
        SongFixture::Store(inst, 0, {{0, 0}});
        SongFixture::Store(inst, 2, {{128, 0}, {256, 0}});
        bank.AddPoint(SongFixture::Point(64, 0));
        row.Place(RowRect, &canvas);
    }
    std::vector<CanvasRecord> Repainted() {
        canvas.records.clear();
        row.Paint();
        return canvas.records;
    }

    RecordingCanvas canvas; // outlives the instrument, whose row points at it
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    PatternRow& row = *bank.patternRow;
};

struct OvalCase {
    int32_t index, left, right;
};

class OvalTest : public PatternRowTest, public ::testing::WithParamInterface<OvalCase> {};

TEST_P(OvalTest, EachOvalIsARoundRectWithItsNumber) {
    const OvalCase& c = GetParam();
    row.shown = 2;
    const auto r = Repainted();
    ASSERT_EQ(r.size(), 2u + 2u * PatternRow::OvalCount);
    const Rect oval{c.left, 54, c.right, 76};
    CanvasRecord round{K::RoundRect, oval, {}, Black, c.index == 2 ? Gray : White};
    round.ellipseWidth = c.left;
    round.ellipseHeight = 54;
    EXPECT_EQ(r[2 + 2 * c.index], round);
    CanvasRecord number{K::Text, oval, {}, Black};
    number.text = std::to_string(c.index + 1);
    number.flags = TextCenter;
    EXPECT_EQ(r[3 + 2 * c.index], number);
    EXPECT_EQ(row.ovals[c.index], oval);
}

INSTANTIATE_TEST_SUITE_P(Table, OvalTest,
                         ::testing::Values(OvalCase{0, 14, 32}, OvalCase{1, 32, 51},
                                           OvalCase{2, 51, 70}, OvalCase{15, 295, 314}));

TEST_F(PatternRowTest, RowIsFilledWhiteAndFramedBeforeTheOvals) {
    const auto r = Repainted();
    EXPECT_EQ(r[0], (CanvasRecord{K::Fill, RowRect, {}, {}, White}));
    EXPECT_EQ(r[1], (CanvasRecord{K::Frame, RowRect, {}, Black}));
    EXPECT_EQ(r[2].fill, Gray); // pattern 1 is on display at first
}

struct PlayingCase {
    int32_t playing;
    int32_t left, right; // of the black box; equal for none
};

class PlayingTest : public PatternRowTest, public ::testing::WithParamInterface<PlayingCase> {};

// The box runs over the row's full height behind the oval, and is drawn
// whether or not the oval is also the one on display.
TEST_P(PlayingTest, SetPlayingAsksForARepaintAndBoxesThePlayingOval) {
    const PlayingCase& c = GetParam();
    canvas.records.clear();
    row.SetPlaying(c.playing);
    EXPECT_EQ(canvas.records, (std::vector<CanvasRecord>{{K::Repaint, RowRect}}));
    const auto r = Repainted();
    if (c.left == c.right) {
        EXPECT_EQ(r[2].kind, K::RoundRect);
        return;
    }
    EXPECT_EQ(r[2], (CanvasRecord{K::Fill, Rect{c.left, 50, c.right, 80}, {}, {}, Black}));
    EXPECT_EQ(r[3].kind, K::RoundRect);
}

INSTANTIATE_TEST_SUITE_P(Table, PlayingTest,
                         ::testing::Values(PlayingCase{-1, 0, 0}, PlayingCase{0, 14, 32},
                                           PlayingCase{3, 70, 89}, PlayingCase{15, 295, 314}));

TEST_F(PatternRowTest, TitleFollowsShownPatternAndLength) {
    EXPECT_STREQ(row.GetName(), "  Pattern  1  (2 measures)");
    bank.ChangeLength(1);
    EXPECT_STREQ(row.GetName(), "  Pattern  1  (3 measures)");
    row.OnLButtonDown(Row::LeftButton, 300, 60);
    EXPECT_STREQ(row.GetName(), "  Pattern  16  (2 measures)");
}

struct ClickCase {
    const char* what;
    uint8_t saveOnSwitch;
    int32_t x, y;
    int32_t shown;
    Times stored0; // pattern 1 afterwards
    Times working;
};

class ClickTest : public PatternRowTest, public ::testing::WithParamInterface<ClickCase> {};

TEST_P(ClickTest, ClickSwitchesTheShownPatternSavingOnlyWithTheFlag) {
    const ClickCase& c = GetParam();
    SCOPED_TRACE(c.what);
    row.saveOnSwitch = c.saveOnSwitch;
    bank.Play(0, 0, 1);
    row.OnLButtonDown(Row::LeftButton, c.x, c.y);
    EXPECT_EQ(row.shown, c.shown);
    EXPECT_EQ(bank.current, c.shown);
    EXPECT_EQ(TimesOf(bank.patterns[0]), c.stored0);
    EXPECT_EQ(TimesOf(bank.working), c.working);
    EXPECT_EQ(bank.playing, 0); // what is heard stays
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClickTest,
    ::testing::Values(
        ClickCase{"other oval, saving", 1, 60, 60, 2, {0, 64}, {128, 256}},
        ClickCase{"other oval, not saving", 0, 60, 60, 2, {0}, {128, 256}},
        ClickCase{"grey oval, saving keeps the edits", 1, 20, 60, 0, {0, 64}, {0, 64}},
        ClickCase{"grey oval, not saving brings back the stored", 0, 20, 60, 0, {0}, {0}},
        ClickCase{"left edge belongs to the next oval", 1, 32, 54, 1, {0, 64}, {}},
        ClickCase{"below the ovals", 1, 60, 76, 0, {0}, {0, 64}},
        ClickCase{"right of the last oval", 1, 314, 60, 0, {0}, {0, 64}}));

struct KeyCase {
    int32_t number;
    int32_t shown;
};

class ShowPatternTest : public PatternRowTest, public ::testing::WithParamInterface<KeyCase> {};

TEST_P(ShowPatternTest, KeysReachTheFirstTenPatterns) {
    const KeyCase& c = GetParam();
    row.ShowPattern(c.number);
    EXPECT_EQ(row.shown, c.shown);
    EXPECT_EQ(bank.current, c.shown);
    EXPECT_EQ(TimesOf(bank.patterns[0]), c.shown == 0 ? Times{0} : (Times{0, 64}));
}

INSTANTIATE_TEST_SUITE_P(Table, ShowPatternTest,
                         ::testing::Values(KeyCase{2, 2}, KeyCase{9, 9}, KeyCase{10, 0},
                                           KeyCase{-1, 0}));

// The bank tells the row what plays, placed or not; unplaced it draws nothing.
TEST_F(PatternRowTest, BankTellsTheRowWhatPlays) {
    row.Unplace();
    canvas.records.clear();
    bank.Play(1, 0, 1);
    row.Paint();
    EXPECT_TRUE(canvas.records.empty());
    EXPECT_EQ(row.playing, 1);
    bank.Stop();
    EXPECT_EQ(row.playing, -1);
}

} // namespace
