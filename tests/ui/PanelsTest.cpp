// The three panels of the view against the model: which rows they give out,
// what the rows show, and what their controls change.
#include "ViewFixture.h"
#include "editing/Line.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr int NameX = 100;
int SlotY(int slot) {
    return 120 + 32 * slot + 16;
}
constexpr uint32_t Tab = 15;

Line* LineAt(ViewFixture& f, int i) {
    return f.view.Current()->GetBank()->GetLine(i);
}

// The name fields of the rows the window shows, joined by spaces.
std::string Names(const VolumePanel& p) {
    std::string s;
    for (int i = 0; i < p.shownRows; ++i)
        s += (i ? " " : "") + std::string(p.rows[i].name.text);
    return s;
}

// The titles of the rows the window shows.
std::string Titles(const VolumePanel& p) {
    std::string s;
    for (int i = 0; i < p.shownRows; ++i)
        s += (i ? " " : "") + std::string(p.rows[i].title.text);
    return s;
}

void Highlight(ViewFixture& f, int firstSlot, int lastSlot) {
    auto y = [&f](int slot) { return f.view.slots[slot].top + 1; };
    f.view.OnLButtonDown(Row::LeftButton, NameX, y(firstSlot));
    if (lastSlot != firstSlot)
        f.view.OnLButtonDown(Row::LeftButton | Row::Shift, NameX, y(lastSlot));
}

} // namespace

struct PopupCase {
    const char* name;
    int lines, first, last; // highlighted slots, then the tab key
    const char* names;
    const char* caption;
};

class PopupRows : public testing::TestWithParam<PopupCase> {};

TEST_P(PopupRows, FollowTheHighlightedLines) {
    const PopupCase& c = GetParam();
    ViewFixture f;
    f.AddLines(c.lines);
    f.view.SetSlotCount(40);
    f.Paint(1000, 2000);
    Highlight(f, c.first, c.last);
    f.keys.OnKey(1, Tab);
    EXPECT_EQ(f.view.popupShown, 1);
    EXPECT_EQ(Names(f.view.popupVolumePanel), c.names);
    EXPECT_STREQ(f.view.popupVolumePanel.caption.text, c.caption);
    f.keys.OnKey(0, Tab);
    f.keys.OnKey(1, Tab);
    EXPECT_EQ(f.view.popupShown, 0);
}

const PopupCase popupCases[] = {
    {"OneLineShowsFiveColumns", 3, 3, 3, "s1 Pch Pan Len Toe", "    s1"},
    {"FourLinesOneColumnEach", 5, 2, 5, "s0 s1 s2 s3", "    s3"},
    {"TwentyFiveLinesGiveTwenty", 25, 2, 26,
     "s0 s1 s2 s3 s4 s5 s6 s7 s8 s9 s10 s11 s12 s13 s14 s15 s16 s17 s18 s19", "    s19"},
    {"UpwardRangeTakesAll", 5, 6, 2, "s0 s1 s2 s3 s4", "    s4"},
};
INSTANTIATE_TEST_SUITE_P(Tab, PopupRows, testing::ValuesIn(popupCases),
                         [](const auto& info) { return info.param.name; });

struct ValueCase {
    const char* name;
    int32_t code;
    double value;     // set on the line first
    int32_t position; // the slider then
    const char* text;
    int32_t release; // a slider let go there
    double after;    // the line's value
};

class PopupValues : public testing::TestWithParam<ValueCase> {};

TEST_P(PopupValues, ShowAndSetTheLine) {
    const ValueCase& c = GetParam();
    ViewFixture f;
    f.AddLines(1);
    Line* line = LineAt(f, 0);
    line->SetValue(c.code, c.value, 0);
    f.view.OnRButtonDown(Row::RightButton, NameX, SlotY(2));
    VolumePanel& p = f.view.popupVolumePanel;
    ASSERT_EQ(p.rowCount, 5);
    const PanelRow& row = p.rows[c.code - 1];
    EXPECT_EQ(row.position, c.position);
    EXPECT_STREQ(row.value.text, c.text);
    p.OnRelease(c.code - 1, c.release);
    EXPECT_DOUBLE_EQ(line->GetValue(c.code), c.after);
}

const ValueCase valueCases[] = {
    {"VolumeOnTheSamplePanelScale", 1, 0.8, 2000, "0.800000", 4000, 0.6},
    {"PitchAtTheTopStopsShortOfMinusOne", 2, 0.5, 1500, "0.500000", 0, -0.975},
    {"PanInHundredths", 3, -0.25, -25, "-0.250000", 40, 0.4},
    {"LengthZeroShowsOneAndLetsGoAtTheTop", 4, 0.0, -10000, "1.000000", 0, 0.0},
    {"LengthAnywhereElseIsAboveOne", 4, 0.0, -10000, "1.000000", 2500, 1.25},
    {"ToeInMilliseconds", 5, 0.25, 7500, "2500ms", 10000, 0.0},
};
INSTANTIATE_TEST_SUITE_P(Codes, PopupValues, testing::ValuesIn(valueCases),
                         [](const auto& info) { return info.param.name; });

TEST(TopPanel, ControlsRowsLevelsAndMute) {
    ViewFixture f;
    f.view.NewInstrument();
    f.view.Current()->AddControlGroup();
    VolumePanel& p = f.view.topVolumePanel;
    p.ToggleControls();
    // The first instrument has one group, the second two.
    EXPECT_EQ(Titles(p), "Vol C1 Vol C1 C2");
    EXPECT_EQ(p.rows[2].name.text, f.view.instruments[1]->displayName);
    EXPECT_STREQ(p.caption.text, "    2 Instruments");
    p.OnSpin(0, true, 0); // at the top already
    EXPECT_DOUBLE_EQ(f.view.instruments[0]->level, 1.0);
    p.OnRelease(4, 2000);
    EXPECT_DOUBLE_EQ(f.view.instruments[1]->groupLevels[1], 0.8);
    p.OnCheck(3, true); // a group's box mutes the whole instrument
    EXPECT_EQ(f.view.instruments[1]->on, 0);
    EXPECT_TRUE(p.rows[2].checked);
    f.view.CloseInstrument();
    EXPECT_EQ(Titles(p), "Vol C1");
}

