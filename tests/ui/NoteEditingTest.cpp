#include "ViewFixture.h"
#include "editing/Line.h"
#include "song/PlayPointList.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

// Line 0 stands in slot 2, line 1 in slot 3; two measures are shown and the
// filter is 8, so that a press at the x of a multiple of 8 lands on it.
struct NoteView : ViewFixture {
    NoteView() {
        AddLines(2);
        SongFixture::Store(*view.Current(), 0, {{64, 0}, {128, 0}, {320, 0}});
        Paint();
    }
    Line* LineAt(int i) { return view.Current()->GetBank()->GetLine(i); }
    int32_t X(int i, int32_t time) {
        const Rect& r = LineAt(i)->rect;
        return r.left + 7 +
               static_cast<int32_t>(std::lround(time * (r.right - r.left - 17) / 512.0));
    }
    int32_t Y(int i) { return 120 + 32 * (2 + i) + 16; }
    std::vector<int32_t> Times(int i) {
        std::vector<int32_t> out;
        const PlayPointList* p = LineAt(i)->points;
        for (int32_t k = 0; k < p->count; ++k)
            out.push_back(p->items[k].time);
        return out;
    }
    void RightClick(int i, int32_t time) {
        view.OnRButtonDown(Row::RightButton, X(i, time), Y(i));
        view.OnRButtonUp(0, X(i, time), Y(i));
    }
    void LeftClick(int i, int32_t time, uint32_t flags = Row::LeftButton) {
        view.OnLButtonDown(flags, X(i, time), Y(i));
        view.OnLButtonUp(0, X(i, time), Y(i));
    }
    // Key events through the engine's queue and ticks: "+29 +46" is left
    // control down, C down.
    void Keys(const std::string& keys) {
        std::istringstream in(keys);
        std::string word;
        int events = 0;
        while (in >> word) {
            ASSERT_TRUE(song.engine.PostKey(word[0] == '+', std::stoul(word.substr(1))));
            ++events;
        }
        song.Ticks(events / Engine::KeysPerTick + 1);
    }
};

TEST(NoteEditing, SelectionTakesTheKeyFocusAndShowsTheNoteBar) {
    NoteView f;
    f.RightClick(0, 128);
    EXPECT_EQ(f.song.engine.highlightMode, 1);
    EXPECT_EQ(f.song.engine.highlightedLine, f.LineAt(0));
    EXPECT_EQ(f.view.focusSlot, 2);
    ASSERT_FALSE(f.host.asks.empty());
    EXPECT_EQ(f.host.asks.back(), std::make_pair(FrameAsk::SelectionNoteBar, f.LineAt(0)));
    // A press elsewhere drops the focus and the highlight, and remembers it.
    f.view.OnLButtonDown(Row::LeftButton, 100, 50);
    EXPECT_EQ(f.song.engine.highlightMode, 0);
    EXPECT_EQ(f.LineAt(0)->selectionFirst, -1);
    EXPECT_EQ(f.LineAt(0)->rememberedFirst, 128);
}

TEST(NoteEditing, ClosingTheInstrumentDropsItsLinesFocus) {
    NoteView f;
    f.view.NewInstrument();
    f.view.SelectInstrument(0);
    f.view.RebuildRowList();
    f.Paint();
    f.RightClick(0, 128);
    ASSERT_EQ(f.song.engine.highlightMode, 1);
    f.view.CloseInstrument();
    EXPECT_EQ(f.song.engine.highlightMode, 0);
    f.Keys("+205 -205"); // nothing left to nudge
}

TEST(NoteEditing, DragByTheViewMovesTheSelection) {
    NoteView f;
    f.RightClick(0, 128);
    f.view.OnLButtonDown(Row::LeftButton, f.X(0, 128), f.Y(0));
    f.view.OnLButtonUp(0, f.X(0, 200), f.Y(0));
    EXPECT_EQ(f.Times(0), (std::vector<int32_t>{64, 200, 320}));
    EXPECT_EQ(f.LineAt(0)->selectionFirst, 200);
}

struct KeyCase {
    const char* name;
    std::string keys;
    std::vector<int32_t> after;
    int32_t clipboardCount;
};

class SelectionKeys : public testing::TestWithParam<KeyCase> {};

