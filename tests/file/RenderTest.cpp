// The headless render: every note of the rendered patterns starts on the
// frame its tick gives, the demo loads on a fresh machine, and the command
// line answers with its exit codes.
#include "FileTestKit.h"

#include "engine/AudioCallback.h"
#include "engine/RenderCommand.h"
#include "engine/RenderOptions.h"
#include "engine/Schedule.h"
#include "song/PlayPointList.h"
#include "song/SamplePath.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>
#include <sys/wait.h>

namespace {

// A 32-bit float stereo WAV as the render writes it.
struct RenderedWave {
    int format = 0, channels = 0, rate = 0, bits = 0;
    uint32_t factFrames = 0;
    std::vector<float> samples;

    int64_t Frames() const { return static_cast<int64_t>(samples.size()) / 2; }
};

RenderedWave ReadRendered(const std::string& path) {
    const std::vector<uint8_t> b = ReadBytes(path);
    RenderedWave w;
    for (size_t at = 12; at + 8 <= b.size();) {
        const std::string id(b.begin() + at, b.begin() + at + 4);
        const uint32_t size = GetLE(&b[at + 4], 4);
        const uint8_t* body = &b[at + 8];
        if (id == "fmt ") {
            w.format = static_cast<int>(GetLE(body, 2));
            w.channels = static_cast<int>(GetLE(body + 2, 2));
            w.rate = static_cast<int>(GetLE(body + 4, 4));
            w.bits = static_cast<int>(GetLE(body + 14, 2));
        } else if (id == "fact") {
            w.factFrames = GetLE(body, 4);
        } else if (id == "data") {
            w.samples.resize(size / 4);
            std::memcpy(w.samples.data(), body, size);
        }
        at += 8 + size;
    }
    return w;
}

std::set<int64_t> SoundingFrames(const RenderedWave& w) {
    std::set<int64_t> frames;
    for (int64_t f = 0; f < w.Frames(); ++f)
        if (w.samples[2 * f] != 0.0f || w.samples[2 * f + 1] != 0.0f)
            frames.insert(f);
    return frames;
}

// Where the pattern's notes start in frames, pass after pass, as the
// compiled ticks give them.
std::set<int64_t> ExpectedOnsets(const PlayPointList& pattern, const RenderOptions& o,
                                 int64_t frames) {
    const double stepMs = 60000.0 / o.bpm;
    const int32_t length = TimeUnits::CompiledLength(pattern.bound, stepMs);
    std::set<int64_t> onsets;
    for (int64_t pass = 0; AudioCallback::TickFrame(pass * length, o.rate) < frames; ++pass)
        for (int32_t k = 0; k < pattern.count; ++k) {
            const int64_t tick =
                pass * length + TimeUnits::CompiledTick(pattern.items[k].time, stepMs);
            const int64_t frame = AudioCallback::TickFrame(tick, o.rate);
            if (frame < frames)
                onsets.insert(frame);
        }
    return onsets;
}

const char* const KitFiles[] = {"kick.wav", "snare.wav", "closed-hat.wav", "open-hat.wav",
                                "clap.wav", "tom.wav",   "rim.wav",        "cowbell.wav"};

class Render : public FileTest {
  protected:
    // The demo beside click waves of the kit's names, which it then plays.
    std::string DemoWithClicks(int32_t rate) {
        fs::create_directories(Path("demo"));
        fs::copy_file(SourcePath("resources/demo.nst"), Path("demo/demo.nst"));
        for (int k = 0; k < 8; ++k)
            Wave("demo/" + std::string(KitFiles[k]), rate, (k + 1) / 10.0);
        return Path("demo/demo.nst");
    }

