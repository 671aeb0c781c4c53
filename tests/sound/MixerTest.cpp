#include "SoundTestKit.h"

#include "engine/Mixer.h"
#include "engine/SoundBuffer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

using namespace SoundTestKit;

namespace {

// ---- What SoundBuffer::Play sends ----------------------------------------

using Sent = std::vector<std::pair<int, int32_t>>; // (kind, value)

struct PlayCase {
    int16_t noteVolume;
    double volumeFraction;
    int16_t notePan;
    double linePan;
    int16_t toeIn;
    bool ready;
    Sent sent; // by two plays of the note
};

class PlaySends : public ::testing::TestWithParam<PlayCase> {};

// A 120 ms sample of 176 bytes a millisecond on voice 3. The second play of a
// note sends only the start: volume and pan go only when they change.
TEST_P(PlaySends, VolumeAndPanWhenChangedThenStartAndPosition) {
    const PlayCase c = GetParam();
    MixerCommandQueue queue;
    SoundBuffer buffer(nullptr);
    buffer.SetLoaded(3, &queue, "s", "s.wav", 120, 44100, 176400);
    if (c.ready)
        buffer.MarkReady();
    buffer.volumeFraction = c.volumeFraction;
    buffer.linePan = c.linePan;
    PlayPoint p{};
    p.volume = c.noteVolume;
    p.pan = c.notePan;
    p.toeIn = c.toeIn;
    EXPECT_EQ(buffer.Play(p), c.ready);
    buffer.Play(p);
    Sent sent;
    MixerCommand m;
    while (queue.Pop(m)) {
        EXPECT_EQ(m.voice, 3);
        sent.emplace_back(m.kind, m.value);
    }
    EXPECT_EQ(sent, c.sent);
}

constexpr int V = MixerCommand::SetVolume, P = MixerCommand::SetPan, S = MixerCommand::Play,
              O = MixerCommand::SetPosition;

INSTANTIATE_TEST_SUITE_P(
    Numbers, PlaySends,
    ::testing::Values(
        PlayCase{0, 1.0, 0, 0.0, 0, true, {{S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        // half the fraction: -50 dB; then with the note's own volume
        PlayCase{0, 0.5, 0, 0.0, 0, true, {{V, -5000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        PlayCase{-2000, 0.5, 0, 0.0, 0, true, {{V, -6000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        PlayCase{-3000, 0.0, 0, 0.0, 0, true, {{V, -10000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        // pans add up and stop at either side
        PlayCase{0, 1.0, 5000, 0.75, 0, true, {{P, 10000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        PlayCase{0, 1.0, -5000, -0.75, 0, true, {{P, -10000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        PlayCase{0, 1.0, 2000, -0.5, 0, true, {{P, -3000}, {S, 0}, {O, 0}, {S, 0}, {O, 0}}},
        // the toe-in, at most the sample's length
        PlayCase{0, 1.0, 0, 0.0, 50, true, {{S, 0}, {O, 8800}, {S, 0}, {O, 8800}}},
        PlayCase{0, 1.0, 0, 0.0, 150, true, {{S, 0}, {O, 21120}, {S, 0}, {O, 21120}}},
        // nothing before the load has finished
        PlayCase{-700, 1.0, 300, 0.0, 0, false, {}}));

// ---- Gain and pan law on rendered frames ---------------------------------

struct GainCase {
    int32_t volume;
    int32_t pan;
    double left;
    double right;
};

class GainLaw : public ::testing::TestWithParam<GainCase> {};

TEST_P(GainLaw, RenderedFramesCarryTheGains) {
    const GainCase c = GetParam();
    Mixer mixer;
    mixer.SetOutputRate(44100);
    const int32_t v = mixer.Attach(Constant(64, 0.5f, -0.25f));
    Send(mixer, MixerCommand::SetVolume, v, c.volume);
    Send(mixer, MixerCommand::SetPan, v, c.pan);
    Send(mixer, MixerCommand::Play, v);
    const std::vector<float> out = Render(mixer, 16);
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(out[2 * i], 0.5 * c.left, 1e-6) << "frame " << i;
        EXPECT_NEAR(out[2 * i + 1], -0.25 * c.right, 1e-6) << "frame " << i;
    }
    EXPECT_TRUE(mixer.VoiceAt(v)->playing) << "a silent voice still runs";
}

const double Minus6dB = std::pow(10.0, -0.3);

INSTANTIATE_TEST_SUITE_P(
    Law, GainLaw,
    ::testing::Values(GainCase{0, 0, 1.0, 1.0}, GainCase{-600, 0, Minus6dB, Minus6dB},
                      GainCase{-2000, 0, 0.1, 0.1}, GainCase{-5000, 0, 0.00316228, 0.00316228},
                      GainCase{-10000, 0, 0.0, 0.0},    // the floor is silence
                      GainCase{0, -600, 1.0, Minus6dB}, // negative: the right side drops
                      GainCase{0, 600, Minus6dB, 1.0},  // positive: the left side drops
                      GainCase{0, -10000, 1.0, 0.0}, GainCase{0, 10000, 0.0, 1.0},
                      GainCase{-2000, 2000, 0.01, 0.1},
                      // out of range: refused, the voice keeps full level
                      GainCase{10, 0, 1.0, 1.0}, GainCase{-10001, 10001, 1.0, 1.0}));

// ---- Playback rate --------------------------------------------------------

struct RateCase {
    int32_t sampleRate;
    int32_t outputRate;
    int32_t frequency; // 0: the sample's own, set after 22050
    int32_t expectedFrames;
};

class Rate : public ::testing::TestWithParam<RateCase> {};

TEST_P(Rate, ASampleLastsItsFramesScaledByTheRates) {
    const RateCase c = GetParam();
    Mixer mixer;
    mixer.SetOutputRate(c.outputRate);
    const int32_t v = mixer.Attach(Mono(std::vector<float>(1000, 1.0f), c.sampleRate));
    if (c.frequency == 0)
        Send(mixer, MixerCommand::SetFrequency, v, 22050);
    Send(mixer, MixerCommand::SetFrequency, v, c.frequency);
    Send(mixer, MixerCommand::Play, v);
    EXPECT_EQ(SoundingFrames(Render(mixer, 4000)), c.expectedFrames);
    EXPECT_FALSE(mixer.VoiceAt(v)->playing) << "no looping";
}

INSTANTIATE_TEST_SUITE_P(
    Rates, Rate,
    ::testing::Values(RateCase{22050, 44100, 0, 2000}, RateCase{44100, 44100, 0, 1000},
                      RateCase{44100, 44100, 22050, 2000}, RateCase{44100, 44100, 88200, 500},
                      RateCase{44100, 48000, 0, 1089}, RateCase{96000, 48000, 0, 500},
                      RateCase{44100, 44100, 50, 1000})); // refused

TEST(Rate, InterpolatesLinearlyBetweenFrames) {
    Mixer mixer;
    mixer.SetOutputRate(44100);
    const int32_t v = mixer.Attach(Mono({0.0f, 1.0f, 0.5f}, 11025));
    Send(mixer, MixerCommand::Play, v);
    const std::vector<float> out = Render(mixer, 13);
    const float expected[13] = {0.0f,   0.25f, 0.5f,   0.75f, 1.0f,   0.875f, 0.75f,
                                0.625f, 0.5f,  0.375f, 0.25f, 0.125f, 0.0f};
    for (int i = 0; i < 13; ++i)
        EXPECT_FLOAT_EQ(out[2 * i], expected[i]) << "frame " << i;
}

// ---- Start position, retrigger ---------------------------------------------

struct PositionCase {
    int32_t bytes;
    int32_t firstFrame; // the frame heard first, -1 when the call fails
};

class StartPosition : public ::testing::TestWithParam<PositionCase> {};

TEST_P(StartPosition, ByteOffsetRoundsDownToAWholeFrame) {
    const PositionCase c = GetParam();
    Mixer mixer;
    mixer.SetOutputRate(44100);
    const int32_t v = mixer.Attach(Ramp(500)); // mono 16-bit: 2 bytes a frame
    Send(mixer, MixerCommand::Play, v);
    Render(mixer, 40); // the voice stands at frame 40
    Send(mixer, MixerCommand::Play, v);
    Send(mixer, MixerCommand::SetPosition, v, c.bytes);
    const std::vector<float> out = Render(mixer, 2);
    const int32_t heard = c.firstFrame >= 0 ? c.firstFrame : 40;
    EXPECT_EQ(out[0], static_cast<float>(heard));
    EXPECT_EQ(out[2], static_cast<float>(heard + 1));
}

INSTANTIATE_TEST_SUITE_P(Positions, StartPosition,
                         ::testing::Values(PositionCase{0, 0}, PositionCase{200, 100},
                                           PositionCase{201, 100}, PositionCase{996, 498},
                                           PositionCase{1000, -1}, // beyond: goes on
                                           PositionCase{-2, -1}));

TEST(Retrigger, RestartsCutsTheNoteBeforeAndAnEndedVoiceStartsAgain) {
    Mixer mixer;
    mixer.SetOutputRate(44100);
    const int32_t v = mixer.Attach(Ramp(500));
    Send(mixer, MixerCommand::SetVolume, v, -600);
    Send(mixer, MixerCommand::Play, v);
    Render(mixer, 100);
    Send(mixer, MixerCommand::Play, v);
    Send(mixer, MixerCommand::SetPosition, v, 20); // toe-in of 10 frames
    const float gain = static_cast<float>(std::pow(10.0, -0.3));
    EXPECT_FLOAT_EQ(Render(mixer, 3)[0], 10.0f * gain) << "only the new note, nothing of frame 100";
    Render(mixer, 1000);
    EXPECT_FALSE(mixer.VoiceAt(v)->playing);
    Send(mixer, MixerCommand::Play, v);
    const std::vector<float> out = Render(mixer, 600);
    EXPECT_EQ(SoundingFrames(out), 499) << "from frame 0 (which holds 0) to the end";
    EXPECT_FLOAT_EQ(out[2], gain) << "the volume stays with the voice";
}

// ---- Voices, table growth and freeing --------------------------------------

TEST(Voices, TheTableGrowsWhileEveryVoiceKeepsItsState) {
    Mixer mixer;
    mixer.SetOutputRate(44100);
    std::vector<int32_t> voices;
    for (int i = 0; i < Mixer::TableStep; ++i) {
        voices.push_back(mixer.Attach(Constant(1000, 0.001f, 0.001f)));
        Send(mixer, MixerCommand::Play, voices.back());
    }
    Render(mixer, 10);
    for (int i = 0; i < 2 * Mixer::TableStep + 5; ++i) {
        voices.push_back(mixer.Attach(Constant(1000, 0.001f, 0.001f)));
        Send(mixer, MixerCommand::Play, voices.back());
    }
    const std::vector<float> out = Render(mixer, 1);
    EXPECT_EQ(mixer.SoundingVoices(), 3 * Mixer::TableStep + 5);
    EXPECT_NEAR(out[0], 0.001 * (3 * Mixer::TableStep + 5), 1e-4);
    mixer.Collect(); // frees the replaced tables
    EXPECT_EQ(mixer.VoiceAt(voices.back())->position >> 32, 1u);
    EXPECT_EQ(mixer.VoiceAt(voices.front())->position >> 32, 11u);
}

TEST(Voices, AReleasedVoiceIsFreedAndGivenOutAgain) {
    Mixer mixer;
    mixer.SetOutputRate(44100);
    MixerCommandQueue* q = mixer.Commands();
    const int32_t first = mixer.Attach(Constant(100, 1.0f, 1.0f));
    const int32_t second = mixer.Attach(Constant(100, 1.0f, 1.0f));
    {
        SoundBuffer buffer(nullptr);
        buffer.SetLoaded(first, q, "s", "s.wav", 2, 44100, 176400);
        buffer.MarkReady();
        buffer.Play(PlayPoint{});
    } // the buffer's end releases its voice
    Send(mixer, MixerCommand::Play, second);
    EXPECT_EQ(SoundingFrames(Render(mixer, 10)), 10);
    EXPECT_EQ(mixer.SoundingVoices(), 1) << "only the second voice sounds";
    mixer.Collect();
    EXPECT_EQ(mixer.Attach(Constant(5, 0.0f, 0.0f)), first) << "free once collected";
}

TEST(Voices, AFullCommandQueueRefusesUntilTheMixerDrainsIt) {
    Mixer mixer;
    const int32_t v = mixer.Attach(Constant(10, 1.0f, 1.0f));
    SoundBuffer buffer(nullptr);
    buffer.SetLoaded(v, mixer.Commands(), "s", "s.wav", 2, 44100, 176400);
    buffer.MarkReady();
    while (mixer.Commands()->Push(MixerCommand{MixerCommand::SetVolume, v, 0, nullptr})) {
    }
    std::unique_ptr<SampleData> refused(Constant(10, 1.0f, 1.0f));
    EXPECT_EQ(mixer.Attach(refused.get()), -1) << "the sample stays the caller's";
    EXPECT_FALSE(buffer.Play(PlayPoint{}));
    mixer.ApplyCommands();
    EXPECT_GE(mixer.Attach(refused.release()), 0);
    EXPECT_TRUE(buffer.Play(PlayPoint{}));
}

// Voices are summed in the order of their numbers, whatever order they
// started and stopped in, so the same voices give the same bits; a voice
// released while it plays is heard no more.
TEST(Voices, SumInVoiceOrderWhateverOrderTheyStartedIn) {
    // In voice order 1 + 1e-8 rounds to 1 and the sum is 0; in the second
    // start order -1 + 1 comes first and the sum would be 1e-8.
    const float values[] = {1.0f, 1e-8f, -1.0f};
    std::vector<std::vector<float>> outs;
    for (const std::vector<int>& order : {std::vector<int>{0, 1, 2}, std::vector<int>{2, 0, 1}}) {
        Mixer mixer;
        std::vector<int32_t> voices;
        for (float value : values)
            voices.push_back(mixer.Attach(Constant(50, value, -value)));
        const int32_t gone = mixer.Attach(Constant(50, 0.25f, 0.25f));
        Send(mixer, MixerCommand::Play, gone);
        for (int k : order) {
            Send(mixer, MixerCommand::Play, voices[k]);
            Send(mixer, MixerCommand::Play, voices[k]);
        }
        Send(mixer, MixerCommand::Release, gone);
        outs.push_back(Render(mixer, 20));
        EXPECT_EQ(mixer.SoundingVoices(), 3);
    }
    EXPECT_EQ(outs[0], outs[1]);
    EXPECT_EQ(outs[0][0], 0.0f);
}

// When the GUI thread does not collect, the return queue fills: a sample
// released then stays on its idle voice and a replaced table stays linked,
// both reachable and freed by the mixer itself (LeakSanitizer checks that
// nothing is lost and nothing freed twice).
TEST(Voices, AFullReturnQueueKeepsWhatItCannotHandBack) {
    auto mixer = std::make_unique<Mixer>();
    const int32_t cycled = mixer->Attach(Constant(1, 0.0f, 0.0f));
    const int32_t kept = mixer->Attach(Constant(1, 0.0f, 0.0f));
    Send(*mixer, MixerCommand::Release, cycled);
    for (int i = 1; i < 32768; ++i) {
        mixer->Commands()->Push(
            MixerCommand{MixerCommand::Attach, cycled, 0, Constant(1, 0.0f, 0.0f)});
        Send(*mixer, MixerCommand::Release, cycled);
        if (i % 1024 == 0)
            mixer->ApplyCommands();
    }
    Send(*mixer, MixerCommand::Release, kept);
    mixer->ApplyCommands();
    EXPECT_NE(mixer->VoiceAt(kept)->sample, nullptr) << "the queue was full: the mixer keeps it";
    EXPECT_FALSE(mixer->VoiceAt(kept)->playing);
    std::vector<int32_t> voices;
    for (int i = 0; i < Mixer::TableStep; ++i) { // one more table; the old one cannot go back
        voices.push_back(mixer->Attach(Constant(100, 0.5f, 0.5f)));
        Send(*mixer, MixerCommand::Play, voices.back());
    }
    EXPECT_EQ(SoundingFrames(Render(*mixer, 10)), 10);
    EXPECT_EQ(mixer->SoundingVoices(), Mixer::TableStep);
    mixer.reset();
}

} // namespace
