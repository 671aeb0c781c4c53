#include "ViewFixture.h"
#include "editing/Line.h"

#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

using K = KeyMap;

// One key sequence through the engine's queue and ticks: "+42 +4 -4 -42" is
// shift down, 3 down, 3 up, shift up. Setup runs first, check after.
struct KeyCase {
    const char* name;
    std::function<void(ViewFixture&)> setup;
    std::string keys;
    std::function<void(ViewFixture&)> check;
};

void Play(ViewFixture& f, const std::string& keys) {
    std::istringstream in(keys);
    std::string word;
    int events = 0;
    while (in >> word) {
        ASSERT_TRUE(f.song.engine.PostKey(word[0] == '+', std::stoul(word.substr(1))));
        ++events;
    }
    f.song.Ticks(events / Engine::KeysPerTick + 1);
}

SequencerRow* Seq(ViewFixture& f) {
    return f.view.Current()->GetSequencer();
}
Line* LineAt(ViewFixture& f, int i) {
    return f.view.Current()->GetBank()->GetLine(i);
}
void Highlight(ViewFixture& f) {
    Play(f, "+41 -41");
}
void HighlightFirstLine(ViewFixture& f) {
    f.view.rowList.Highlight(2);
}

class KeySequences : public testing::TestWithParam<KeyCase> {};

TEST_P(KeySequences, Act) {
    ViewFixture f;
    f.AddLines(2);
    for (int p = 0; p < 4; ++p)
        SongFixture::Store(*f.view.Current(), p, {{0, 0}, {128, 1}});
    if (GetParam().setup)
        GetParam().setup(f);
    f.host.asks.clear();
    Play(f, GetParam().keys);
    GetParam().check(f);
}

const KeyCase keyCases[] = {
    {"ShiftDigitStartsPatternNothingHighlighted", nullptr, "+42 +4 -4 -42",
     [](ViewFixture& f) {
         EXPECT_EQ(f.view.Current()->GetBank()->playing, 2);
         EXPECT_EQ(Seq(f)->stopped, 0);
     }},
    {"PlainDigitShowsPatternForEditing", nullptr, "+4 -4",
     [](ViewFixture& f) {
         EXPECT_EQ(f.view.Current()->GetBank()->GetCurrentPattern(), 2);
         EXPECT_EQ(Seq(f)->stopped, 1);
     }},
    {"ShiftDigitWithSequencerFocusesQueueSlot", Highlight, "+42 +4 -4 -42",
     [](ViewFixture& f) {
         EXPECT_EQ(Seq(f)->focus, 1);
         EXPECT_EQ(Seq(f)->focusSlot, 2);
         EXPECT_EQ(Seq(f)->stopped, 1);
     }},
    {"GraveHighlightsCurrentSequencer", nullptr, "+41 -41",
     [](ViewFixture& f) {
         EXPECT_EQ(f.song.engine.highlightMode, 2);
         EXPECT_EQ(f.song.engine.highlightedSequencers[0], Seq(f));
         EXPECT_EQ(f.view.focusKind, -2);
         EXPECT_EQ(f.view.focusSlot, 0);
     }},
    {"EnterRestartsHighlighted", Highlight, "+28 -28",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->stopped, 0); }},
    {"EnterDoesNothingWithoutHighlight", nullptr, "+28 -28",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->stopped, 1); }},
    {"ShiftEnterSkipsOnRelease", Highlight, "+42 +28",
     [](ViewFixture& f) {
         EXPECT_EQ(Seq(f)->stopped, 1);
         Seq(f)->queue[0] = 1;
         Play(f, "-28 -42");
         EXPECT_EQ(f.view.Current()->GetBank()->playing, 1);
     }},
    {"ShiftLetGoBeforeEnterSkipsNothing", Highlight, "+42 +28 -42 -28",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->stopped, 1); }},
    {"CueKeysOnCurrentSequencer", nullptr, "+64 -64",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->cueMode, 1); }},
    {"CueKeysOnHighlightedSequencers", Highlight, "+66 -66",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->cueMode, 3); }},
    {"NumpadDigitEntersDigitAndHoldsFilter", Highlight, "+80",
     [](ViewFixture& f) {
         EXPECT_EQ(f.view.dropFilterKey, 2);
         EXPECT_EQ(f.view.Current()->GetBank()->playing, 1);
         Play(f, "-80");
         EXPECT_EQ(f.view.dropFilterKey, 0);
     }},
    {"NumpadPlusAddsTen", Highlight, "+78 +79",
     [](ViewFixture& f) { EXPECT_EQ(Seq(f)->currentNumber, 11); }},
    {"VWhileBHeldThenReleaseB", nullptr, "+48 +47 -48",
     [](ViewFixture& f) { EXPECT_EQ(f.view.pasteMode, 1); }},
    {"ReleaseOfOtherDigitKeepsFilter", nullptr, "+79 +80 -79",
     [](ViewFixture& f) { EXPECT_EQ(f.view.dropFilterKey, 2); }},
    {"SpaceAloneTogglesOnPress", HighlightFirstLine, "+57 -57",
     [](ViewFixture& f) {
         EXPECT_EQ(LineAt(f, 0)->audible, 0);
         EXPECT_EQ(LineAt(f, 1)->audible, 1);
     }},
    {"ShiftSpaceMutesWhileHeld", HighlightFirstLine, "+42 +57",
     [](ViewFixture& f) {
         EXPECT_EQ(LineAt(f, 0)->audible, 0);
         Play(f, "-57");
         EXPECT_EQ(LineAt(f, 0)->audible, 1);
     }},
    {"ControlSpaceTogglesOnRelease", HighlightFirstLine, "+29 +57",
     [](ViewFixture& f) {
         EXPECT_EQ(LineAt(f, 0)->audible, 1);
         Play(f, "-57");
         EXPECT_EQ(LineAt(f, 0)->audible, 0);
     }},
    {"RightControlCountsAsControl", HighlightFirstLine, "+157 +57 -57",
     [](ViewFixture& f) { EXPECT_EQ(LineAt(f, 0)->audible, 0); }},
    {"ZoomKeys", nullptr, "+13 -13",
     [](ViewFixture& f) {
         EXPECT_EQ(f.view.zoomMode, 2);
         Play(f, "+43 -43");
         EXPECT_EQ(f.view.zoomMode, 3);
         Play(f, "+12 -12");
         EXPECT_EQ(f.view.zoomMode, 1);
     }},
    {"BarKeysAskInOrder", nullptr, "+31 -31 +20 -20 +23 -23 +31",
     [](ViewFixture& f) {
         const std::vector<FrameAsk> want{FrameAsk::ToggleViewBar, FrameAsk::TimersBar,
                                          FrameAsk::InstrumentBar, FrameAsk::ToggleViewBar};
         std::vector<FrameAsk> got;
         for (auto& a : f.host.asks)
             got.push_back(a.first);
         EXPECT_EQ(got, want);
     }},
    {"EscapeWithNothingHighlightedDoesNothing", nullptr, "+1 -1 +14 -14",
     [](ViewFixture& f) { EXPECT_TRUE(f.host.asks.empty()); }},
    {"ArrowsScrollMeasuresWithNothingHighlighted",
     [](ViewFixture& f) {
         SongFixture::Store(*f.view.Current(), 0, {}, 2048);
         f.view.Current()->GetBank()->LoadPattern(0);
         f.view.RefreshInstrument();
     },
     "+205 -205 +205",
     [](ViewFixture& f) {
         EXPECT_EQ(f.view.hScrollBar.position, 2);
         Play(f, "+203");
         EXPECT_EQ(f.view.hScrollBar.position, 1);
     }},
};

