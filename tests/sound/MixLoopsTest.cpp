#include "WaveBuilder.h"

#include "engine/Mixer.h"
#include "engine/WaveFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

// ---- The mixer's loops against a plain one --------------------------------

// A source of samples: the bundled kit's files, or noise written as a wave
// file of the given format and read back as the program reads it.
struct Source {
    const char* name;
    uint16_t tag; // 1 PCM, 3 float; 0 for the kit
    uint16_t channels;
    uint32_t rate;
    uint16_t bits;
};

struct MixCase {
    Source source;
    int32_t outputRate;
};

std::vector<std::unique_ptr<SampleData>> Noise(const Source& s, std::mt19937& random) {
    std::vector<std::unique_ptr<SampleData>> samples;
    for (int32_t k = 0; k < 3; ++k) {
        const int32_t frames = 1000 + 777 * k;
        std::vector<uint8_t> data(static_cast<size_t>(frames) * s.channels * s.bits / 8);
        for (uint8_t& b : data)
            b = static_cast<uint8_t>(random());
        if (s.tag == 3) // floats within -1 to 1
            for (size_t i = 3; i < data.size(); i += 4)
                data[i] = static_cast<uint8_t>((data[i] & 0x80) | 0x3E);
        const std::string name = std::string(s.name) + std::to_string(k) + ".wav";
        WaveFile wave;
        const auto bytes =
            WaveBuilder()
                .Chunk("fmt ", WaveBuilder::Format(s.tag, s.channels, s.rate, s.bits))
                .Chunk("data", data)
                .Bytes();
        EXPECT_EQ(ReadWave(WaveBuilder::Save(bytes, name), wave), WaveStatus::Ok) << name;
        samples.push_back(std::move(wave.sample));
    }
    return samples;
}

std::vector<std::unique_ptr<SampleData>> Kit() {
    const char* root = std::getenv("OX_SOURCE_DIR");
    std::vector<std::unique_ptr<SampleData>> samples;
    for (const char* name :
         {"clap", "closed-hat", "cowbell", "kick", "open-hat", "rim", "snare", "tom"}) {
        WaveFile wave;
        const std::string path =
            std::string(root != nullptr ? root : ".") + "/resources/sounds/" + name + ".wav";
        EXPECT_EQ(ReadWave(path, wave), WaveStatus::Ok) << path;
        samples.push_back(std::move(wave.sample));
    }
    return samples;
}

// What the mixer must add for one voice in the state it is in: the plain
// loop, a frame at a time, from the decoded values.
void AddPlain(const Voice& v, int32_t frames, std::vector<float>& out) {
    const SampleData& s = *v.sample;
    uint64_t position = v.position;
    for (int32_t i = 0; i < frames && (position >> 32) < static_cast<uint64_t>(s.frames); ++i) {
        const size_t at = static_cast<size_t>(position >> 32) * s.channels;
        const float frac = static_cast<float>(static_cast<uint32_t>(position)) * 0x1p-32f;
        const size_t right = s.channels == 2 ? 1 : 0;
        const float l0 = s.Value(at), l1 = s.Value(at + s.channels);
        const float r0 = s.Value(at + right), r1 = s.Value(at + s.channels + right);
        out[2 * i] += v.gainLeft * (l0 + frac * (l1 - l0));
        out[2 * i + 1] += v.gainRight * (r0 + frac * (r1 - r0));
        position += v.step;
    }
}

class MixLoops : public ::testing::TestWithParam<MixCase> {};

// Every voice at its own volume, pan and rate, mixed in pieces of many sizes
// (the loops' tails included) until all have ended; each piece is checked
// against the plain loop's sum over the voices, in voice order. On the
// baseline instruction set the loops compute the same operations in the same
// order and the output is the same to the bit; the bound leaves room for a
// build whose compiler fuses multiply and add differently in the two.
TEST_P(MixLoops, AddUpAsThePlainLoopWithinFloatRounding) {
    const MixCase& c = GetParam();
    std::mt19937 random(11);
    std::vector<std::unique_ptr<SampleData>> samples =
        c.source.tag == 0 ? Kit() : Noise(c.source, random);
    Mixer mixer;
    mixer.SetOutputRate(c.outputRate);
    std::vector<int32_t> voices;
    for (auto& s : samples) {
        ASSERT_NE(s, nullptr);
        const int32_t v = mixer.Attach(s.release());
        const int32_t k = static_cast<int32_t>(voices.size());
        MixerCommandQueue* q = mixer.Commands();
        q->Push(MixerCommand{MixerCommand::SetVolume, v, -150 * k, nullptr});
        q->Push(MixerCommand{MixerCommand::SetPan, v, (k % 3 - 1) * 1200, nullptr});
        q->Push(MixerCommand{MixerCommand::SetFrequency, v, k % 2 == 0 ? 0 : 30011 + 9973 * k,
                             nullptr});
        q->Push(MixerCommand{MixerCommand::Play, v, 0, nullptr});
        voices.push_back(v);
    }
    mixer.ApplyCommands();
    const int32_t pieces[] = {1, 2, 3, 5, 7, 64, 240, 257};
    double worst = 0.0;
    for (int32_t p = 0; p < 10000 && (p == 0 || mixer.SoundingVoices() > 0); ++p) {
        const int32_t frames = pieces[p % 8];
        std::vector<float> expected(2 * static_cast<size_t>(frames));
        for (int32_t v : voices)
            if (mixer.VoiceAt(v)->playing)
                AddPlain(*mixer.VoiceAt(v), frames, expected);
        std::vector<float> out(expected.size());
        mixer.Mix(out.data(), frames);
        for (size_t i = 0; i < out.size(); ++i) {
            const double error = std::fabs(static_cast<double>(out[i]) - expected[i]);
            worst = std::max(worst, error / (1.0 + std::fabs(expected[i])));
        }
    }
    EXPECT_EQ(mixer.SoundingVoices(), 0) << "every voice ends";
    EXPECT_LE(worst, 1e-6);
}

// The kit's own format (16-bit mono at 44.1 kHz) and every other one a file
// can have, each mixed at its own rate and resampled to others.
const Source Sources[] = {
    {"kit", 0, 1, 44100, 16},        {"u8-mono", 1, 1, 22050, 8},
    {"s16-stereo", 1, 2, 44100, 16}, {"s24-mono", 1, 1, 48000, 24},
    {"s24-stereo", 1, 2, 96000, 24}, {"s32-mono", 1, 1, 44100, 32},
    {"f32-stereo", 3, 2, 48000, 32}, {"f32-mono", 3, 1, 8000, 32},
};

std::vector<MixCase> MixCases() {
    std::vector<MixCase> cases;
    for (const Source& s : Sources)
        for (int32_t rate : {44100, 48000, 96000})
            cases.push_back(MixCase{s, rate});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Formats, MixLoops, ::testing::ValuesIn(MixCases()),
                         [](const ::testing::TestParamInfo<MixCase>& info) {
                             std::string name = info.param.source.name;
                             for (char& ch : name)
                                 ch = ch == '-' ? '_' : ch;
                             return name + "_to_" + std::to_string(info.param.outputRate);
                         });

} // namespace
