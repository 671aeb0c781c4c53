#include "LineFixture.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using F = LineFixture;

void RDown(Line& l, uint32_t flags, int32_t px) {
    l.OnRButtonDown(flags, F::X(px), F::Y);
}
void RUp(Line& l, int32_t px) {
    l.OnRButtonUp(0, F::X(px), F::Y);
}
// A left press on a line as the view makes it: the highlight is dropped first.
void LDown(Line& l, int32_t px) {
    l.Unhighlight();
    l.OnLButtonDown(1, F::X(px), F::Y);
}

struct SelectCase {
    const char* name;
    std::vector<int32_t> before;
    std::function<void(Line&)> gestures;
    int32_t first, last;
    uint8_t highlighted;
    std::vector<int32_t> after;
};

class Selection : public testing::TestWithParam<SelectCase> {};

TEST_P(Selection, GesturesGiveRangeAndPoints) {
    const SelectCase& c = GetParam();
    LineFixture f;
    f.SetTimes(c.before);
    c.gestures(*f.line);
    EXPECT_EQ(f.line->selectionFirst, c.first);
    if (c.first != -1)
        EXPECT_EQ(f.line->selectionLast, c.last);
    EXPECT_EQ(f.line->pointsHighlighted, c.highlighted);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
}

INSTANTIATE_TEST_SUITE_P(Table, Selection,
                         testing::Values(SelectCase{"RightClickOnEmptySpaceBeginsAnInvisibleRange",
                                                    {},
                                                    [](Line& l) {
                                                        RDown(l, 2, 500);
                                                        RUp(l, 500);
                                                        l.Nudge(-1);
                                                    },
                                                    500,
                                                    500,
                                                    0,
                                                    {}},
                                         SelectCase{"RightDragLeftFromAPoint",
                                                    {64, 128, 300},
                                                    [](Line& l) {
                                                        RDown(l, 2, 300);
                                                        RUp(l, 100);
                                                    },
                                                    128,
                                                    300,
                                                    1,
                                                    {64, 128, 300}},
                                         SelectCase{"RightDragOverNoPointHighlightsNothing",
                                                    {600},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                    },
                                                    -1,
                                                    -1,
                                                    0,
                                                    {600}},
                                         SelectCase{"DoubleClickOnAnEmptyMeasure",
                                                    {100},
                                                    [](Line& l) {
                                                        l.OnRButtonDblClk(2, F::X(600), F::Y);
                                                        RUp(l, 600);
                                                    },
                                                    512,
                                                    767,
                                                    1,
                                                    {100}},
                                         SelectCase{"DoubleClickReleasedOverALaterMeasure",
                                                    {300, 700},
                                                    [](Line& l) {
                                                        l.OnRButtonDblClk(2, F::X(100), F::Y);
                                                        RUp(l, 600);
                                                    },
                                                    300,
                                                    767,
                                                    1,
                                                    {300, 700}},
                                         SelectCase{"ShiftDoubleClickSelectsTheLine",
                                                    {300, 700},
                                                    [](Line& l) { l.OnRButtonDblClk(6, 0, 0); },
                                                    300,
                                                    1023,
                                                    1,
                                                    {300, 700}},
                                         SelectCase{"LeftPressOnALaterSelectedPointSelectsItAlone",
                                                    {100, 200},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                        LDown(l, 200);
                                                    },
                                                    200,
                                                    200,
                                                    1,
                                                    {100, 200}},
                                         SelectCase{"DragOntoAFreePlaceKeepsTheSelection",
                                                    {100, 200, 800},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                        LDown(l, 100);
                                                        l.OnLButtonUp(0, F::X(400), F::Y);
                                                    },
                                                    400,
                                                    500,
                                                    1,
                                                    {400, 500, 800}},
                                         SelectCase{"DragOntoANoteMergesAndDrops",
                                                    {100, 200, 800},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                        LDown(l, 100);
                                                        l.OnLButtonUp(0, F::X(700), F::Y);
                                                    },
                                                    -1,
                                                    -1,
                                                    0,
                                                    {700, 800}},
                                         SelectCase{"ControlAtTheReleaseLeavesItInPlace",
                                                    {100, 200, 800},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                        LDown(l, 100);
                                                        l.OnLButtonUp(8, F::X(400), F::Y);
                                                    },
                                                    100,
                                                    200,
                                                    1,
                                                    {100, 200, 800}},
                                         SelectCase{"DeleteTakesPointsAtBothEnds",
                                                    {100, 200, 300},
                                                    [](Line& l) {
                                                        RDown(l, 2, 100);
                                                        RUp(l, 200);
                                                        l.DeleteSelection();
                                                    },
                                                    -1,
                                                    -1,
                                                    0,
                                                    {300}},
                                         SelectCase{"DeleteOnThePatternBound",
                                                    {0, 1023},
                                                    [](Line& l) {
                                                        l.OnRButtonDblClk(6, 0, 0);
                                                        l.DeleteSelection();
                                                    },
                                                    -1,
                                                    -1,
                                                    0,
                                                    {}},
                                         SelectCase{"DeleteOfAnEmptyRange",
                                                    {100},
                                                    [](Line& l) {
                                                        l.OnRButtonDblClk(2, F::X(600), F::Y);
                                                        l.DeleteSelection();
                                                    },
                                                    -1,
                                                    -1,
                                                    0,
                                                    {100}}),
                         [](const auto& info) { return info.param.name; });

struct NudgeCase {
    std::vector<int32_t> before;
    int32_t first, last, direction;
    std::vector<int32_t> after;
};

class Nudges : public testing::TestWithParam<NudgeCase> {};

