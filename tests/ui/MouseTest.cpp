#include "ViewFixture.h"
#include "editing/Line.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace {

// At 1000 x 600 with 15 slots: name column 0..225, gutter to 229, rows 32
// pixels high from y 120; slot 0 the sequencer, 1 the pattern row, 2.. lines.
constexpr int NameX = 100, RowX = 500;
int SlotY(int slot) {
    return 120 + 32 * slot + 16;
}

// A line that records what reaches it, put into a screen slot after a paint.
struct ProbeRow : Line {
    ProbeRow() : Line(nullptr, 0, 4) {}
    void OnLButtonDown(uint32_t f, int32_t x, int32_t) override { Log('L', f, x); }
    void OnLButtonUp(uint32_t f, int32_t x, int32_t) override { Log('l', f, x); }
    void OnLButtonDblClk(uint32_t f, int32_t x, int32_t) override { Log('D', f, x); }
    void OnRButtonDown(uint32_t f, int32_t x, int32_t) override { Log('R', f, x); }
    void OnRButtonUp(uint32_t f, int32_t x, int32_t) override { Log('r', f, x); }
    void OnRButtonDblClk(uint32_t f, int32_t x, int32_t) override { Log('E', f, x); }
    void Log(char kind, uint32_t flags, int32_t x) { calls.push_back({kind, flags, x}); }
    struct Call {
        char kind;
        uint32_t flags;
        int32_t x;
        bool operator==(const Call&) const = default;
    };
    std::vector<Call> calls;
};

TEST(Mouse, RowColumnGesturesReachTheLineWithTheGutterRule) {
    ViewFixture f;
    f.AddLines(1);
    ProbeRow probe;
    f.view.slots[2].row = &probe;
    const int y = SlotY(2);
    f.view.OnLButtonDown(1, 227, y); // gutter: the row's left end
    f.view.OnLButtonUp(0, 600, y);
    f.view.OnLButtonDblClk(1, 227, y); // no gutter rule, and lines take none
    f.view.OnRButtonDown(2, 229, y);
    f.view.OnRButtonUp(0, 228, y);
    f.view.OnRButtonDblClk(6, 700, y);
    f.view.OnLButtonDown(1, 225, y);             // the column edge: neither column
    f.view.OnLButtonDown(1, RowX, 120 + 32 * 3); // a shared edge hits no slot
    using C = ProbeRow::Call;
    const std::vector<C> want{
        {'L', 1, 230}, {'l', 0, 600}, {'R', 2, 230}, {'r', 0, 230}, {'E', 6, 700}};
    EXPECT_EQ(probe.calls, want);
}

struct ClickCase {
    const char* name;
    std::function<void(ViewFixture&)> gestures;
    std::vector<int> highlighted; // list positions
    FrameAsk lastAsk;
    int32_t controlGroup;
};

class NameColumn : public testing::TestWithParam<ClickCase> {};

TEST_P(NameColumn, HighlightsAndBar) {
    ViewFixture f;
    f.AddLines(5);
    GetParam().gestures(f);
    std::vector<int> got;
    for (int i = 0; i < f.view.rowList.Count(); ++i)
        if (f.view.rowList.At(i).highlighted)
            got.push_back(i);
    EXPECT_EQ(got, GetParam().highlighted);
    EXPECT_EQ(f.view.rowList.highlightedCount, static_cast<int32_t>(got.size()));
    ASSERT_FALSE(f.host.asks.empty());
    EXPECT_EQ(f.host.asks.back().first, GetParam().lastAsk);
    EXPECT_EQ(f.view.ControlGroup(), GetParam().controlGroup);
}

const ClickCase clickCases[] = {
    {"PlainClickHighlightsOne",
     [](ViewFixture& f) {
         f.view.OnLButtonDown(1, NameX, SlotY(3));
         f.view.OnLButtonDown(1, NameX, SlotY(4));
     },
     {4},
     FrameAsk::LineBar,
     0},
    {"ControlShiftChangesNothingButBarFollows",
     [](ViewFixture& f) { f.view.OnLButtonDown(13, NameX, SlotY(1)); },
     {},
     FrameAsk::PatternBar,
     -2},
    {"ControlClickOnOnlyHighlightClearsIt",
     [](ViewFixture& f) {
         f.view.OnLButtonDown(1, NameX, SlotY(3));
         f.view.OnLButtonDown(9, NameX, SlotY(3));
     },
     {},
     FrameAsk::LineBar,
     -2},
    {"SecondControlClickGivesMultiBar",
     [](ViewFixture& f) {
         f.view.OnLButtonDown(1, NameX, SlotY(3));
         f.view.OnLButtonDown(9, NameX, SlotY(5));
     },
     {3, 5},
     FrameAsk::MultiLineBar,
     0},
    {"ShiftWithoutAnchorSetsOneEachTime",
     [](ViewFixture& f) {
         f.view.OnLButtonDown(5, NameX, SlotY(3));
         f.view.OnLButtonDown(5, NameX, SlotY(5));
     },
     {3, 5},
     FrameAsk::MultiLineBar,
     0},
    {"ShiftRangeFromAnchorUpward",
     [](ViewFixture& f) {
         f.view.OnLButtonDown(1, NameX, SlotY(6));
         f.view.OnLButtonDown(5, NameX, SlotY(3));
         f.view.OnLButtonDown(5, NameX, SlotY(4));
     },
     {4, 5, 6},
     FrameAsk::MultiLineBar,
     0},
    {"SequencerCellShowsInstrumentBar",
     [](ViewFixture& f) { f.view.OnLButtonDown(1, NameX, SlotY(0)); },
     {0},
     FrameAsk::InstrumentBar,
     -2},
};

