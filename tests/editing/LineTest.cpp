#include "editing/Line.h"
#include "engine/MixerCommand.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/SampleRegistry.h"
#include "ui/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

// One command as it reached the mixer.
struct Call {
    uint8_t kind;
    int32_t voice;
    int32_t value;
    bool operator==(const Call&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Call& s) {
    return os << "{kind " << int(s.kind) << ", voice " << s.voice << ", " << s.value << "}";
}
using Calls = std::vector<Call>;
constexpr uint8_t Vol = MixerCommand::SetVolume;
constexpr uint8_t Freq = MixerCommand::SetFrequency;
constexpr uint8_t Pan = MixerCommand::SetPan;

Calls Drain(MixerCommandQueue& queue) {
    Calls out;
    MixerCommand c;
    while (queue.Pop(c))
        out.push_back({c.kind, c.voice, c.value});
    return out;
}

// A line on its own (no bank) whose samples are buffers bound to voices 0, 1,
// 2... of one command queue, as the sound system leaves them after a load.
class LineTest : public ::testing::Test {
  protected:
    SoundBuffer* Load(const std::string& name, int32_t lengthMs = 1000, int32_t rate = 44100) {
        buffers.push_back(std::make_unique<SoundBuffer>(nullptr));
        SoundBuffer* b = buffers.back().get();
        b->SetLoaded(static_cast<int32_t>(buffers.size()) - 1, &queue, name, "/s/" + name + ".wav",
                     lengthMs, rate, rate * 2);
        line.AddSample(name, b->GetPath(), b, line.index);
        return b;
    }
    // Three samples at different rates, 300, 1200 and 800 ms long.
    void LoadThree() {
        Load("a", 300, 44100);
        Load("b", 1200, 22050);
        Load("c", 800, 48000);
        Drain(queue);
    }
    Calls Sent() { return Drain(queue); }

    MixerCommandQueue queue;
    std::vector<std::unique_ptr<SoundBuffer>> buffers;
    Line line{nullptr, 0, 4};
};

struct LevelCase {
    const char* what;
    double instrument, group, volume, sampleVolume;
    uint8_t audible, enabled;
    double level;
    int32_t sent; // 1: not sent
};

class LevelChainTest : public LineTest, public ::testing::WithParamInterface<LevelCase> {};

TEST_P(LevelChainTest, CombinedLevelReachesTheMixer) {
    const LevelCase& c = GetParam();
    SCOPED_TRACE(c.what);
    SoundBuffer* b = Load("a");
    Sent();
    line.instrumentLevel = c.instrument;
    line.groupLevel = c.group;
    line.volume = c.volume;
    line.sampleVolume[2] = c.sampleVolume;
    line.audible = c.audible;
    line.sampleEnabled[2] = c.enabled;
    line.ForceVolumes();
    EXPECT_DOUBLE_EQ(line.appliedLevel[2], c.level);
    if (c.sent == 1) {
        EXPECT_EQ(Sent(), Calls{});
        EXPECT_DOUBLE_EQ(b->volumeFraction, 0.93 * 0.93);
    } else {
        EXPECT_EQ(Sent(), (Calls{{Vol, 0, c.sent}}));
        EXPECT_DOUBLE_EQ(b->volumeFraction, c.level);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, LevelChainTest,
    ::testing::Values(LevelCase{"line and sample volume", 1, 1, 0.93, 0.93, 1, 1, 0.8649, -1350},
                      LevelCase{"instrument level", 0.5, 1, 0.93, 0.93, 1, 1, 0.43245, -5675},
                      LevelCase{"group level", 1, 0.8, 0.93, 0.93, 1, 1, 0.69192, -3080},
                      LevelCase{"full", 1, 1, 1, 1, 1, 1, 1.0, 0},
                      LevelCase{"muted instrument", 0, 1, 0.93, 0.93, 1, 1, 0.0, -10000},
                      LevelCase{"muted line", 1, 1, 0.93, 0.93, 0, 1, 0.0, -10000},
                      LevelCase{"sample off", 1, 1, 0.93, 0.93, 1, 0, 0.0, -10000},
                      LevelCase{"above 1 kept, not sent", 1, 1, 1.7, 0.93, 1, 1, 1.581, 1}));

// Only changed levels are sent, except by ForceVolumes; a mute sends silence
// once and the unmute the old level.
TEST_F(LineTest, LevelsAreSentOnChangeOnly) {
    SoundBuffer* b = Load("a");
    Sent();
    line.ApplyVolumes();
    EXPECT_EQ(Sent(), Calls{});
    line.ForceVolumes();
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -1350}}));
    line.SetOuterLevel(1, 0.93);
    line.SetOuterLevel(1, 0.93);
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -1956}}));
    line.SetOuterLevel(1, 1);
    Sent();
    line.Mute();
    line.Mute();
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -10000}}));
    EXPECT_EQ(b->volumeFraction, 0.0);
    line.Unmute();
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -1350}}));
}

