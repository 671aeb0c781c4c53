#include "SongFixture.h"
#include "editing/Line.h"
#include "song/SampleRegistry.h"
#include "ui/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

// The volume each voice was last set to, from the commands in the queue.
std::map<int, int32_t> Volumes(MixerCommandQueue& queue) {
    std::map<int, int32_t> out;
    MixerCommand c;
    while (queue.Pop(c))
        if (c.kind == MixerCommand::SetVolume)
            out[c.voice] = c.value;
    return out;
}

int32_t Hundredths(double level) {
    return static_cast<int32_t>((1.0 - level) * -10000.0);
}

TEST(Instrument, LevelsChainReachesTheMixer) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(2);
    inst.AddControlGroup();
    inst.GetBank()->GetLine(1)->StepControlGroup(1);
    Volumes(f.queue);

    inst.SetLevel(0, 0.5);
    const double line = 0.93 * 0.93;
    EXPECT_EQ(Volumes(f.queue), (std::map<int, int32_t>{{0, Hundredths(line * 0.5 * 0.93)},
                                                        {1, Hundredths(line * 0.5 * 0.93)}}));
    inst.SetLevel(2, 0.4); // group 1: the second line only
    EXPECT_EQ(Volumes(f.queue), (std::map<int, int32_t>{{1, Hundredths(line * 0.5 * 0.4)}}));
    inst.Mute();
    EXPECT_EQ(Volumes(f.queue), (std::map<int, int32_t>{{0, -10000}, {1, -10000}}));
    inst.Unmute();
    EXPECT_EQ(Volumes(f.queue), (std::map<int, int32_t>{{0, Hundredths(line * 0.5 * 0.93)},
                                                        {1, Hundredths(line * 0.5 * 0.4)}}));
    inst.SetLevel(31, 0.1);
    EXPECT_TRUE(Volumes(f.queue).empty());
}

TEST(Instrument, AttachViewMutesAndResetsGroupLevels) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    inst.SetLevel(1, 0.2);
    inst.AttachView(&f.view);
    EXPECT_EQ(inst.on, 0);
    EXPECT_EQ(inst.GetBank()->GetLine(0)->groupLevel, 0.93);
    EXPECT_EQ(inst.GetBank()->GetLine(0)->instrumentLevel, 0.0);
}

TEST(Instrument, ControlGroupsStayBetweenOneAndThirty) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    for (int i = 0; i < 40; ++i)
        inst.AddControlGroup();
    EXPECT_EQ(inst.GetControlCount(), 30);
    EXPECT_EQ(inst.groupLevels[29], 0.93);
    inst.GetBank()->GetLine(0)->StepControlGroup(1);
    EXPECT_EQ(inst.GetBank()->GetLine(0)->controlGroup, 1);
    inst.GetBank()->GetLine(0)->controlGroup = 29;
    inst.RemoveControlGroup();
    EXPECT_EQ(inst.GetControlCount(), 30); // a line is in the last group
    inst.GetBank()->GetLine(0)->controlGroup = 0;
    for (int i = 0; i < 40; ++i)
        inst.RemoveControlGroup();
    EXPECT_EQ(inst.GetControlCount(), 1);
}

TEST(Instrument, SamplesMakeLinesOrJoinThemAndAFourthIsStillHeard) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(1);
    PatternBank& bank = *inst.GetBank();
    for (int i = 0; i < 3; ++i)
        f.LoadSample(inst, 0);
    EXPECT_EQ(bank.GetLineCount(), 1);
    EXPECT_EQ(bank.GetLine(0)->sampleCount, 3);
    EXPECT_EQ(inst.registry->count, 4);
    SongFixture::Store(inst, 0, {{0, 0}});
    inst.GetSequencer()->Restart();
    f.Ticks(1);
    EXPECT_EQ(f.plays.size(), 4u);
}

TEST(Instrument, FailedSampleAddsNothing) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(0);
    SoundBuffer* b = inst.NewBufferForLine(0);
    b->SetFailed();
    EXPECT_EQ(inst.loadTarget, 0);
    EXPECT_EQ(inst.registry->count, 0);
    delete b;
}

