// The byte forms: strings, the point record, the pattern block, and the list
// a block turns back into.
#include "FileTestKit.h"

#include "song/FileArchive.h"
#include "song/PlayPointList.h"
#include "song/SetSave.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

// ---- Strings: three length forms -----------------------------------------

struct TextCase {
    size_t length;
    Bytes head; // the length form that comes before the text
};

class TextForm : public ::testing::TestWithParam<TextCase> {};

TEST_P(TextForm, WritesItsLengthFormAndReadsBack) {
    const TextCase c = GetParam();
    std::string text(c.length, 'p');
    if (c.length > 0)
        text.back() = 'q';
    FileArchive out("t.nst");
    out.WriteString(text);
    const Bytes& bytes = out.Bytes();
    ASSERT_EQ(bytes.size(), c.head.size() + c.length);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + c.head.size()), c.head);

    FileArchive in(bytes.data(), bytes.size(), "t.nst");
    EXPECT_EQ(in.ReadString(), text);
    EXPECT_EQ(in.Remaining(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, TextForm,
    ::testing::Values(TextCase{0, {0x00}}, TextCase{6, {0x06}}, TextCase{254, {0xFE}},
                      TextCase{255, {0xFF, 0xFF, 0x00}},
                      // a path of 300 characters
                      TextCase{300, {0xFF, 0x2C, 0x01}}, TextCase{65533, {0xFF, 0xFD, 0xFF}},
                      TextCase{65534, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},
                      TextCase{70000, {0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00}}));

// ---- The point record ----------------------------------------------------

TEST(PointRecord, HasTheFieldsInFileOrder) {
    SetSave save;
    PlayPoint p{};
    p.time = 64;
    p.line = 2;
    p.pan = -5000;
    p.toeIn = 1500;
    p.volume = -1200;
    save.records[0] = p;
    save.count = 1;
    save.bound = 512;
    FileArchive out("t.nst");
    save.Serialize(out);
    const Bytes expected = {0x00, 0x02, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, // bound 512, count 1
                            0x00, 0x00, 0x00, 0x02, 0x78, 0xEC, 0x00, 0x00,
                            0x40, 0x00, 0x00, 0x00, 0xDC, 0x05, 0x50, 0xFB};
    EXPECT_EQ(out.Bytes(), expected);
}

class RecordRoundTrip : public ::testing::TestWithParam<PlayPoint> {};

TEST_P(RecordRoundTrip, KeepsEveryField) {
    SetSave save;
    save.records[0] = GetParam();
    save.count = 1;
    FileArchive out("t.nst");
    save.Serialize(out);
    SetSave back;
    FileArchive in(out.Bytes().data(), out.Bytes().size(), "t.nst");
    back.Serialize(in);
    ASSERT_EQ(back.count, 1);
    EXPECT_EQ(std::memcmp(&back.records[0], &save.records[0], sizeof(PlayPoint)), 0);
}

INSTANTIATE_TEST_SUITE_P(Extremes, RecordRoundTrip,
                         ::testing::Values(PlayPoint{0, 0, 0, 0, 0, 0, 0, 0},
                                           // the reserved byte travels with the record
                                           PlayPoint{511, 0xAB, 255, -1, 10000, -10000, 7, 10000},
                                           PlayPoint{0x02345678, 1, 29, 32767, -32768, 32767,
                                                     -32768, -10000}));

// ---- The block ------------------------------------------------------------

TEST(PatternBlock, TenThousandPointsTake160008Bytes) {
    PlayPointList list(1 << 20);
    for (int32_t i = 0; i < SetSave::MaxRecords; ++i)
        list.Insert(PlayPoint{i * 10, 0, static_cast<uint8_t>(i % 30), 0, 0, 0, 0, 0});
    auto save = std::make_unique<SetSave>();
    ASSERT_TRUE(save->FromList(list));
    FileArchive out("t.nst");
    save->Serialize(out);
    EXPECT_EQ(out.Bytes().size(), 160008u);
}

// ---- ToList gives what Insert of each record gives -------------------------

struct ListCase {
    const char* what;
    int32_t bound;
    std::vector<std::pair<int32_t, int>> records; // (time, line) in table order
};

class ToList : public ::testing::TestWithParam<ListCase> {};

TEST_P(ToList, EqualsInsertingEachRecordInOrder) {
    const ListCase c = GetParam();
    auto save = std::make_unique<SetSave>();
    save->bound = c.bound;
    PlayPointList expected(c.bound);
    for (auto [time, line] : c.records) {
        const PlayPoint p{
            time, static_cast<uint8_t>(save->count), static_cast<uint8_t>(line), 0, 0, 0, 0, 0};
        save->records[save->count++] = p;
        expected.Insert(p);
    }
    const PlayPointList got = save->ToList();
    EXPECT_EQ(got.bound, expected.bound);
    ASSERT_EQ(got.count, expected.count);
    EXPECT_EQ(got.capacity, expected.capacity);
    EXPECT_EQ(std::memcmp(got.items, expected.items, sizeof(PlayPoint) * got.count), 0);
}

std::vector<std::pair<int32_t, int>> Many(int n, int sameTime) {
    std::vector<std::pair<int32_t, int>> r;
    for (int i = 0; i < n; ++i)
        r.emplace_back(i / sameTime * 16, i % sameTime);
    return r;
}

INSTANTIATE_TEST_SUITE_P(
    Orders, ToList,
    ::testing::Values(ListCase{"empty", 512, {}},
                      ListCase{"ascending", 512, {{0, 0}, {16, 1}, {32, 0}}},
                      ListCase{"equal times come back reversed", 512, {{64, 0}, {64, 1}, {64, 2}}},
                      ListCase{"out of order", 512, {{300, 1}, {0, 0}, {300, 0}, {100, 2}}},
                      ListCase{
                          "at and past the bound", 256, {{0, 0}, {255, 1}, {256, 2}, {999, 0}}},
                      ListCase{"a full step of 20", 100000, Many(20, 1)},
                      ListCase{"chords of four over 45 points", 100000, Many(45, 4)}),
    [](const auto& info) { return CaseName(info.param.what); });

} // namespace