struct ParameterCase {
    const char* what;
    double pitch, pan, toeIn;
    int32_t lengthMs;
    Calls sent;
    double linePan;
    int16_t lineToeIn;
};

const Calls Rest{{Freq, 0, 44100}, {Pan, 0, 0}};

class SoundParameterTest : public LineTest, public ::testing::WithParamInterface<ParameterCase> {};

// The buffer starts with linePan 0.5 and lineToeIn 77 to show what is not stored.
TEST_P(SoundParameterTest, ReachTheBuffer) {
    const ParameterCase& c = GetParam();
    SCOPED_TRACE(c.what);
    SoundBuffer* b = Load("a", c.lengthMs);
    b->linePan = 0.5;
    b->lineToeIn = 77;
    Sent();
    line.pitch = c.pitch;
    line.pan = c.pan;
    line.toeIn = c.toeIn;
    line.ApplySoundParameters();
    EXPECT_EQ(Sent(), c.sent);
    EXPECT_EQ(b->linePan, c.linePan);
    EXPECT_EQ(b->lineToeIn, c.lineToeIn);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SoundParameterTest,
    ::testing::Values(
        ParameterCase{"at rest", 0, 0, 0, 1000, Rest, 0, 0},
        ParameterCase{"pitch up", 0.5, 0, 0, 1000, {{Freq, 0, 66150}, {Pan, 0, 0}}, 0, 0},
        ParameterCase{"pitch -1 is rate 0", -1, 0, 0, 1000, {{Freq, 0, 0}, {Pan, 0, 0}}, 0, 0},
        ParameterCase{"pitch above 1", 1.2, 0, 0, 1000, {{Pan, 0, 0}}, 0, 0},
        ParameterCase{"pan left", 0, -0.25, 0, 1000, {{Freq, 0, 44100}, {Pan, 0, -2500}}, -0.25, 0},
        ParameterCase{"pan out of range", 0, 1.5, 0, 1000, {{Freq, 0, 44100}}, 0.5, 0},
        ParameterCase{"toe-in", 0, 0, 0.05, 1000, Rest, 0, 500},
        ParameterCase{"toe-in past the end", 0, 0, 0.05, 300, Rest, 0, 300},
        ParameterCase{"toe-in above 1", 0, 0, 1.2, 20000, Rest, 0, 77},
        ParameterCase{"toe-in below 0", 0, 0, -0.01, 1000, Rest, 0, 77},
        ParameterCase{"toe-in huge", 0, 0, 1e12, 1000, Rest, 0, 77}));

struct SetValueCase {
    const char* what;
    int32_t code;
    double start, value;
    int32_t step, times;
    double expected;
};

class SetValueTest : public LineTest, public ::testing::WithParamInterface<SetValueCase> {};

