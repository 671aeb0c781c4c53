#include "LineFixture.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using F = LineFixture;

struct PlaceCase {
    const char* name;
    int32_t visible;
    int32_t filter;
    std::vector<int32_t> before;
    std::function<void(Line&)> gesture;
    std::vector<int32_t> after;
    int32_t selectionFirst;
};

void Press(Line& l, uint32_t flags, int32_t px) {
    l.OnLButtonDown(flags, F::X(px), F::Y);
}

class Placement : public testing::TestWithParam<PlaceCase> {};

TEST_P(Placement, GestureGivesPoints) {
    const PlaceCase& c = GetParam();
    LineFixture f;
    f.line->SetWindow(c.visible, 0);
    f.line->filter = c.filter;
    f.SetTimes(c.before);
    c.gesture(*f.line);
    EXPECT_EQ(f.Times(), c.after);
    EXPECT_EQ(f.WorkingTimes(), c.after);
    EXPECT_EQ(f.line->selectionFirst, c.selectionFirst);
    EXPECT_EQ(f.line->filter, c.filter);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Placement,
    testing::Values(
        PlaceCase{"LeftMarginLandsOnTheFirstGridLine",
                  4,
                  8,
                  {},
                  [](Line& l) { l.OnLButtonDown(1, 3, F::Y); },
                  {0},
                  -1},
        PlaceCase{"RightMarginLandsOnTheLastPixel",
                  4,
                  64,
                  {},
                  [](Line& l) { l.OnLButtonDown(1, 1035, F::Y); },
                  {1023},
                  -1},
        PlaceCase{"GridLineAtTheAxisEndIsNeverUsed",
                  1,
                  1,
                  {},
                  [](Line& l) { Press(l, 1, 922); },
                  {192},
                  -1},
        PlaceCase{
            "HalfWayGoesToTheEarlierLine", 1, 1, {}, [](Line& l) { Press(l, 1, 384); }, {64}, -1},
        PlaceCase{"OutsideTheBandNothing",
                  4,
                  64,
                  {},
                  [](Line& l) { l.OnLButtonDown(1, F::X(300), 20); },
                  {},
                  -1},
        PlaceCase{
            "CatchesThePointBehind", 4, 64, {100}, [](Line& l) { Press(l, 1, 108); }, {100}, 100},
        PlaceCase{
            "CatchesThePointAhead", 4, 64, {100}, [](Line& l) { Press(l, 1, 92); }, {100}, 100},
        PlaceCase{"BeyondTheWindowDropsANote",
                  4,
                  64,
                  {100},
                  [](Line& l) { Press(l, 1, 109); },
                  {100, 109},
                  -1},
        PlaceCase{"AheadTakesTheLatestInTheWindow",
                  4,
                  64,
                  {100, 104},
                  [](Line& l) { Press(l, 1, 98); },
                  {100, 104},
                  104},
        PlaceCase{"ControlDropsRightBeside",
                  4,
                  8,
                  {100},
                  [](Line& l) { Press(l, 9, 102); },
                  {100, 102},
                  -1},
        PlaceCase{
            "ControlOnANoteSelectsIt", 4, 8, {100}, [](Line& l) { Press(l, 9, 100); }, {100}, 100},
        PlaceCase{
            "ShiftErasesTheCaughtNote", 4, 64, {100}, [](Line& l) { Press(l, 5, 103); }, {}, -1},
        PlaceCase{"ShiftFarAwayErasesNothing",
                  4,
                  64,
                  {100},
                  [](Line& l) { Press(l, 5, 500); },
                  {100},
                  -1},
        PlaceCase{"ShiftDragErasesTheSpan",
                  4,
                  64,
                  {100, 200, 300, 400},
                  [](Line& l) {
                      Press(l, 5, 150);
                      l.OnLButtonUp(4, F::X(350), F::Y);
                  },
                  {100, 400},
                  -1},
        PlaceCase{"ShiftLetGoFirstErasesOnlyThePressedNote",
                  4,
                  64,
                  {100, 200, 300},
                  [](Line& l) {
                      Press(l, 5, 100);
                      l.OnLButtonUp(0, F::X(350), F::Y);
                  },
                  {200, 300},
                  -1},
        PlaceCase{"NumpadThreeDropsOnThirdsOfAStep",
                  1,
                  8,
                  {},
                  [](Line& l) {
                      l.DropWithDivision(3, F::X(85), F::Y);
                      l.DropWithDivision(3, F::X(171), F::Y);
                      l.DropWithDivision(3, F::X(341), F::Y);
                  },
                  {21, 42, 85},
                  -1},
        PlaceCase{
            "PastThePatternEndIsRefused", 8, 64, {}, [](Line& l) { Press(l, 1, 600); }, {}, -1}),
    [](const auto& info) { return info.param.name; });

TEST(Placement, NewNoteTakesTheDefaultNoteAndTheLine) {
    LineFixture f;
    f.line->SetNoteValue(FieldVolume, -1200, true);
    f.line->SetNoteValue(FieldPan, 300, true);
    Press(*f.line, 1, 64);
    const PlayPoint p = f.line->points->items[0];
    EXPECT_EQ(p.volume, -1200);
    EXPECT_EQ(p.pan, 300);
    EXPECT_EQ(p.line, 0);
}

struct NameCase {
    int32_t filter;
    const char* notational;
    const char* steps;
};

class FilterNames : public testing::TestWithParam<NameCase> {};

TEST_P(FilterNames, BothNotations) {
    EXPECT_STREQ(Line::FilterName(GetParam().filter, 1), GetParam().notational);
    EXPECT_STREQ(Line::FilterName(GetParam().filter, 0), GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FilterNames,
    testing::Values(NameCase{1, "Quarter Notes", "1 step"}, NameCase{2, "Eighth Notes", "1/2 step"},
                    NameCase{4, "16th Notes", "1/4 step"}, NameCase{8, "32nd Notes", "1/8 step"},
                    NameCase{64, "Filter off", "1/64 step (max)"}, NameCase{3, "Error", "Error"}));

} // namespace
