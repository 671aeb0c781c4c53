#include "WaveBuilder.h"

#include "engine/SoundBuffer.h"
#include "engine/SoundSystem.h"
#include "engine/WaveFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

std::vector<uint8_t> Data(std::initializer_list<int> bytes) {
    std::vector<uint8_t> v;
    for (int b : bytes)
        v.push_back(static_cast<uint8_t>(b));
    return v;
}

// ---- Files that load, and the values they decode to ----------------------

struct Accepted {
    const char* name;
    std::vector<uint8_t> file;
    int32_t channels;
    int32_t rate;
    int32_t frames;
    std::vector<float> samples; // the decoded values, interleaved
};

class WaveAccepts : public ::testing::TestWithParam<Accepted> {};

TEST_P(WaveAccepts, DecodesToFloatFrames) {
    const Accepted& c = GetParam();
    WaveFile wave;
    ASSERT_EQ(ReadWave(WaveBuilder::Save(c.file, std::string(c.name) + ".wav"), wave),
              WaveStatus::Ok);
    ASSERT_NE(wave.sample, nullptr);
    EXPECT_EQ(wave.sample->channels, c.channels);
    EXPECT_EQ(wave.sample->rate, c.rate);
    ASSERT_EQ(wave.sample->frames, c.frames);
    for (size_t i = 0; i < c.samples.size(); ++i)
        EXPECT_FLOAT_EQ(wave.sample->Value(i), c.samples[i]) << "sample " << i;
    for (int i = 0; i < SampleData::PadFrames * c.channels; ++i)
        EXPECT_EQ(wave.sample->Value(c.samples.size() + i), 0.0f) << "silent pad";
}

using W = WaveBuilder;
const std::vector<uint8_t> Pcm16Mono = W::Format(1, 1, 22050, 16);

// A file of a format chunk and a data chunk.
std::vector<uint8_t> Wave(const std::vector<uint8_t>& format, std::initializer_list<int> data) {
    return W().Chunk("fmt ", format).Chunk("data", Data(data)).Bytes();
}

// The table is laid out by hand, a case or two to a line.
// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Formats, WaveAccepts,
    ::testing::Values(
        Accepted{"u8", Wave(W::Format(1, 1, 8000, 8), {0, 128, 255}), 1, 8000, 3,
                 {-1.0f, 0.0f, 127.0f / 128.0f}},
        Accepted{"s16stereo",
                 Wave(W::Format(1, 2, 44100, 16), {0x00, 0x80, 0xFF, 0x7F, 0x00, 0x40, 0xFF, 0xFF}),
                 2, 44100, 2, {-1.0f, 32767.0f / 32768.0f, 0.5f, -1.0f / 32768.0f}},
        Accepted{"s24",
                 Wave(W::Format(1, 1, 96000, 24), {0, 0, 0x80, 0, 0, 0x40, 0x01, 0, 0}),
                 1, 96000, 3, {-1.0f, 0.5f, 1.0f / 8388608.0f}},
        Accepted{"s32", Wave(W::Format(1, 1, 48000, 32), {0, 0, 0, 0x80, 0, 0, 0, 0xC0}),
                 1, 48000, 2, {-1.0f, -0.5f}},
        Accepted{"f32", Wave(W::Format(3, 1, 48000, 32), {0, 0, 0x80, 0x3E}), 1, 48000, 1, {0.25f}},
        Accepted{"ext16", Wave(W::Extensible(1, 2, 48000, 16), {0x00, 0x40, 0x00, 0xC0}),
                 2, 48000, 1, {0.5f, -0.5f}},
        Accepted{"extfloat", Wave(W::Extensible(3, 1, 44100, 32), {0, 0, 0x80, 0xBF}),
                 1, 44100, 1, {-1.0f}},
        Accepted{"fmt18", Wave(W::Format(1, 1, 22050, 16, true), {0x00, 0x40}),
                 1, 22050, 1, {0.5f}},
        // Chunks an editor writes before the format are passed over.
        Accepted{"junkfirst",
                 W().Chunk("JUNK", Data({1, 2, 3})).Chunk("LIST", Data({'I', 'N', 'F', 'O'}))
                     .Chunk("bext", std::vector<uint8_t>(602, 7)).Chunk("fmt ", Pcm16Mono)
                     .Chunk("data", Data({0x00, 0x40})).Bytes(),
                 1, 22050, 1, {0.5f}},
        // And so are chunks between the format and the data.
        Accepted{"between",
                 W().Chunk("fmt ", Pcm16Mono).Chunk("fact", Data({1, 0, 0, 0}))
                     .Chunk("LIST", Data({1})).Chunk("data", Data({0x00, 0x40})).Bytes(),
                 1, 22050, 1, {0.5f}},
        // A part frame at the end is not heard.
        Accepted{"partframe", Wave(Pcm16Mono, {0x00, 0x40, 0x11}), 1, 22050, 1, {0.5f}},
        Accepted{"empty", Wave(Pcm16Mono, {}), 1, 22050, 0, {}}),
    [](const ::testing::TestParamInfo<Accepted>& info) { return std::string(info.param.name); });
