#include "ViewFixture.h"
#include "song/PatternRow.h"

#include <gtest/gtest.h>

namespace {

TEST(MainView, WorkedExampleRectangles) {
    ViewFixture f;
    const MainView& v = f.view;
    EXPECT_EQ(v.topBandRect, (Rect{0, 0, 1000, 120}));
    EXPECT_EQ(v.nameBoxRect, (Rect{20, 24, 220, 90}));
    EXPECT_EQ(v.nameCells[0], (Rect{20, 24, 220, 46}));
    EXPECT_EQ(v.nameCells[1], (Rect{20, 46, 220, 68}));
    EXPECT_EQ(v.nameCells[2], (Rect{20, 68, 220, 90}));
    EXPECT_EQ(v.topPanelRect, (Rect{225, 0, 800, 88}));
    EXPECT_EQ(v.zoomBoxRects[0], (Rect{810, 30, 860, 78}));
    EXPECT_EQ(v.zoomBoxRects[1].left, 870);
    EXPECT_EQ(v.zoomBoxRects[1].right, 920);
    EXPECT_EQ(v.zoomBoxRects[2].left, 930);
    EXPECT_EQ(v.zoomBoxRects[2].right, 980);
    EXPECT_EQ(v.hScrollRect, (Rect{233, 90, 996, 115}));
    EXPECT_EQ(v.rowColumnRect.left, 229);
    EXPECT_EQ(v.slots[0].top, 120);
    EXPECT_EQ(v.slots[0].bottom, 152);
}

struct SizeCase {
    int32_t width, height, slots;
};

class RowHeights : public testing::TestWithParam<SizeCase> {};

TEST_P(RowHeights, DifferByAtMostOnePixelAndShareEdges) {
    ViewFixture f;
    f.view.SetSlotCount(GetParam().slots);
    f.Paint(GetParam().width, GetParam().height);
    int32_t low = 1 << 30, high = 0;
    for (size_t i = 0; i < f.view.slots.size(); ++i) {
        const RowSlot& s = f.view.slots[i];
        low = std::min(low, s.bottom - s.top);
        high = std::max(high, s.bottom - s.top);
        if (i > 0) {
            EXPECT_EQ(s.top, f.view.slots[i - 1].bottom);
        }
    }
    EXPECT_LE(high - low, 1);
    EXPECT_EQ(f.view.slots.back().bottom, GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Sizes, RowHeights,
                         testing::Values(SizeCase{1000, 600, 15}, SizeCase{1280, 777, 15},
                                         SizeCase{800, 613, 7}, SizeCase{1920, 1080, 23}));

TEST(MainView, FirstInstrumentAndItsRows) {
    ViewFixture f;
    EXPECT_EQ(f.view.instruments.size(), 1u);
    EXPECT_EQ(f.view.Current()->level, 0.9);
    EXPECT_EQ(f.view.rowList.entries[0].row, f.view.Current()->GetSequencer());
    EXPECT_EQ(f.view.instrumentNames[0], "");
    EXPECT_EQ(f.view.instrumentNames[2], "");
    EXPECT_EQ(f.view.slots[0].visible, 1);
    EXPECT_EQ(f.view.slots[14].visible, 0);
}

TEST(MainView, ClosingTheCurrentInstrumentSelectsTheLast) {
    ViewFixture f;
    f.view.NewInstrument();
    f.view.NewInstrument();
    const std::string last = f.view.instruments[2]->GetName();
    f.view.SelectInstrument(0);
    f.view.CloseInstrument();
    ASSERT_EQ(f.view.instruments.size(), 2u);
    EXPECT_EQ(f.view.currentInstrument, 1);
    EXPECT_EQ(f.view.instrumentNames[1], last);
    EXPECT_EQ(f.host.Count(FrameAsk::InstrumentBar), 1);
    EXPECT_EQ(f.song.engine.playheadCount, 2);
    f.view.CloseInstrument();
    f.view.CloseInstrument(); // the only one left stays
    EXPECT_EQ(f.view.instruments.size(), 1u);
    EXPECT_EQ(f.host.Count(FrameAsk::InstrumentBar), 2);
}

TEST(MainView, NamesCountOnOverTheRun) {
    ViewFixture f;
    f.view.NewInstrument();
    const int first = std::stoi(f.view.instruments[1]->GetName().substr(5));
    f.view.CloseInstrument();
    f.view.NewInstrument();
    EXPECT_EQ(f.view.instruments[1]->GetName(), "Inst " + std::to_string(first + 1));
}

TEST(MainView, ZoomThreeWholePatternAndItsSpin) {
    ViewFixture f;
    PatternBank& bank = *f.view.Current()->GetBank();
    for (int i = 0; i < 6; ++i)
        bank.ChangeLength(1); // 8 measures
    f.view.SelectZoom3();
    EXPECT_EQ(f.view.hScrollBar.page, 8);
    EXPECT_EQ(f.view.hScrollBar.position, 0);
    f.view.ChangeZoom(3, 0);
    EXPECT_EQ(f.view.zoom3Measures, 32);
    f.view.ChangeZoom(3, 3);
    EXPECT_EQ(f.view.zoom3Measures, -1);
    f.view.ChangeZoom(3, 1);
    EXPECT_EQ(f.view.zoom3Measures, 32);
}

TEST(MainView, ZoomsOneAndTwoShareTheirPosition) {
    ViewFixture f;
    PatternBank& bank = *f.view.Current()->GetBank();
    for (int i = 0; i < 6; ++i)
        bank.ChangeLength(1);
    f.view.SelectZoom1();
    f.view.ScrollMeasure(1);
    f.view.ScrollMeasure(1);
    EXPECT_EQ(f.view.zoom12Position, 2);
    f.view.SelectZoom3();
    EXPECT_EQ(f.view.hScrollBar.position, 0);
    f.view.SelectZoom2();
    EXPECT_EQ(f.view.hScrollBar.position, 2);
}

TEST(MainView, ScrollingDownStopsWithTheLastRowInTheLastSlot) {
    ViewFixture f;
    f.view.SetSlotCount(3);
    Instrument& inst = *f.view.Current();
    for (int i = 0; i < 4; ++i)
        f.song.LoadSample(inst, -1);
    f.view.RebuildRowList();
    const int32_t rows = f.view.rowList.Count();
    for (int i = 0; i < 20; ++i)
        f.view.VerticalScroll(MainView::LineDown, 0);
    EXPECT_EQ(f.view.rowList.firstVisible, rows - 3);
    f.Paint();
    EXPECT_EQ(f.view.slots[2].row, f.view.rowList.entries[rows - 1].row);
    f.view.SetSlotCount(rows);
    EXPECT_EQ(f.view.rowList.firstVisible, 0);
}

TEST(MainView, InstsModeShowsEverySequencerInEveryOtherSlot) {
    ViewFixture f;
    f.view.NewInstrument();
    f.view.NewInstrument();
    f.view.SetViewMode(MainView::Insts);
    f.Paint();
    for (int s = 0; s < 15; ++s)
        EXPECT_EQ(f.view.slots[s].visible, s % 2 == 0 && s < 6 ? 1 : 0) << s;
    EXPECT_EQ(f.view.slots[2].row, f.view.instruments[1]->GetSequencer());
    EXPECT_EQ(f.song.clocks.count, 3);
}

TEST(MainView, ClicksReachTheRowUnderThePoint) {
    ViewFixture f;
    const RowSlot& patternSlot = f.view.slots[1];
    ASSERT_EQ(patternSlot.type, Row::PatternRowKind);
    PatternBank& bank = *f.view.Current()->GetBank();
    // The third oval of the pattern row, then the name column (no row).
    const Rect& oval = bank.patternRow->ovals[2];
    const int32_t y = (oval.top + oval.bottom) / 2;
    f.view.OnLButtonDown(Row::LeftButton, (oval.left + oval.right) / 2, y);
    EXPECT_EQ(bank.current, 2);
    f.view.OnLButtonDown(Row::LeftButton, 10, y);
    EXPECT_EQ(bank.current, 2);
}

} // namespace