TEST_P(SetValueTest, Forms) {
    const SetValueCase& c = GetParam();
    SCOPED_TRACE(c.what);
    line.SetValue(c.code, c.start, 0);
    for (int i = 0; i < c.times; ++i)
        line.SetValue(c.code, c.value, c.step);
    EXPECT_DOUBLE_EQ(line.GetValue(c.code), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SetValueTest,
    ::testing::Values(SetValueCase{"pitch -1 set directly", 2, 0, -1.0, 0, 1, -0.975},
                      SetValueCase{"no range test when set", 2, 0, -1.5, 0, 1, -1.5},
                      SetValueCase{"volume kept above 1", 1, 0.93, 1.7, 0, 1, 1.7},
                      SetValueCase{"40 pitch steps down", 2, -0.8, 0, -1, 40, -1.0},
                      SetValueCase{"a step does not read value", 1, 0.5, 99, 1, 1, 0.505},
                      SetValueCase{"toe-in steps by 0.001", 5, 0, 0, 1, 3, 0.003},
                      SetValueCase{"toe-in stops at 0", 5, 0.0005, 0, -1, 1, 0.0},
                      SetValueCase{"volume stops at 1", 1, 0.93, 0, 1, 20, 1.0},
                      SetValueCase{"a step forces into range", 1, 1.7, 0, -1, 1, 1.0},
                      SetValueCase{"pan stops at -1", 3, -0.998, 0, -1, 1, -1.0},
                      SetValueCase{"length stops at 0", 4, 0.002, 0, -1, 1, 0.0},
                      SetValueCase{"first sample volume", 6, 0.93, 0, 1, 1, 0.935},
                      SetValueCase{"unknown step", 1, 0.5, 0.2, 3, 1, 0.5},
                      SetValueCase{"unknown code", 9, 0.5, 0.5, 0, 1, -2.0}));

// Each code goes its own way to the mixer: levels to SetVolume of the slot
// concerned, the rest to the tuning of every sample.
struct PathCase {
    int32_t code, step;
    Calls sent;
};

class ValuePathTest : public LineTest, public ::testing::WithParamInterface<PathCase> {};

TEST_P(ValuePathTest, ReachesTheMixer) {
    LoadThree();
    line.SetValue(Line::SecondSampleVolume, 0.5, 0);
    line.SetValue(Line::ThirdSampleVolume, 0.5, 0);
    Sent();
    line.SetValue(GetParam().code, 0, GetParam().step);
    EXPECT_EQ(Sent(), GetParam().sent);
}

// What ApplySoundParameters sends to the three samples of LoadThree.
Calls Tuning(int32_t pan, int32_t f0 = 44100, int32_t f1 = 22050, int32_t f2 = 48000) {
    return {{Freq, 0, f0}, {Pan, 0, pan}, {Freq, 1, f1},
            {Pan, 1, pan}, {Freq, 2, f2}, {Pan, 2, pan}};
}

INSTANTIATE_TEST_SUITE_P(
    Table, ValuePathTest,
    ::testing::Values(PathCase{1, 1, {{Vol, 0, -1304}, {Vol, 1, -5325}, {Vol, 2, -5325}}},
                      PathCase{2, 1, Tuning(0, 44320, 22160, 48240)}, PathCase{3, -1, Tuning(-50)},
                      PathCase{4, 1, Tuning(0)}, PathCase{5, 1, Tuning(0)},
                      PathCase{6, 1, {{Vol, 0, -1304}}}, PathCase{7, 1, {{Vol, 1, -5303}}},
                      PathCase{8, -1, {{Vol, 2, -5396}}},
                      PathCase{1, -2, {{Vol, 0, -10000}, {Vol, 1, -10000}, {Vol, 2, -10000}}},
                      PathCase{1, 2, {}}, PathCase{6, -2, {{Vol, 0, -10000}}},
                      PathCase{8, -2, {{Vol, 2, -10000}}}, PathCase{2, -2, {}}));

TEST_F(LineTest, FirstSampleNamesTheLineLaterOnesStartSilent) {
    line.SetValue(Line::PitchCode, 0.5, 0);
    Load("kick");
    EXPECT_EQ(std::string(line.GetName()), "kick");
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -1350}}));
    Load("snare");
    EXPECT_EQ(Sent(), (Calls{{Vol, 0, -1350}, {Vol, 1, -10000}}));
    Load("hat", 1200);
    EXPECT_EQ(line.GetValue(Line::ThirdSampleVolume), 0.0);
    EXPECT_EQ(line.SamplePath(1), "/s/snare.wav");
    Sent();
    Load("d", 5000); // a fourth changes nothing
    EXPECT_EQ(line.sampleCount, 3);
    EXPECT_EQ(line.SampleName(2), "hat");
    EXPECT_EQ(line.SampleName(3), "");
    EXPECT_EQ(line.LongestSampleMs(), 1200);
    EXPECT_EQ(Sent(), Calls{});
    EXPECT_EQ(std::string(line.GetName()), "kick");
}

TEST_F(LineTest, RepaintsOnlyWhenShownStateChanges) {
    RecordingCanvas canvas;
    line.Place(Rect{0, 10, 500, 40}, &canvas);
    canvas.records.clear();
    line.SetWindow(4, 2);
    line.Mute();
    line.Mute();
    line.SetPoints(new PlayPointList(256));
    EXPECT_EQ(canvas.records.size(), 2u);
    EXPECT_EQ(line.points->bound, 256);
}

// Lines of a real instrument, whose samples are loaded as the sound system does.
class BankLineTest : public ::testing::Test {
  protected:
    // Into a new line (line -1) or through an existing line's NewSampleBuffer.
    void Load(int32_t line, const std::string& name) {
        SoundBuffer* b = line < 0 ? inst.NewBufferForNewLine() : Get(line)->NewSampleBuffer();
        b->SetLoaded(nextVoice++, &queue, name, "/s/" + name + ".wav", 1000, 44100, 88200);
        b->MarkReady();
    }
    Line* Get(int32_t line) { return inst.GetBank()->GetLine(line); }
    std::vector<int32_t> Released() {
        std::vector<int32_t> voices;
        for (const Call& c : Drain(queue))
            if (c.kind == MixerCommand::Release)
                voices.push_back(c.voice);
        return voices;
    }