TEST(TopPanel, RowsThatDoNotFitKeepTheirPlace) {
    ViewFixture f;
    VolumePanel& p = f.view.topVolumePanel;
    p.SetClientSize(1000, 60);
    f.view.NewInstrument();
    EXPECT_EQ(p.rows[1].left, 65);
    p.SetClientSize(150, 60); // room for one row left of the button
    f.view.NewInstrument();
    EXPECT_EQ(p.rows[0].left, 0);
    EXPECT_EQ(p.rows[1].left, 65);
    EXPECT_EQ(p.rows[2].left, -1);
}

TEST(Panels, LinesThatGoLeaveThePanels) {
    ViewFixture f;
    f.AddLines(3);
    f.view.OnRButtonDown(Row::RightButton | Row::Shift, NameX, SlotY(3));
    Highlight(f, 2, 4);
    f.keys.OnKey(1, Tab);
    ASSERT_EQ(f.view.samplePanel.line, LineAt(f, 1));
    f.view.OnLButtonDown(Row::LeftButton, NameX, SlotY(3));
    f.view.DeleteHighlighted();
    EXPECT_EQ(f.view.samplePanel.attached, 0);
    EXPECT_EQ(Names(f.view.popupVolumePanel), "s0 s2");
}

// The sample panel on a line with samples at voices of the fixture's queue.
class SamplePanelTest : public testing::Test {
  protected:
    SamplePanelTest() {
        f.AddLines(1);
        line = LineAt(f, 0);
        f.view.OnRButtonDblClk(Row::RightButton | Row::Shift, NameX, SlotY(2));
    }
    void LoadMore() {
        f.song.LoadSample(*f.view.Current(), 0);
        f.view.RefreshPanels();
    }
    const SamplePanelRow& Row(int r) { return f.view.samplePanel.rows[r]; }
    ViewFixture f;
    Line* line;
    SamplePanel& panel = f.view.samplePanel;
};

TEST_F(SamplePanelTest, SecondSampleStartsSilentAndJumpsOnRelease) {
    EXPECT_EQ(panel.shown, 1);
    EXPECT_STREQ(Row(1).value.text, "0.930000");
    EXPECT_EQ(Row(1).position, -700);
    EXPECT_STREQ(Row(2).name.text, "");
    EXPECT_EQ(Row(2).position, -700); // the value stays without a sample
    LoadMore();
    EXPECT_STREQ(Row(2).name.text, "s1");
    EXPECT_STREQ(Row(2).value.text, "0.000000");
    EXPECT_EQ(Row(2).position, -4000);
    panel.OnSpin(2, false);
    EXPECT_DOUBLE_EQ(line->GetValue(Line::SecondSampleVolume), 0.0);
    panel.OnRelease(2, -4000);
    EXPECT_DOUBLE_EQ(line->GetValue(Line::SecondSampleVolume), 0.6);
}

TEST_F(SamplePanelTest, ChecksMuteTheirRowOnly) {
    LoadMore();
    panel.OnCheck(1, true);
    EXPECT_EQ(line->audible, 1);
    EXPECT_TRUE(Row(1).checked);
    EXPECT_FALSE(Row(0).checked);
    panel.OnCheck(0, true);
    EXPECT_EQ(line->audible, 0);
    EXPECT_TRUE(Row(0).checked);
}

TEST_F(SamplePanelTest, ClearMovesTheLaterValueButNotItsCheck) {
    LoadMore();
    panel.OnRelease(2, -2000);
    panel.OnCheck(2, true);
    panel.OnClear(1);
    EXPECT_STREQ(Row(1).name.text, "s1");
    EXPECT_STREQ(Row(1).value.text, "0.800000");
    EXPECT_FALSE(Row(1).checked);
    EXPECT_TRUE(Row(2).checked);
    panel.OnOK();
    panel.OnRelease(0, 0); // no line attached: nothing happens
    EXPECT_DOUBLE_EQ(line->volume, Line::StartLevel);
    EXPECT_EQ(panel.shown, 0);
}

TEST(Mouse, NameCellGesturesOpenThePanels) {
    ViewFixture f;
    f.AddLines(2);
    f.view.OnLButtonDblClk(Row::LeftButton, NameX, SlotY(3));
    EXPECT_EQ(f.view.samplePanel.line, LineAt(f, 1));
    EXPECT_EQ(f.host.Count(FrameAsk::LoadSamples), 1);
    f.view.OnRButtonDblClk(Row::RightButton, NameX, SlotY(2));
    EXPECT_EQ(f.view.samplePanel.line, LineAt(f, 0));
    EXPECT_EQ(f.host.Count(FrameAsk::LoadSamples), 2);
    f.view.OnRButtonDown(Row::RightButton, NameX, SlotY(3));
    EXPECT_EQ(Names(f.view.popupVolumePanel), "s1 Pch Pan Len Toe");
    EXPECT_EQ(f.view.popupShown, 0); // filled while hidden
    Highlight(f, 2, 3);              // downward: each line joins
    EXPECT_EQ(Names(f.view.popupVolumePanel), "s1 s0 s1");
    Highlight(f, 3, 2); // upward: the panel stays
    EXPECT_EQ(Names(f.view.popupVolumePanel), "s1 s0 s1");
}
