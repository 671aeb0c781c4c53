#include "editing/Line.h"
#include "engine/MixerCommand.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"
#include "ui/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using K = CanvasRecord::Kind;
using Records = std::vector<CanvasRecord>;

// h = 33, so every height truncates (0.15 h = 4.95 draws 4); the axis at
// c = trunc(216.5) = 216; 800 pixels of window from x = 27.
constexpr Rect LineRect{20, 200, 837, 233};
constexpr int32_t Axis = 216;

CanvasRecord Tick(int32_t x, int32_t half) {
    return CanvasRecord{K::Line, {}, {{x, Axis - half}, {x, Axis + half}}, Black};
}

CanvasRecord Number(int32_t x, const char* text, int32_t bottom) {
    CanvasRecord r{K::Text, Rect{x + 3, 200, x + 25, bottom}, {}, Black};
    r.text = text;
    r.font = "Times";
    r.pointSize10 = 80;
    r.flags = TextSingleLine;
    return r;
}

Records OfKind(const Records& records, K kind) {
    Records out;
    for (const CanvasRecord& r : records)
        if (r.kind == kind)
            out.push_back(r);
    return out;
}

// Places a line showing `measures` from `first` with notes at `times`, and
// returns what it drew.
Records Painted(Line& line, int32_t measures, int32_t first, const std::vector<int32_t>& times) {
    for (int32_t t : times) {
        PlayPoint p{};
        p.time = t;
        line.points->Insert(p);
    }
    line.SetWindow(measures, first);
    RecordingCanvas canvas;
    line.Place(LineRect, &canvas);
    line.Unplace();
    return canvas.records;
}

TEST(LinePaint, TwoMeasuresDrawEveryTickAndNumberEachMeasure) {
    Line line(nullptr, 0, 4);
    // clang-format off
    const Records expected{
        {K::Fill, LineRect, {}, {}, White}, {K::Line, {}, {{27, Axis}, {827, Axis}}, Black},
        Tick(27, 4), Tick(27, 8), Number(27, "1", Axis + 8),
        Tick(127, 4), Tick(227, 4), Tick(327, 4),
        Tick(427, 4), Tick(427, 8), Number(427, "2", Axis + 8),
        Tick(527, 4), Tick(627, 4), Tick(727, 4)};
    // clang-format on
    EXPECT_EQ(Painted(line, 2, 0, {}), expected);
}

TEST(LinePaint, SixteenMeasuresDrawShortTicksAndNumberEveryFourth) {
    Line line(nullptr, 0, 4);
    const Records r = Painted(line, 16, 2, {});
    const Records lines = OfKind(r, K::Line);
    ASSERT_EQ(lines.size(), 1u + 64u + 16u);
    EXPECT_EQ(lines[1], Tick(27, 2));
    EXPECT_EQ(lines[2], Tick(27, 5));
    EXPECT_EQ(lines[3], Tick(39, 2)); // 12.5 pixels a step, truncated
    EXPECT_EQ(OfKind(r, K::Text),
              (Records{Number(27, "3", Axis + 5), Number(227, "7", Axis + 5),
                       Number(427, "11", Axis + 5), Number(627, "15", Axis + 5)}));
}

struct ZoomCase {
    int32_t measures;
    int32_t markWidth, stepHalf, measureHalf;
};

class ZoomTest : public ::testing::TestWithParam<ZoomCase> {};

TEST_P(ZoomTest, MarksAndTicksNarrowFromTwelveMeasures) {
    const ZoomCase& c = GetParam();
    Line line(nullptr, 0, 4);
    const Records r = Painted(line, c.measures, 0, {0});
    EXPECT_EQ(r[2], Tick(27, c.stepHalf));
    EXPECT_EQ(r[3], Tick(27, c.measureHalf));
    const Records marks = OfKind(r, K::Polygon);
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_EQ(marks[0].points,
              (std::vector<Point2>{
                  {27, Axis}, {27, Axis - 11}, {27 + c.markWidth, Axis}, {27, Axis + 11}}));
}

INSTANTIATE_TEST_SUITE_P(Table, ZoomTest,
                         ::testing::Values(ZoomCase{11, 3, 4, 8}, ZoomCase{12, 1, 2, 5}));

struct BarCase {
    const char* what;
    int32_t lengthMs;
    double stepMs;
    int32_t time;
    int32_t left, right;
};

class BarTest : public ::testing::TestWithParam<BarCase> {
  protected:
    MixerCommandQueue queue;
    Instrument inst;
};