// The point at 128 of line 0 is selected by a right click first.
TEST_P(SelectionKeys, ActOnTheFocusedLine) {
    NoteView f;
    f.RightClick(0, 128);
    f.host.asks.clear();
    f.Keys(GetParam().keys);
    EXPECT_EQ(f.Times(0), GetParam().after);
    if (GetParam().after.size() == 2 && GetParam().clipboardCount == 0) {
        // Deleted: the focus is gone and the empty bar is up.
        EXPECT_EQ(f.song.engine.highlightMode, 0);
        ASSERT_FALSE(f.host.asks.empty());
        EXPECT_EQ(f.host.asks.back().first, FrameAsk::EmptyBar);
    }
    EXPECT_EQ(f.view.clipboardCount, GetParam().clipboardCount);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SelectionKeys,
    testing::Values(KeyCase{"RightArrowNudges", "+205 -205", {64, 129, 320}, 0},
                    KeyCase{"LeftArrowNudges", "+203 -203", {64, 127, 320}, 0},
                    KeyCase{"RightControlGoesBackAnEighth", "+157 -157", {64, 120, 320}, 0},
                    KeyCase{"NumpadZeroGoesOnAnEighth", "+82 -82", {64, 136, 320}, 0},
                    KeyCase{"EscapeDeletes", "+1 -1", {64, 320}, 0},
                    KeyCase{"BackspaceDeletes", "+14 -14", {64, 320}, 0},
                    KeyCase{"ControlCCopies", "+29 +46 -46 -29", {64, 128, 320}, 1},
                    KeyCase{"PlainCDoesNothing", "+46 -46", {64, 128, 320}, 0},
                    KeyCase{"ControlXCuts", "+29 +45 -45 -29", {64, 320}, 1},
                    KeyCase{"TwoAsterisksFillErasing", "+55 -55 +55 -55", {64, 128, 384}, 0},
                    KeyCase{"TwoPeriodsFillMerging", "+83 -83 +83 -83", {64, 128, 320, 384}, 0},
                    KeyCase{"MixedFillKeysDoNothing", "+55 -55 +83 -83", {64, 128, 320}, 0}),
    [](const auto& info) { return info.param.name; });

// What a left press on line 1 at 256 does with keys held; the clipboard
// holds the note at 128 of line 0 (128 into its measure) when filled.
struct PressCase {
    const char* name;
    bool fillClipboard;
    std::string held;
    std::vector<int32_t> after;
};

class HeldKeyPress : public testing::TestWithParam<PressCase> {};

TEST_P(HeldKeyPress, DecidesWhatThePressDoes) {
    NoteView f;
    if (GetParam().fillClipboard) {
        f.RightClick(0, 128);
        f.Keys("+29 +46 -46 -29");
        ASSERT_EQ(f.view.clipboardNotes[0].line, 0);
    }
    f.Keys(GetParam().held);
    f.LeftClick(1, 256);
    EXPECT_EQ(f.Times(1), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    Table, HeldKeyPress,
    testing::Values(PressCase{"PlainPressDropsANote", false, "", {256}},
                    PressCase{"VWithAnEmptyClipboardDoesNothing", false, "+47", {}},
                    PressCase{"VPastesOnTheStepUnderThePointer", true, "+47", {256}},
                    PressCase{"BPastesIntoTheMeasureUnderThePointer", true, "+48", {384}},
                    PressCase{"ANumpadDigitGoesBeforeThePasteKey", true, "+47 +79", {256}},
                    PressCase{"ReleasedPasteKeyPlacesAgain", true, "+48 -48", {256}}),
    [](const auto& info) { return info.param.name; });

TEST(NoteEditing, FilterTextOfTheHighlightedLines) {
    NoteView f;
    EXPECT_EQ(f.view.FilterText(), "no highlights");
    f.view.rowList.Highlight(2);
    EXPECT_EQ(f.view.FilterText(), "32nd Notes");
    f.view.rowList.Highlight(3);
    f.LineAt(1)->filter = 2;
    EXPECT_EQ(f.view.FilterText(), "Multi");
    f.view.SetFilter(-1);
    EXPECT_EQ(f.view.FilterText(), "Filter off");
    f.view.SetFilter(9); // ignored
    EXPECT_EQ(f.LineAt(0)->filter, 64);
    f.view.notationalFractions = 0;
    f.view.PushNotationalFractions();
    EXPECT_EQ(f.view.FilterText(), "1/64 step (max)");
}

TEST(NoteEditing, NoteBarTargetsTheFocusedLineElseTheDefaultNote) {
    NoteView f;
    EXPECT_EQ(f.view.SetNoteValue(FieldVolume, -100), nullptr); // nothing highlighted
    f.view.rowList.Highlight(3);
    f.Paint();
    EXPECT_EQ(f.view.SetNoteValue(FieldVolume, -200), f.LineAt(1));
    EXPECT_EQ(f.LineAt(1)->defaultNote.volume, -200);
    f.RightClick(0, 128);
    EXPECT_EQ(f.view.SetNoteValue(FieldVolume, -300), f.LineAt(0));
    EXPECT_EQ(f.LineAt(0)->points->items[1].volume, -300);
    EXPECT_EQ(f.LineAt(0)->points->items[0].volume, 0);
    EXPECT_EQ(f.LineAt(0)->defaultNote.volume, 0);
}

} // namespace