    // An instrument of three click lines: pattern 1 with notes close
    // together, on one tick and at the last unit; pattern 2 of one measure.
    std::string OwnInstrument(int32_t rate) {
        InstrumentPtr i = NewInstrument("Clicks");
        for (int l = 0; l < 3; ++l)
            LoadWave(*i, Wave("click" + std::to_string(l) + ".wav", rate, 0.2 * (l + 1)));
        PlayPointList one(512);
        for (auto [time, line] : {std::pair{0, 0},
                                  {0, 1},
                                  {1, 2},
                                  {2, 0},
                                  {63, 1},
                                  {64, 2},
                                  {100, 0},
                                  {255, 1},
                                  {256, 0},
                                  {511, 2}})
            one.InsertOrReplace(Note(time, line));
        i->GetBank()->SetPattern(0, one);
        PlayPointList two(256);
        for (auto [time, line] : {std::pair{16, 0}, {32, 1}, {48, 2}, {200, 0}})
            two.InsertOrReplace(Note(time, line));
        i->GetBank()->SetPattern(1, two);
        SaveInstrumentAs(*i, Path("clicks.nst"));
        return Path("clicks.nst");
    }
};

// ---- Each note on its tick's frame -----------------------------------------

struct OnsetCase {
    const char* what;
    bool demo;
    int32_t pattern;
    double bpm;
    int32_t rate;
    double seconds;
};

class Onsets : public Render, public ::testing::WithParamInterface<OnsetCase> {};

TEST_P(Onsets, EveryNoteStartsOnTheFrameOfItsTick) {
    const OnsetCase c = GetParam();
    RenderOptions o;
    o.files = {c.demo ? DemoWithClicks(c.rate) : OwnInstrument(c.rate)};
    o.output = Path("out.wav");
    o.pattern = c.pattern;
    o.bpm = c.bpm;
    o.rate = c.rate;
    o.seconds = c.seconds;
    std::string error;
    ASSERT_EQ(::Render(o, error), 0) << error;

    const RenderedWave w = ReadRendered(o.output);
    ASSERT_EQ(w.format, 3);
    ASSERT_EQ(w.channels, 2);
    ASSERT_EQ(w.rate, c.rate);
    ASSERT_EQ(w.bits, 32);
    EXPECT_EQ(w.factFrames, w.Frames());
    InstrumentPtr read = Own(LoadInstrument(o.files[0], nullptr));
    const PlayPointList pattern = read->GetBank()->GetPattern(c.pattern - 1);
    const int64_t frames =
        c.seconds > 0 ? std::llround(c.seconds * c.rate)
                      : AudioCallback::TickFrame(
                            TimeUnits::CompiledLength(pattern.bound, 60000.0 / c.bpm), c.rate);
    ASSERT_EQ(w.Frames(), frames);
    const std::set<int64_t> expected = ExpectedOnsets(pattern, o, frames);
    ASSERT_GT(expected.size(), 3u);
    EXPECT_EQ(SoundingFrames(w), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Renders, Onsets,
    ::testing::Values(OnsetCase{"demo, one pass", true, 1, 120.0, 48000, 0.0},
                      OnsetCase{"demo fill, three passes", true, 3, 120.0, 48000, 6.0},
                      OnsetCase{"own, one pass", false, 1, 120.0, 48000, 0.0},
                      OnsetCase{"own, slower, passes", false, 1, 97.0, 48000, 9.0},
                      OnsetCase{"own second pattern, faster", false, 2, 200.0, 48000, 3.0},
                      OnsetCase{"own at 44.1 kHz", false, 1, 120.0, 44100, 5.0}),
    [](const auto& info) { return CaseName(info.param.what); });

// ---- The demo on a fresh machine ---------------------------------------------

TEST_F(Render, TheDemoFindsTheBundledKitAndSounds) {
    InstrumentPtr demo = Own(LoadInstrument(SourcePath("resources/demo.nst"), &sounds));
    PatternBank* bank = demo->GetBank();
    ASSERT_EQ(bank->GetLineCount(), 8);
    for (int32_t l = 0; l < 8; ++l) {
        EXPECT_EQ(bank->GetLine(l)->sampleCount, 1) << KitFiles[l];
        EXPECT_EQ(SampleFileName(bank->GetLine(l)->SamplePath(0)), KitFiles[l]);
    }

    RenderOptions o;
    o.files = {SourcePath("resources/demo.nst")};
    o.output = Path("demo.wav");
    std::string error;
    ASSERT_EQ(::Render(o, error), 0) << error;
    const RenderedWave w = ReadRendered(o.output);
    EXPECT_EQ(w.Frames(), 192000) << "two measures at 120 BPM";
    float peak = 0.0f;
    for (float s : w.samples)
        peak = std::max(peak, std::fabs(s));
    EXPECT_GT(peak, 0.01f);
    EXPECT_LT(peak, 1.0f);
}

// ---- The level of the output -------------------------------------------------

float Peak(const RenderedWave& w) {
    float peak = 0.0f;
    for (float s : w.samples)
        peak = std::max(peak, std::fabs(s));
    return peak;
}

struct LevelCase {
    const char* what;
    double gainDb;
    bool normalize;
};

class Level : public Render, public ::testing::WithParamInterface<LevelCase> {};

// The gain scales the plain render's peak; --normalize puts the peak at
// -1 dBFS, and a gain then moves it from there. The peak Render reports is
// the written file's.
TEST_P(Level, ScalesThePeakOfTheWholeOutput) {
    const LevelCase c = GetParam();
    RenderOptions o;
    o.files = {DemoWithClicks(48000)};
    o.pattern = 3;
    o.seconds = 6.0;
    o.output = Path("plain.wav");
    std::string error;
    ASSERT_EQ(::Render(o, error), 0) << error;
    const float plain = Peak(ReadRendered(o.output));
    ASSERT_GT(plain, 0.0f);

    o.gainDb = c.gainDb;
    o.normalize = c.normalize;
    o.output = Path("out.wav");
    float reported = 0.0f;
    ASSERT_EQ(::Render(o, error, &reported), 0) << error;
    const float peak = Peak(ReadRendered(o.output));
    EXPECT_EQ(reported, peak);
    const double expected =
        (c.normalize ? std::pow(10.0, -1.0 / 20.0) : plain) * std::pow(10.0, c.gainDb / 20.0);
    EXPECT_NEAR(peak / expected, 1.0, 1e-5);
}

INSTANTIATE_TEST_SUITE_P(Gains, Level,
                         ::testing::Values(LevelCase{"gain -6 dB", -6.0, false},
                                           LevelCase{"gain +12 dB", 12.0, false},
                                           LevelCase{"normalized", 0.0, true},
                                           LevelCase{"normalized, then -5 dB", -5.0, true}),
                         [](const auto& info) { return CaseName(info.param.what); });

// A gain past full scale writes the file all the same and says on standard
// error how far its peak went.
TEST_F(Render, AGainThatClipsIsWrittenAndReported) {
    const std::string line = std::string("'") + OX_PROGRAM + "' --render '" + Path("out.wav") +
                             "' --gain 40 '" + SourcePath("resources/demo.nst") + "' 2>'" +
                             Path("stderr") + "'";
    const int status = std::system(line.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    const float peak = Peak(ReadRendered(Path("out.wav")));
    ASSERT_GT(peak, 1.0f);
    const std::vector<uint8_t> err = ReadBytes(Path("stderr"));
    const std::string said(err.begin(), err.end());
    char db[32];
    std::snprintf(db, sizeof db, "%+.2f dBFS", 20.0 * std::log10(peak));
    EXPECT_NE(said.find("clips"), std::string::npos) << said;
    EXPECT_NE(said.find(db), std::string::npos) << said << " lacks " << db;
}

// ---- The command line of the program itself ----------------------------------

struct CommandCase {
    const char* what;
    std::vector<std::string> args; // "@" stands for the test folder, "#" for the fixtures
    int code;
    const char* says; // part of standard output (code 0) or of the one error line
    bool writes;
};

class Command : public Render, public ::testing::WithParamInterface<CommandCase> {
  protected:
    std::string Expand(std::string arg) const {
        if (!arg.empty() && arg[0] == '@')
            return dir + arg.substr(1);
        if (!arg.empty() && arg[0] == '#')
            return Fixture(arg.substr(1));
        return arg;
    }
};

TEST_P(Command, AnswersWithItsExitCode) {
    const CommandCase c = GetParam();
    std::string line = std::string("'") + OX_PROGRAM + "'";
    for (const std::string& a : c.args)
        line += " '" + Expand(a) + "'";
    line += " >'" + Path("stdout") + "' 2>'" + Path("stderr") + "'";
    const int status = std::system(line.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), c.code);
    const std::vector<uint8_t> out = ReadBytes(Path("stdout")), err = ReadBytes(Path("stderr"));
    const std::string said(c.code == 0 ? out.begin() : err.begin(),
                           c.code == 0 ? out.end() : err.end());
    EXPECT_NE(said.find(c.says), std::string::npos) << said;
    if (c.code != 0) {
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    }
    EXPECT_EQ(fs::exists(Path("out.wav")), c.writes);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Command,
    ::testing::Values(
        CommandCase{"help", {"--help"}, 0, "--render OUT.wav", false},
        CommandCase{"help on the level", {"--help"}, 0, "--normalize", false},
        CommandCase{"version", {"--version"}, 0, "oxbowlantern 1.0", false},
        CommandCase{"short render",
                    {"--render", "@/out.wav", "--seconds", "0.25", "--rate", "44100", "--bpm",
                     "140", "--level", "1", "--pattern", "2", "#new-inst-1.nst"},
                    0,
                    "",
                    true},
        CommandCase{"unknown option",
                    {"--render", "@/out.wav", "--loud", "#new-inst-1.nst"},
                    2,
                    "unknown option --loud",
                    false},
        CommandCase{"pattern 17",
                    {"--render", "@/out.wav", "--pattern", "17", "#new-inst-1.nst"},
                    2,
                    "--pattern needs",
                    false},
        CommandCase{"tempo in words",
                    {"--render", "@/out.wav", "--bpm", "fast", "#new-inst-1.nst"},
                    2,
                    "--bpm needs",
                    false},
        CommandCase{"no value",
                    {"--render", "@/out.wav", "#new-inst-1.nst", "--level"},
                    2,
                    "--level needs a value",
                    false},
        CommandCase{"no instrument", {"--render", "@/out.wav"}, 2, "no instrument file", false},
        CommandCase{"gain in words",
                    {"--render", "@/out.wav", "--gain", "loud", "#new-inst-1.nst"},
                    2,
                    "--gain needs a number of dB",
                    false},
        CommandCase{"gain too high",
                    {"--render", "@/out.wav", "--gain", "101", "#new-inst-1.nst"},
                    2,
                    "--gain needs a number of dB",
                    false},
        CommandCase{"normalized render",
                    {"--render", "@/out.wav", "--normalize", "--gain", "-3", "--seconds", "0.5",
                     "#new-inst-1.nst"},
                    0,
                    "",
                    true},
        CommandCase{
            "more than a WAV holds",
            {"--render", "@/out.wav", "--seconds", "3600", "--rate", "192000", "#new-inst-1.nst"},
            1,
            "does not fit in one WAV file",
            false},
        CommandCase{"refused file",
                    {"--render", "@/out.wav", "#new-inst-1.nst", "#bound-0.nst"},
                    1,
                    "bound-0.nst: a pattern in it has a length of 0",
                    false}),
    [](const auto& info) { return CaseName(info.param.what); });

// Only these first arguments choose the command line; anything else, Qt's
// own options included, goes to the windows.
TEST(CommandLine, IsChosenOnlyByItsOwnOptions) {
    const std::vector<std::pair<std::vector<const char*>, bool>> cases = {
        {{"ox", "--render", "o.wav", "a.nst"}, true},
        {{"ox", "--help"}, true},
        {{"ox", "--version"}, true},
        {{"ox"}, false},
        {{"ox", "a.nst"}, false},
        {{"ox", "-platform", "offscreen"}, false},
        {{"ox", "-style", "fusion", "a.nst"}, false},
        {{"ox", "--pattern", "2"}, false},
        {{"ox", "a.nst", "--render", "o.wav"}, false},
    };
    for (const auto& [args, command] : cases)
        EXPECT_EQ(IsCommandLine(static_cast<int>(args.size()), args.data()), command)
            << (args.size() > 1 ? args[1] : "(none)");
}

} // namespace