TEST_P(Nudges, MoveOrRefuse) {
    const NudgeCase& c = GetParam();
    LineFixture f;
    f.SetTimes(c.before);
    f.Select(c.first, c.last);
    f.line->Nudge(c.direction);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Nudges,
    testing::Values(NudgeCase{{3}, 3, 3, 2, {8}}, NudgeCase{{8}, 8, 8, 2, {16}},
                    NudgeCase{{3, 5}, 3, 5, 2, {11, 13}}, NudgeCase{{64}, 64, 64, -2, {56}},
                    NudgeCase{{68}, 68, 68, -2, {64}}, NudgeCase{{0}, 0, 0, -2, {0}},
                    NudgeCase{{1023}, 1023, 1023, 1, {1023}},
                    NudgeCase{{100, 101}, 100, 100, 1, {100, 101}},
                    NudgeCase{{100, 120}, 100, 119, 1, {101, 120}},
                    NudgeCase{{100}, 100, 100, -1, {99}}));

TEST(Nudge, RangeFollowsThePoints) {
    LineFixture f;
    f.SetTimes({3, 5});
    f.Select(0, 10);
    f.line->Nudge(2);
    EXPECT_EQ(f.line->selectionFirst, 11);
    EXPECT_EQ(f.line->selectionLast, 13);
}

TEST(Clipboard, CopyCountsFromTheMeasureAndPastesInBothModes) {
    LineFixture f;
    f.SetTimes({300, 340});
    f.Select(300, 340);
    std::vector<PlayPoint> clip;
    ASSERT_EQ(f.line->CopySelection(clip), 2);
    EXPECT_EQ(clip[0].time, 44);
    EXPECT_EQ(clip[1].time, 84);
    EXPECT_EQ(f.line->pointsHighlighted, 0);
    EXPECT_EQ(f.line->rememberedFirst, 300);
    f.line->PasteAt(0, clip.data(), 2, F::X(600), F::Y); // third measure
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{300, 340, 556, 596}));
    f.line->PasteAt(1, clip.data(), 2, F::X(130), F::Y); // step 2 of the first measure
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{172, 212, 300, 340, 556, 596}));
    EXPECT_EQ(f.WorkingTimes(), f.Times());
}

TEST(Clipboard, CutRemovesAndForgets) {
    LineFixture f;
    f.SetTimes({300, 340, 900});
    f.Select(300, 340);
    std::vector<PlayPoint> clip;
    EXPECT_EQ(f.line->CutSelection(clip), 2);
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{900}));
    EXPECT_EQ(f.WorkingTimes(), f.Times());
    EXPECT_EQ(f.line->rememberedFirst, -1);
}

TEST(Selection, SurvivesAPatternSwitch) {
    LineFixture f;
    SongFixture::Store(*f.inst, 1, {{20, 0}, {100, 0}, {400, 0}}, 1024);
    f.SetTimes({10, 300});
    f.line->OnRButtonDblClk(2, F::X(100), F::Y); // the first measure
    f.bank->LoadPattern(1);
    EXPECT_EQ(f.line->FirstSelectedPoint().time, 20);
    f.line->DeleteSelection();
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{400}));
}

struct FillCase {
    const char* name;
    int32_t units;
    int8_t repeat;
    std::vector<int32_t> before;
    int32_t first, last;
    uint8_t destructive;
    std::vector<int32_t> after;
};

class Fill : public testing::TestWithParam<FillCase> {};

TEST_P(Fill, CopiesToThePatternEnd) {
    const FillCase& c = GetParam();
    LineFixture f(c.units);
    f.bank->repeat = c.repeat;
    f.SetTimes(c.before);
    f.Select(c.first, c.last);
    f.line->FillFromSelection(c.destructive, 0);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
    EXPECT_EQ(f.line->selectionFirst, c.first);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Fill,
    testing::Values(
        FillCase{"OneMeasureFillsThePattern",
                 1024,
                 1,
                 {0, 128, 300, 1000},
                 0,
                 128,
                 1,
                 {0, 128, 256, 384, 512, 640, 768, 896}},
        FillCase{"OneMeasureMerging",
                 1024,
                 1,
                 {0, 128, 300},
                 0,
                 128,
                 0,
                 {0, 128, 256, 300, 384, 512, 640, 768, 896}},
        FillCase{"TwoMeasuresRoundUp", 1024, 1, {64, 320}, 64, 320, 1, {64, 320, 576, 832}},
        FillCase{
            "NoRoomStillErasesDestructively", 1024, 1, {300, 600, 800}, 300, 600, 1, {300, 600}},
        FillCase{
            "NoRoomMergingLeavesTheRest", 1024, 1, {300, 600, 800}, 300, 600, 0, {300, 600, 800}},
        FillCase{"LastMeasureNoCopy", 1024, 1, {800}, 800, 800, 1, {800}},
        FillCase{"RepeatTwoFromMeasureZero", 1024, 2, {10, 300}, 10, 300, 1, {10, 300, 522, 812}},
        FillCase{"RepeatTwoFromMeasureOne", 1024, 2, {300}, 300, 300, 1, {300}},
        FillCase{"CopiesPastTheEndFallAway", 1280, 2, {300, 780}, 300, 780, 0, {300, 780, 812}},
        FillCase{"EmptySelectionDoesNothing", 1024, 1, {600}, 0, 255, 1, {600}}),
    [](const auto& info) { return info.param.name; });

TEST(Fill, MergingCopyOverwritesValues) {
    LineFixture f;
    f.SetTimes({0, 256, 260});
    f.line->points->items[0].volume = -700;
    f.bank->working.items[0].volume = -700;
    f.Select(0, 0);
    f.line->FillFromSelection(0, 0);
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{0, 256, 260, 512, 768}));
    EXPECT_EQ(f.line->points->items[1].volume, -700);
    EXPECT_EQ(f.line->points->items[2].volume, 0);
}

} // namespace