TEST(Instrument, DeletingALineRenumbersTheRegistry) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(20);
    inst.GetBank()->GetLine(4)->Remove();
    ASSERT_EQ(inst.registry->count, 19);
    for (int32_t i = 0; i < 19; ++i)
        EXPECT_EQ(inst.registry->entries[i].line, i);
    EXPECT_EQ(inst.registry->entries[4].name, "s5");
}

TEST(Instrument, NotesOfLinesWithoutSamplesAreSilentNotFatal) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(0);
    SongFixture::Store(inst, 0, {{0, 0}, {10, 40}, {20, 255}});
    inst.GetSequencer()->Restart();
    f.Ticks(800);
    EXPECT_TRUE(f.plays.empty());
}

TEST(Instrument, RowsComeSequencerFirstThenLines) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(2);
    RowSlot slot;
    std::vector<int32_t> types;
    for (bool first = true; inst.NextRow(slot, first); first = false)
        types.push_back(slot.type);
    EXPECT_EQ(types, (std::vector<int32_t>{4, 5, 3, 3}));
}

TEST(Instrument, SequencerBoxDrawsItsRectanglesAndTexts) {
    SongFixture f;
    Instrument& inst = f.AddInstrument(0);
    SequencerRow& s = *inst.GetSequencer();
    s.queue[0] = 2;
    s.queue[10] = 5; // beyond the tenth slot: kept, not shown
    s.program[0] = 15;
    s.cueFlag = 1;
    s.cueMode = 2;
    s.focus = 1;
    s.focusSlot = 0;
    RecordingCanvas canvas;
    s.Place(Rect{0, 0, 600, 24}, &canvas);
    const auto& r = canvas.records;
    using K = CanvasRecord::Kind;
    ASSERT_GE(r.size(), 9u);
    EXPECT_EQ(r[0], (CanvasRecord{K::Fill, {0, 0, 600, 24}, {}, {}, White}));
    EXPECT_EQ(r[1], (CanvasRecord{K::Frame, {0, 0, 600, 24}, {}, Black}));
    EXPECT_EQ(r[2].rect, (Rect{2, 2, 52, 22}));
    EXPECT_EQ(r[3].rect, (Rect{84, 2, 404, 22}));
    EXPECT_EQ(r[4].rect, (Rect{424, 2, 584, 22}));
    EXPECT_EQ(r[5].text, "1");
    EXPECT_EQ(r[5].rect, (Rect{3, 2, 26, 22}));
    EXPECT_EQ(r[6].text, "<---");
    EXPECT_EQ(r[6].font, "Times");
    EXPECT_EQ(r[6].pointSize10, 80);
    EXPECT_EQ(r[6].rect, (Rect{53, 2, 83, 22}));
    EXPECT_EQ(r[6].flags, TextSingleLine | TextCenter | TextVCenter);
    EXPECT_EQ(r[7].text, "CUE");
    EXPECT_EQ(r[7].font, "Small Fonts");
    EXPECT_EQ(r[7].flags, TextSingleLine | TextBottom | TextCenter);
    // Queue slot 1: frame, grey focus, label, entry.
    EXPECT_EQ(r[8], (CanvasRecord{K::Frame, {84, 2, 104, 22}, {}, Black}));
    EXPECT_EQ(r[9], (CanvasRecord{K::Fill, {84, 2, 104, 22}, {}, {}, Gray}));
    EXPECT_EQ(r[10].text, "1");
    EXPECT_EQ(r[10].rect, (Rect{85, 3, 104, 22}));
    EXPECT_EQ(r[11].text, "3");
    EXPECT_EQ(r[11].rect, (Rect{84, 3, 104, 22}));
    std::vector<std::string> texts;
    for (const CanvasRecord& c : r)
        if (c.kind == K::Text)
            texts.push_back(c.text);
    // 4 fixed texts and labels 1-10, entry "3"; program labels P1-P8, entry "16".
    EXPECT_EQ(texts.size(), 3u + 10u + 1u + 8u + 1u);
    EXPECT_EQ(texts.back(), "P8");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "16"), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "6"), 1); // label 6 only
    canvas.records.clear();
    s.SetCueMode(0);
    EXPECT_EQ(canvas.records, (std::vector<CanvasRecord>{{K::Repaint, {0, 0, 600, 24}}}));
    s.Unplace();
    s.SetCueMode(1);
    EXPECT_EQ(canvas.records.size(), 1u);
}

} // namespace
