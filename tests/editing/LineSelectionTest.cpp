#include "LineFixture.h"

#include <gtest/gtest.h>

namespace {

// Gestures and key commands (see LineFixture::Run) at 4 measures shown,
// filter 64: a pixel is a unit. first -1: no range.
struct SelectCase {
    const char* name;
    std::vector<int32_t> before;
    const char* gestures;
    int32_t first, last;
    uint8_t highlighted;
    std::vector<int32_t> after;
};

class Selection : public testing::TestWithParam<SelectCase> {};

TEST_P(Selection, GesturesGiveRangeAndPoints) {
    const SelectCase& c = GetParam();
    LineFixture f;
    f.SetTimes(c.before);
    f.Run(c.gestures);
    EXPECT_EQ(f.line->selectionFirst, c.first);
    if (c.first != -1) {
        EXPECT_EQ(f.line->selectionLast, c.last);
    }
    EXPECT_EQ(f.line->pointsHighlighted, c.highlighted);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
}

using S = SelectCase;
INSTANTIATE_TEST_SUITE_P(
    Table, Selection,
    testing::Values(
        S{"RightClickOnEmptySpaceIsAnInvisibleRange", {}, "R500 r500 N-1", 500, 500, 0, {}},
        S{"RightDragLeftFromAPoint", {64, 128, 300}, "R300 r100", 128, 300, 1, {64, 128, 300}},
        S{"RightDragOverNoPoint", {600}, "R100 r200", -1, -1, 0, {600}},
        S{"DoubleClickOnAnEmptyMeasure", {100}, "D600 r600", 512, 767, 1, {100}},
        S{"DoubleClickExtendedToALaterMeasure", {300, 700}, "D100 r600", 300, 767, 1, {300, 700}},
        S{"ShiftDoubleClickSelectsTheLine", {300, 700}, "D0/6", 300, 1023, 1, {300, 700}},
        S{"PressOnALaterSelectedPoint", {100, 200}, "R100 r200 L200", 200, 200, 1, {100, 200}},
        S{"DragOntoAFreePlace",
          {100, 200, 800},
          "R100 r200 L100 l400",
          400,
          500,
          1,
          {400, 500, 800}},
        S{"DragOntoANoteMerges", {100, 200, 800}, "R100 r200 L100 l700", -1, -1, 0, {700, 800}},
        S{"ControlAtTheReleaseStays",
          {100, 200, 800},
          "R100 r200 L100 l400/8",
          100,
          200,
          1,
          {100, 200, 800}},
        S{"DeleteTakesBothEnds", {100, 200, 300}, "R100 r200 X", -1, -1, 0, {300}},
        S{"DeleteOnThePatternBound", {0, 1023}, "D0/6 X", -1, -1, 0, {}},
        S{"DeleteOfAnEmptyRange", {100}, "D600 X", -1, -1, 0, {100}},
        S{"NudgeEighthOfOnePoint", {3}, "R3 N2", 8, 8, 1, {8}},
        S{"NudgeEighthAgain", {8}, "R8 N2", 16, 16, 1, {16}},
        S{"NudgeEighthOfTwoPoints", {3, 5, 900}, "R3 r5 N2", 11, 13, 1, {11, 13, 900}},
        S{"NudgeBackFromAStep", {64}, "R64 N-2", 56, 56, 1, {56}},
        S{"NudgeBackToTheStep", {68}, "R68 N-2", 64, 64, 1, {64}},
        S{"NudgeBackFromZeroRefused", {0}, "R0 N-2", 0, 0, 1, {0}},
        S{"NudgePastTheEndRefused", {1023}, "R1023 N1", 1023, 1023, 1, {1023}},
        S{"NudgeIntoAPointRefused", {100, 101}, "R100/10 N1", 100, 100, 1, {100, 101}},
        S{"NudgeByAUnit", {100}, "R100 N-1", 99, 99, 1, {99}}),
    [](const auto& info) { return info.param.name; });

TEST(Clipboard, CopyCountsFromTheMeasureAndPastesInBothModes) {
    LineFixture f;
    f.SetTimes({300, 340});
    f.Select(300, 340);
    std::vector<PlayPoint> clip;
    ASSERT_EQ(f.line->CopySelection(clip), 2);
    EXPECT_EQ(clip[0].time, 44);
    EXPECT_EQ(clip[1].time, 84);
    EXPECT_EQ(f.line->rememberedFirst, 300);
    f.line->PasteAt(0, clip.data(), 2, LineFixture::X(600), LineFixture::Y); // third measure
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{300, 340, 556, 596}));
    f.line->PasteAt(1, clip.data(), 2, LineFixture::X(130), LineFixture::Y); // its step 2
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{172, 212, 300, 340, 556, 596}));
    EXPECT_EQ(f.WorkingTimes(), f.Times());
}

TEST(Clipboard, CutRemovesAndForgets) {
    LineFixture f;
    f.SetTimes({300, 340, 900});
    f.Select(300, 340);
    std::vector<PlayPoint> clip;
    EXPECT_EQ(f.line->CutSelection(clip), 2);
    EXPECT_EQ(f.WorkingTimes(), (std::vector<int32_t>{900}));
    EXPECT_EQ(f.line->rememberedFirst, -1);
}

TEST(Selection, SurvivesAPatternSwitch) {
    LineFixture f;
    SongFixture::Store(*f.inst, 1, {{20, 0}, {100, 0}, {400, 0}}, 1024);
    f.SetTimes({10, 300});
    f.Run("D100"); // the first measure
    f.bank->LoadPattern(1);
    EXPECT_EQ(f.line->FirstSelectedPoint().time, 20);
    f.Run("X");
    EXPECT_EQ(f.Times(), (std::vector<int32_t>{400}));
}

// With 4 steps a measure (256 units) and the pattern's repeat.
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

using Fc = FillCase;
INSTANTIATE_TEST_SUITE_P(
    Table, Fill,
    testing::Values(
        Fc{"OneMeasure",
           1024,
           1,
           {0, 128, 300, 1000},
           0,
           128,
           1,
           {0, 128, 256, 384, 512, 640, 768, 896}},
        Fc{"OneMeasureMerging",
           1024,
           1,
           {0, 128, 300},
           0,
           128,
           0,
           {0, 128, 256, 300, 384, 512, 640, 768, 896}},
        Fc{"TwoMeasuresRoundUp", 1024, 1, {64, 320}, 64, 320, 1, {64, 320, 576, 832}},
        Fc{"NoRoomStillErases", 1024, 1, {300, 600, 800}, 300, 600, 1, {300, 600}},
        Fc{"NoRoomMerging", 1024, 1, {300, 600, 800}, 300, 600, 0, {300, 600, 800}},
        Fc{"LastMeasure", 1024, 1, {800}, 800, 800, 1, {800}},
        Fc{"RepeatTwoFromMeasureZero", 1024, 2, {10, 300}, 10, 300, 1, {10, 300, 522, 812}},
        Fc{"RepeatTwoFromMeasureOne", 1024, 2, {300}, 300, 300, 1, {300}},
        Fc{"CopiesPastTheEndFallAway", 1280, 2, {300, 780}, 300, 780, 0, {300, 780, 812}},
        Fc{"EmptySelection", 1024, 1, {600}, 0, 255, 1, {600}}),
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