    MixerCommandQueue queue;
    Instrument inst;
    int32_t nextVoice = 0;
};

struct RemoveCase {
    int32_t slot;
    std::vector<std::string> names;
    double firstVolume, secondVolume;
    std::vector<int32_t> released;
};

class RemoveSampleTest : public BankLineTest, public ::testing::WithParamInterface<RemoveCase> {};

TEST_P(RemoveSampleTest, LaterSlotsMoveDownWithTheirVolumes) {
    const RemoveCase& c = GetParam();
    Load(-1, "a");
    Load(0, "b");
    Load(0, "c");
    Line* line = Get(0);
    line->SetValue(Line::FirstSampleVolume, 0.9, 0);
    line->SetValue(Line::SecondSampleVolume, 0.5, 0);
    line->SetValue(Line::ThirdSampleVolume, 0.25, 0);
    line->SetValue(Line::SecondSampleVolume, 0, -2);
    Released();
    line->RemoveSample(c.slot);
    EXPECT_EQ(line->sampleCount, static_cast<int8_t>(c.names.size()));
    for (int32_t i = 0; i < Line::MaxSamples; ++i)
        EXPECT_EQ(line->SampleName(i), i < int32_t(c.names.size()) ? c.names[i] : "");
    EXPECT_EQ(line->GetValue(Line::FirstSampleVolume), c.firstVolume);
    EXPECT_EQ(line->GetValue(Line::SecondSampleVolume), c.secondVolume);
    EXPECT_EQ(line->sampleEnabled[1], 0);
    EXPECT_EQ(Released(), c.released);
    ASSERT_EQ(inst.registry->count, line->sampleCount);
    for (int32_t i = 0; i < line->sampleCount; ++i)
        EXPECT_EQ(inst.registry->entries[i].buffer, line->samples[i].buffer);
    EXPECT_EQ(std::string(line->GetName()), "a");
}

INSTANTIATE_TEST_SUITE_P(Table, RemoveSampleTest,
                         ::testing::Values(RemoveCase{1, {"b", "c"}, 0.5, 0.25, {0}},
                                           RemoveCase{2, {"a", "c"}, 0.9, 0.25, {1}},
                                           RemoveCase{3, {"a", "b"}, 0.9, 0.5, {2}},
                                           RemoveCase{0, {"a", "b", "c"}, 0.9, 0.5, {}},
                                           RemoveCase{4, {"a", "b", "c"}, 0.9, 0.5, {}}));

// A line's NewSampleBuffer fills that line; Remove takes it out of its bank.
TEST_F(BankLineTest, NewSampleBufferAndRemove) {
    Load(-1, "a");
    Load(-1, "b");
    Load(1, "c");
    EXPECT_EQ(Get(0)->sampleCount, 1);
    EXPECT_EQ(Get(1)->SampleName(1), "c");
    Released();
    Get(0)->Remove();
    ASSERT_EQ(inst.GetBank()->GetLineCount(), 1);
    EXPECT_EQ(std::string(Get(0)->GetName()), "b");
    EXPECT_EQ(Get(0)->index, 0);
    EXPECT_EQ(Released(), std::vector<int32_t>{0});
}

struct GroupCase {
    int32_t groups, start, direction, expected;
};

class ControlGroupTest : public BankLineTest, public ::testing::WithParamInterface<GroupCase> {};

TEST_P(ControlGroupTest, StepsWithinTheInstrumentsGroups) {
    const GroupCase& c = GetParam();
    for (int32_t i = 1; i < c.groups; ++i)
        inst.AddControlGroup();
    Load(-1, "a");
    Get(0)->controlGroup = c.start;
    Get(0)->groupLevel = 0.4;
    Get(0)->StepControlGroup(c.direction);
    EXPECT_EQ(Get(0)->controlGroup, c.expected);
    EXPECT_EQ(Get(0)->groupLevel, 0.4);
}

INSTANTIATE_TEST_SUITE_P(Table, ControlGroupTest,
                         ::testing::Values(GroupCase{1, 0, 1, 0}, GroupCase{3, 0, 1, 1},
                                           GroupCase{3, 2, 1, 2}, GroupCase{3, 2, -1, 1}));

} // namespace