INSTANTIATE_TEST_SUITE_P(Clicks, NameColumn, testing::ValuesIn(clickCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Mouse, LineBarNamesTheFirstHighlightedLineOrTheFirstLine) {
    ViewFixture f;
    f.AddLines(3);
    f.view.OnLButtonDown(1, NameX, SlotY(4));
    EXPECT_EQ(f.host.asks.back().second, f.view.Current()->GetBank()->GetLine(2));
    f.view.OnLButtonDown(9, NameX, SlotY(4));
    EXPECT_EQ(f.host.asks.back().second, f.view.Current()->GetBank()->GetLine(0));
}

TEST(Mouse, FocusDropsExceptOnZoomBoxesAndSequencerNameBox) {
    ViewFixture f;
    f.view.NewInstrument();
    f.Paint();
    auto focusSequencer = [&f] {
        f.view.Current()->GetSequencer()->FocusMainBox();
        ASSERT_EQ(f.view.focusKind, -2);
    };
    focusSequencer();
    f.view.OnLButtonDown(1, 880, 50); // zoom 2 box
    EXPECT_EQ(f.view.zoomMode, 2);
    EXPECT_EQ(f.view.focusKind, -2);
    f.view.OnLButtonDown(1, 100, 30); // previous-instrument cell
    EXPECT_EQ(f.view.currentInstrument, 0);
    EXPECT_EQ(f.view.focusKind, -2);
    EXPECT_EQ(f.song.engine.highlightedSequencers[0], f.view.Current()->GetSequencer());
    f.view.OnRButtonDown(2, 5, 5); // a right press anywhere
    EXPECT_EQ(f.view.focusKind, -1);
    EXPECT_EQ(f.song.engine.highlightMode, 0);
    EXPECT_EQ(f.host.asks.back().first, FrameAsk::EmptyBar);
    f.view.OnLButtonDown(1, 100, 80); // next-instrument cell, no focus to carry
    EXPECT_EQ(f.view.currentInstrument, 1);
    EXPECT_EQ(f.view.focusKind, -1);
}

TEST(Mouse, DoubleClickOnEmptyNameCellLoadsWavesInLineDetailOnly) {
    ViewFixture f;
    f.view.OnLButtonDblClk(1, NameX, SlotY(8));
    f.view.OnRButtonDblClk(2, NameX, SlotY(9));
    EXPECT_EQ(f.host.Count(FrameAsk::LoadWaves), 2);
    f.view.SetViewMode(MainView::Insts);
    f.Paint();
    f.view.OnLButtonDblClk(1, NameX, SlotY(8));
    EXPECT_EQ(f.host.Count(FrameAsk::LoadWaves), 2);
}

TEST(Mouse, InstsModeClickOnSequencerMakesItCurrentAndFocused) {
    ViewFixture f;
    f.view.NewInstrument();
    f.view.SetViewMode(MainView::Insts);
    f.Paint();
    f.view.OnLButtonDown(1, NameX, SlotY(0));
    EXPECT_EQ(f.view.currentInstrument, 0);
    EXPECT_EQ(f.view.focusKind, -2);
    EXPECT_EQ(f.view.focusSlot, 0);
    f.view.SetViewMode(MainView::LineDetail);
    EXPECT_EQ(f.view.focusKind, -1);
}

TEST(Mouse, DeletingHighlightedLinesKeepsTheOthers) {
    ViewFixture f;
    f.AddLines(4);
    Line* kept = f.view.Current()->GetBank()->GetLine(1);
    f.view.OnLButtonDown(1, NameX, SlotY(2));
    f.view.OnLButtonDown(9, NameX, SlotY(4));
    f.view.OnLButtonDown(9, NameX, SlotY(5));
    f.view.DeleteHighlighted();
    ASSERT_EQ(f.view.Current()->GetBank()->GetLineCount(), 1);
    EXPECT_EQ(f.view.Current()->GetBank()->GetLine(0), kept);
}

} // namespace