INSTANTIATE_TEST_SUITE_P(Map, KeySequences, testing::ValuesIn(keyCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(KeyMap, UpDownMoveBetweenInstrumentsAndCarryTheSequencerFocus) {
    ViewFixture f;
    f.view.NewInstrument();
    f.view.NewInstrument();
    f.Paint();
    Play(f, "+208 -208");
    EXPECT_EQ(f.view.currentInstrument, 2); // already the last
    Play(f, "+41 -41 +200 -200");
    EXPECT_EQ(f.view.currentInstrument, 1);
    EXPECT_EQ(f.song.engine.highlightCount, 1);
    EXPECT_EQ(f.song.engine.highlightedSequencers[0], Seq(f));
}

TEST(KeyMap, AtMostThreeEventsEachTick) {
    ViewFixture f;
    for (const char* k : {"+64", "+65", "+66", "+63"})
        f.song.engine.PostKey(k[0] == '+', std::stoul(k + 1));
    f.song.Ticks(1);
    EXPECT_EQ(Seq(f)->cueMode, 3);
    f.song.Ticks(1);
    EXPECT_EQ(Seq(f)->cueMode, 0);
}

// Enter while a shared session holds starts: the sequencer stays stopped
// until the tick the gate names, and starts in it; without a gate, at once.
TEST(KeyMap, EnterHeldByTheStartGateStartsInTheDueTick) {
    struct Gate {
        bool hold;
        int64_t ticks = 0, dueAt;
    };
    for (Gate gate : {Gate{true, 0, 5}, Gate{false, 0, 0}}) {
        ViewFixture f;
        f.AddLines(1);
        SongFixture::Store(*f.view.Current(), 0, {{0, 0}});
        Engine& engine = f.song.engine;
        engine.SetStartGate({[](void* g) { return static_cast<Gate*>(g)->hold; },
                             [](void* g) {
                                 Gate& s = *static_cast<Gate*>(g);
                                 return ++s.ticks >= s.dueAt;
                             },
                             &gate});
        engine.PostKey(1, KeyMap::Grave);
        engine.PostKey(0, KeyMap::Grave);
        engine.PostKey(1, KeyMap::Return);
        f.song.Ticks(1);
        const SequencerRow* sequencer = f.view.Current()->GetSequencer();
        EXPECT_EQ(sequencer->stopped, gate.hold ? 1 : 0) << "held " << gate.hold;
        f.song.Ticks(gate.dueAt);
        EXPECT_EQ(sequencer->stopped, 0) << "held " << gate.hold;
        EXPECT_EQ(gate.ticks, gate.hold ? gate.dueAt : 0);
    }
}

} // namespace
