#include "LineFixture.h"

#include <gtest/gtest.h>

namespace {

// With 4 measures shown and the filter at 64 a pixel is a unit; with one
// measure and the filter at 1 the grid lines are 256 pixels apart.
struct PlaceCase {
    const char* name;
    int32_t visible, filter;
    std::vector<int32_t> before;
    const char* gestures;
    std::vector<int32_t> after;
    int32_t selectionFirst;
};

class Placement : public testing::TestWithParam<PlaceCase> {};

TEST_P(Placement, GestureGivesPoints) {
    const PlaceCase& c = GetParam();
    LineFixture f;
    f.line->SetWindow(c.visible, 0);
    f.line->filter = c.filter;
    f.SetTimes(c.before);
    f.Run(c.gestures);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
    EXPECT_EQ(f.line->selectionFirst, c.selectionFirst);
    EXPECT_EQ(f.line->filter, c.filter);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Placement,
    testing::Values(
        PlaceCase{"LeftMarginLandsOnTheFirstGridLine", 4, 8, {}, "L-4", {0}, -1},
        PlaceCase{"RightMarginLandsOnTheLastPixel", 4, 64, {}, "L1028", {1023}, -1},
        PlaceCase{"GridLineAtTheAxisEndIsNeverUsed", 1, 1, {}, "L922", {192}, -1},
        PlaceCase{"HalfWayGoesToTheEarlierLine", 1, 1, {}, "L384", {64}, -1},
        PlaceCase{"CatchesThePointBehind", 4, 64, {100}, "L108", {100}, 100},
        PlaceCase{"CatchesThePointAhead", 4, 64, {100}, "L92", {100}, 100},
        PlaceCase{"BeyondTheWindowDropsANote", 4, 64, {100}, "L109", {100, 109}, -1},
        PlaceCase{"AheadTakesTheLatestInTheWindow", 4, 64, {100, 104}, "L98", {100, 104}, 104},
        PlaceCase{"ControlDropsRightBeside", 4, 8, {100}, "L102/9", {100, 102}, -1},
        PlaceCase{"ControlOnANoteSelectsIt", 4, 8, {100}, "L100/9", {100}, 100},
        PlaceCase{"ShiftErasesTheCaughtNote", 4, 64, {100}, "L103/5", {}, -1},
        PlaceCase{"ShiftFarAwayErasesNothing", 4, 64, {100}, "L500/5", {100}, -1},
        PlaceCase{
            "ShiftDragErasesTheSpan", 4, 64, {100, 200, 300, 400}, "L150/5 l350/4", {100, 400}, -1},
        PlaceCase{"ShiftLetGoFirstErasesOnlyOne", 4, 64, {100, 200}, "L100/5 l350", {200}, -1},
        PlaceCase{"NumpadThreeDropsOnThirds", 1, 8, {}, "Q85/3 Q171/3 Q341/3", {21, 42, 85}, -1},
        PlaceCase{"PastThePatternEndIsRefused", 8, 64, {}, "L600", {}, -1}),
    [](const auto& info) { return info.param.name; });

TEST(Placement, OutsideTheRowsBandNothingHappens) {
    LineFixture f;
    f.line->OnLButtonDown(1, LineFixture::X(300), 20);
    EXPECT_TRUE(f.Times().empty());
}

TEST(Placement, NewNoteTakesTheDefaultNoteAndTheLine) {
    LineFixture f;
    f.line->SetNoteValue(FieldVolume, -1200, true);
    f.line->SetNoteValue(FieldPan, 300, true);
    f.Run("L64");
    const PlayPoint p = f.line->points->items[0];
    EXPECT_EQ(p.volume, -1200);
    EXPECT_EQ(p.pan, 300);
    EXPECT_EQ(p.line, 0);
}

} // namespace