// clang-format on

// ---- Files that are refused -----------------------------------------------

struct Refused {
    const char* name;
    std::vector<uint8_t> file;
    WaveStatus status;
};

class WaveRefuses : public ::testing::TestWithParam<Refused> {};

TEST_P(WaveRefuses, WithItsReason) {
    const Refused& c = GetParam();
    WaveFile wave;
    EXPECT_EQ(ReadWave(WaveBuilder::Save(c.file, std::string(c.name) + ".wav"), wave), c.status);
    EXPECT_EQ(wave.sample, nullptr);
}

std::vector<uint8_t> Truncated(std::vector<uint8_t> file, size_t cut) {
    file.erase(file.end() - static_cast<std::ptrdiff_t>(cut), file.end());
    return file;
}

const std::vector<uint8_t> Sound = Data({0x00, 0x40, 0x00, 0x20});

// The file with a size field at offset `at` overwritten.
std::vector<uint8_t> Patched(std::vector<uint8_t> file, size_t at, uint32_t size) {
    for (int i = 0; i < 4; ++i)
        file[at + i] = static_cast<uint8_t>(size >> (8 * i));
    return file;
}

// A 48-byte stereo 16-bit file whose "data" chunk claims `size` bytes.
std::vector<uint8_t> ClaimsData(uint32_t size) {
    return Patched(W().Chunk("fmt ", W::Format(1, 2, 44100, 16)).Chunk("data", Sound).Bytes(), 40,
                   size);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WaveRefuses,
    ::testing::Values(
        Refused{"notriff", Data({'R', 'I', 'F', 'X', 0, 0, 0, 0, 'W', 'A', 'V', 'E'}),
                WaveStatus::NotWave},
        Refused{"notwave", W().Chunk("fmt ", Pcm16Mono).Bytes("AVI "), WaveStatus::NotWave},
        Refused{"tooshort", Data({'R', 'I', 'F', 'F', 0, 0}), WaveStatus::NotWave},
        Refused{"noformat", W().Chunk("data", Sound).Bytes(), WaveStatus::NoFormat},
        Refused{"onlyjunk", W().Chunk("JUNK", Sound).Bytes(), WaveStatus::NoFormat},
        Refused{
            "shortformat",
            W().Chunk("fmt ", Data({1, 0, 1, 0, 0x44, 0xAC, 0, 0})).Chunk("data", Sound).Bytes(),
            WaveStatus::NoFormat},
        Refused{"adpcm", W().Chunk("fmt ", W::Format(2, 1, 22050, 4)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"mulaw", W().Chunk("fmt ", W::Format(7, 1, 8000, 8)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"threechannels",
                W().Chunk("fmt ", W::Format(1, 3, 44100, 16)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"twelvebits",
                W().Chunk("fmt ", W::Format(1, 1, 44100, 12)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"double",
                W().Chunk("fmt ", W::Format(3, 1, 44100, 64)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"zerorate", W().Chunk("fmt ", W::Format(1, 1, 0, 16)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"extadpcm",
                W().Chunk("fmt ", W::Extensible(2, 1, 44100, 16)).Chunk("data", Sound).Bytes(),
                WaveStatus::Unsupported},
        Refused{"nodata", W().Chunk("fmt ", Pcm16Mono).Chunk("LIST", Sound).Bytes(),
                WaveStatus::NoData},
        Refused{"shortdata",
                Truncated(W().Chunk("fmt ", Pcm16Mono).Chunk("data", Sound).Bytes(), 1),
                WaveStatus::ShortData},
        // Headers that claim more than the file holds are refused before
        // anything is allocated (bench_sound times the 512 MiB case).
        Refused{"claims512MiB", ClaimsData(512u << 20), WaveStatus::ShortData},
        Refused{"claims4GiB", ClaimsData(0xFFFFFFFFu), WaveStatus::ShortData},
        // Block align 2 for two 16-bit channels.
        Refused{"align",
                Patched(W().Chunk("fmt ", W::Format(1, 2, 44100, 16)).Chunk("data", Sound).Bytes(),
                        32, 2 | 16 << 16),
                WaveStatus::Unsupported},
        Refused{"formatclaims4GiB",
                Patched(W().Chunk("fmt ", Pcm16Mono).Chunk("data", Sound).Bytes(), 16, 0xFFFFFFFFu),
                WaveStatus::NoFormat}),
    [](const ::testing::TestParamInfo<Refused>& info) { return std::string(info.param.name); });

TEST(WaveRefuses, AMissingFile) {
    WaveFile wave;
    EXPECT_EQ(ReadWave(WaveBuilder::TempDir() + "/no-such-file.wav", wave), WaveStatus::Missing);
}

// ---- LoadWave: the hand-over to the sound buffer --------------------------

TEST(LoadWave, SetsLengthAndBytesPerMsFromTheFormat) {
    const std::vector<uint8_t> data(176400, 0);
    const std::string path = W::Save(
        W().Chunk("fmt ", W::Format(1, 2, 44100, 16)).Chunk("data", data).Bytes(), "second.wav");
    SoundSystem sound;
    SoundBuffer buffer(nullptr);
    EXPECT_EQ(sound.LoadWave(path, "second", &buffer), 1);
    EXPECT_EQ(buffer.lengthMs, 1000);
    EXPECT_EQ(buffer.bytesPerMs, 176);
    EXPECT_EQ(buffer.frequency, 44100);
    EXPECT_GE(buffer.voice, 0);
    EXPECT_EQ(sound.waveDataSize, 176400u);
}

struct LengthCase {
    int32_t channels, rate, bits;
    uint32_t dataSize;
    int32_t ms;
};

class WaveLength : public ::testing::TestWithParam<LengthCase> {};

TEST_P(WaveLength, TruncatesToWholeMillisecondsWithinAnInt) {
    const LengthCase c = GetParam();
    WaveFile wave;
    wave.format = WaveFormat{c.channels, c.rate, c.channels * c.bits / 8, c.bits, false};
    wave.dataSize = c.dataSize;
    EXPECT_EQ(wave.LengthMs(), c.ms);
}

INSTANTIATE_TEST_SUITE_P(Sizes, WaveLength,
                         ::testing::Values(LengthCase{1, 8000, 8, 1001, 125}, // 125.125 ms
                                           LengthCase{2, 44100, 16, 176400, 1000},
                                           LengthCase{1, 1, 8, 3000000, INT32_MAX},
                                           LengthCase{1, 1, 8, 0xFFFFFFFFu, INT32_MAX}));

TEST(LoadWave, AFailedLoadLeavesTheBufferUnboundButReady) {
    SoundSystem sound;
    SoundBuffer buffer(nullptr);
    EXPECT_EQ(sound.LoadWave(W::TempDir() + "/gone.wav", "gone", &buffer), 1);
    EXPECT_EQ(sound.lastStatus, WaveStatus::Missing);
    EXPECT_EQ(buffer.voice, -1);
    EXPECT_EQ(buffer.empty, 0);
    EXPECT_EQ(buffer.name, "empty buffer");
}

} // namespace