// Two measures of 4 steps: 100 pixels a step.
TEST_P(BarTest, BarShowsTheFirstSampleAtThePresentTempo) {
    const BarCase& c = GetParam();
    SCOPED_TRACE(c.what);
    SoundBuffer* b = inst.NewBufferForNewLine();
    b->SetLoaded(0, &queue, "a", "/a.wav", c.lengthMs, 44100, 88200);
    b->MarkReady();
    inst.GetSchedule()->stepMs = c.stepMs;
    Line& line = *inst.GetBank()->GetLine(0);
    line.SetPoints(new PlayPointList(1024)); // two measures shown of four
    const Records r = Painted(line, 2, 0, {c.time});
    const Records fills = OfKind(r, K::Fill);
    ASSERT_EQ(fills.size(), 2u);
    EXPECT_EQ(fills[1],
              (CanvasRecord{K::Fill, Rect{c.left, Axis - 2, c.right, Axis + 2}, {}, {}, Black}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, BarTest,
    ::testing::Values(BarCase{"two steps at 120 a minute", 1000, 500.0, 0, 27, 227},
                      BarCase{"twice the tempo, twice as long", 1000, 250.0, 0, 27, 427},
                      BarCase{"fraction of a pixel dropped", 37, 500.0, 64, 127, 134},
                      BarCase{"stopped at the row's right edge", 1000, 500.0, 448, 727, 837},
                      BarCase{"window's end stands at R - 10", 1000, 500.0, 512, 827, 837}));

TEST(LinePaint, LineWithoutSampleHasAnEmptyBar) {
    Line line(nullptr, 0, 4);
    const Records fills = OfKind(Painted(line, 2, 0, {64}), K::Fill);
    ASSERT_EQ(fills.size(), 2u);
    EXPECT_EQ(fills[1].rect, (Rect{127, Axis - 2, 127, Axis + 2}));
}

struct SelectionCase {
    const char* what;
    uint8_t audible;
    int32_t first, last;
    std::vector<Color> marks; // of the notes at 64, 128, 192
    Color background;
    std::string text; // empty: no position text
};

class SelectionTest : public ::testing::TestWithParam<SelectionCase> {};

TEST_P(SelectionTest, SelectedNotesAreGreyAndTheFirstTellsItsPosition) {
    const SelectionCase& c = GetParam();
    SCOPED_TRACE(c.what);
    Line line(nullptr, 0, 4);
    line.audible = c.audible;
    line.selectionFirst = c.first;
    line.selectionLast = c.last;
    const Records r = Painted(line, 2, 0, {64, 128, 192});
    EXPECT_EQ(r[0].fill, c.background);
    std::vector<Color> marks, bars;
    for (const CanvasRecord& m : OfKind(r, K::Polygon))
        marks.push_back(m.fill);
    const Records fills = OfKind(r, K::Fill);
    for (size_t i = 1; i < fills.size(); ++i)
        bars.push_back(fills[i].fill);
    EXPECT_EQ(marks, c.marks);
    EXPECT_EQ(bars, c.marks);
    const Records texts = OfKind(r, K::Text);
    const bool hasText = texts.size() == 3u; // after the two measure numbers
    EXPECT_EQ(hasText ? texts.back().text : "", c.text);
}

constexpr Color B = Black, G = Gray;
INSTANTIATE_TEST_SUITE_P(
    Table, SelectionTest,
    ::testing::Values(SelectionCase{"none", 1, -1, -1, {B, B, B}, White, ""},
                      SelectionCase{"from a note", 1, 128, 192, {B, G, G}, White, " 3 / 4"},
                      SelectionCase{"from between notes", 1, 100, 192, {B, G, G}, White, ""},
                      SelectionCase{
                          "one note on a muted line", 0, 64, 64, {G, B, B}, Gray, " 2 / 4"}));

TEST(LinePaint, FirstSelectedNoteScrolledAwayHasNoPositionText) {
    Line line(nullptr, 0, 4);
    line.selectionFirst = 0;
    line.selectionLast = 300;
    const Records r = Painted(line, 2, 1, {0, 300});
    const Records marks = OfKind(r, K::Polygon);
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_EQ(marks[0].fill, Gray);
    EXPECT_EQ(OfKind(r, K::Text).size(), 2u);
}

struct PositionCase {
    int8_t steps;
    int32_t firstMeasure, time;
    uint8_t fractions;
    const char* text;
};

class PositionTest : public ::testing::TestWithParam<PositionCase> {};

TEST_P(PositionTest, PositionTextStandsRightOfTheMark) {
    const PositionCase& c = GetParam();
    Line line(nullptr, 0, c.steps);
    line.SetFractions(c.fractions);
    line.selectionFirst = line.selectionLast = c.time;
    const Records r = Painted(line, 2, c.firstMeasure, {c.time});
    const int32_t x = OfKind(r, K::Polygon).at(0).points[0].x;
    CanvasRecord text{K::Text, Rect{x + 3, 200, x + 55, Axis - 3}, {}, Black};
    text.text = c.text;
    text.font = "Times";
    text.pointSize10 = 70;
    text.flags = TextSingleLine | TextCenter | TextVCenter | TextOpaque | TextFitted;
    EXPECT_EQ(r.back(), text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PositionTest,
    ::testing::Values(
        PositionCase{4, 0, 64, 1, " 2 / 4"}, PositionCase{4, 0, 0, 0, " 1 / 4"},
        PositionCase{4, 0, 96, 1, " 2+( 1/8 )"}, PositionCase{4, 0, 96, 0, " 2+( 1/2 )"},
        PositionCase{4, 0, 80, 1, " 2+( 1/16 )"}, PositionCase{4, 0, 80, 0, " 2+( 1/4 )"},
        PositionCase{4, 0, 112, 1, " 2+( 3/16 )"}, PositionCase{4, 0, 72, 1, " 2+( 1/32 )"},
        PositionCase{4, 0, 72, 0, " 2+( 1/8 )"}, PositionCase{4, 0, 88, 0, " 2+( 3/8 )"},
        PositionCase{4, 0, 65, 1, " 2+.0.015625 "}, PositionCase{4, 0, 65, 0, " 2+.0.015625 "},
        PositionCase{4, 1, 320, 1, " 2 / 4"}, PositionCase{3, 1, 256, 1, " 2 / 3"},
        PositionCase{3, 0, 160, 0, " 3+( 1/2 )"}));

} // namespace
