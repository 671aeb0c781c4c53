#include "song/PlayPointList.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

PlayPoint Point(int32_t time, uint8_t line, int16_t volume = 0) {
    PlayPoint p{};
    p.time = time;
    p.line = line;
    p.volume = volume;
    return p;
}

// (time, line) of every point, in list order.
std::vector<std::pair<int32_t, int>> Contents(const PlayPointList& list) {
    std::vector<std::pair<int32_t, int>> out;
    for (int32_t i = 0; i < list.count; ++i)
        out.emplace_back(list.items[i].time, list.items[i].line);
    return out;
}

void Fill(PlayPointList& list, int32_t n) {
    for (int32_t i = 0; i < n; ++i)
        list.Insert(Point(i, 0));
}

TEST(PlayPointList, BoundDropsPointsAtOrPastIt) {
    PlayPointList list;
    list.Insert(Point(511, 0));
    list.Insert(Point(512, 0));
    list.InsertOrReplace(Point(600, 1));
    EXPECT_EQ(Contents(list), (std::vector<std::pair<int32_t, int>>{{511, 0}}));
}

TEST(PlayPointList, EqualTimesInsertBeforeAndReplaceBehind) {
    PlayPointList insert;
    insert.Insert(Point(10, 1));
    insert.Insert(Point(10, 2));
    EXPECT_EQ(Contents(insert), (std::vector<std::pair<int32_t, int>>{{10, 2}, {10, 1}}));

    PlayPointList replace;
    replace.InsertOrReplace(Point(10, 1));
    replace.InsertOrReplace(Point(10, 2));
    replace.InsertOrReplace(Point(5, 3));
    EXPECT_EQ(Contents(replace), (std::vector<std::pair<int32_t, int>>{{5, 3}, {10, 1}, {10, 2}}));
}

TEST(PlayPointList, InsertOrReplaceOverwritesTheSameIdentity) {
    PlayPointList list;
    list.InsertOrReplace(Point(10, 1, -100));
    list.InsertOrReplace(Point(10, 2, -200));
    list.InsertOrReplace(Point(10, 1, -300));
    ASSERT_EQ(list.count, 2);
    EXPECT_EQ(list.GetAt(0).volume, -300);
    EXPECT_EQ(list.GetAt(1).volume, -200);
}

TEST(PlayPointList, RemoveMatchesTimeAndLineOnly) {
    PlayPointList list;
    list.Insert(Point(10, 1));
    list.Insert(Point(10, 2));
    list.Remove(Point(10, 3));
    list.Remove(Point(11, 1));
    EXPECT_EQ(list.count, 2);
    list.Remove(Point(10, 1));
    list.Remove(Point(10, 1));
    EXPECT_EQ(Contents(list), (std::vector<std::pair<int32_t, int>>{{10, 2}}));
    list.InsertOrReplace(Point(10, 1));
    EXPECT_EQ(list.count, 2);
}

TEST(PlayPointList, RangeRemovals) {
    PlayPointList list;
    for (int32_t t : {0, 10, 20, 30})
        for (uint8_t line : {0, 1})
            list.InsertOrReplace(Point(t, line));

    PlayPointList byLine(list);
    byLine.RemoveRangeOfLine(10, 20, 1);
    EXPECT_EQ(Contents(byLine), (std::vector<std::pair<int32_t, int>>{
                                    {0, 0}, {0, 1}, {10, 0}, {20, 0}, {30, 0}, {30, 1}}));

    PlayPointList all(list);
    all.RemoveRange(5, 25);
    EXPECT_EQ(Contents(all),
              (std::vector<std::pair<int32_t, int>>{{0, 0}, {0, 1}, {30, 0}, {30, 1}}));

    PlayPointList untouched(list);
    untouched.RemoveRange(25, 5);
    untouched.RemoveRange(31, 40);
    untouched.RemoveRangeOfLine(31, 40, 0);
    EXPECT_EQ(untouched.count, 8);
}

struct QueryCase {
    int32_t first, last;
    int32_t count, findFirst, findLast;
};

class PlayPointListQuery : public testing::TestWithParam<QueryCase> {};

TEST_P(PlayPointListQuery, CountFindAndCopyAgree) {
    const QueryCase c = GetParam();
    PlayPointList list;
    for (int32_t t : {0, 10, 10, 20, 40})
        list.Insert(Point(t, static_cast<uint8_t>(t % 7)));
    EXPECT_EQ(list.CountInRange(c.first, c.last), c.count);
    EXPECT_EQ(list.FindFirst(c.first, c.last), c.findFirst);
    EXPECT_EQ(list.FindLast(c.first, c.last), c.findLast);
    PlayPoint* copy = nullptr;
    EXPECT_EQ(list.CopyRange(c.first, c.last, &copy), c.count);
    if (c.count > 0) {
        EXPECT_EQ(copy[0].time, list.GetAt(c.findFirst).time);
        EXPECT_EQ(copy[c.count - 1].time, list.GetAt(c.findLast).time);
    }
    delete[] copy;
}

INSTANTIATE_TEST_SUITE_P(Ranges, PlayPointListQuery,
                         testing::Values(QueryCase{0, 40, 5, 0, 4}, QueryCase{10, 10, 2, 1, 2},
                                         QueryCase{11, 19, 0, -1, -1}, QueryCase{20, 10, 0, -1, -1},
                                         QueryCase{41, 100, 0, -1, -1}, QueryCase{-5, 0, 1, 0, 0}));

TEST(PlayPointList, EmptyListQueriesAndBadIndexes) {
    PlayPointList list;
    PlayPoint* copy = nullptr;
    EXPECT_EQ(list.CountInRange(0, 100), 0);
    EXPECT_EQ(list.CopyRange(0, 100, &copy), 0);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(list.FindFirst(0, 100), -1);
    EXPECT_EQ(list.FindLast(0, 100), -1);
    list.Insert(Point(3, 0));
    EXPECT_EQ(list.GetAt(-1).time, -1);
    EXPECT_EQ(list.GetAt(1).time, -1);
    EXPECT_EQ(list.GetAt(0).time, 3);
}

TEST(PlayPointList, LoweredBoundKeepsPointsAndCopiesKeepThem) {
    PlayPointList list(1024);
    list.Insert(Point(900, 0));
    list.SetBound(0);
    EXPECT_EQ(list.bound, 1024);
    list.SetBound(512);
    EXPECT_EQ(list.GetAt(0).time, 900);
    PlayPointList copy(list);
    PlayPointList assigned;
    assigned.Assign(list);
    EXPECT_EQ(copy.GetAt(0).time, 900);
    EXPECT_EQ(assigned.bound, 512);
    EXPECT_EQ(assigned.GetAt(0).time, 900);
    list.Insert(Point(600, 0));
    EXPECT_EQ(list.count, 1);
}

TEST(PlayPointList, ClearAndCloseLineGap) {
    PlayPointList list;
    list.Insert(Point(1, 0));
    list.Insert(Point(2, 2));
    list.Insert(Point(3, 3));
    list.CloseLineGap(2);
    EXPECT_EQ(Contents(list), (std::vector<std::pair<int32_t, int>>{{1, 0}, {2, 2}, {3, 2}}));
    Fill(list, 30);
    list.Clear();
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.bound, 512);
}

// A list of several lines against a batch of one line's points: the batch
// insert must leave exactly what inserting the points one by one leaves.
struct BatchCase {
    const char* name;
    std::vector<std::pair<int32_t, int>> existing;
    std::vector<int32_t> batch; // times on line 1
    bool replace;
};

class PlayPointListBatch : public testing::TestWithParam<BatchCase> {};

TEST_P(PlayPointListBatch, SameAsOneByOne) {
    const BatchCase& c = GetParam();
    PlayPointList one(1024), all(1024);
    for (auto [t, l] : c.existing) {
        PlayPoint p{};
        p.time = t;
        p.line = static_cast<uint8_t>(l);
        p.volume = -1;
        one.Insert(p);
        all.Insert(p);
    }
    std::vector<PlayPoint> batch;
    for (int32_t t : c.batch) {
        PlayPoint p{};
        p.time = t;
        p.line = 1;
        batch.push_back(p);
        c.replace ? one.InsertOrReplace(p) : one.Insert(p);
    }
    all.InsertSorted(batch.data(), static_cast<int32_t>(batch.size()), c.replace);
    ASSERT_EQ(all.count, one.count);
    for (int32_t i = 0; i < one.count; ++i) {
        EXPECT_EQ(all.items[i].time, one.items[i].time) << i;
        EXPECT_EQ(all.items[i].line, one.items[i].line) << i;
        EXPECT_EQ(all.items[i].volume, one.items[i].volume) << i;
    }
}

std::vector<int32_t> Every(int32_t from, int32_t step, int32_t n) {
    std::vector<int32_t> out;
    for (int32_t i = 0; i < n; ++i)
        out.push_back(from + i * step);
    return out;
}

INSTANTIATE_TEST_SUITE_P(
    Table, PlayPointListBatch,
    testing::Values(
        BatchCase{"IntoEmpty", {}, Every(0, 10, 45), false},
        BatchCase{
            "SameTimesOtherLines", {{10, 0}, {10, 2}, {20, 0}, {500, 3}}, {5, 10, 20, 30}, false},
        BatchCase{"ReplaceOwnLineAddBehindOthers",
                  {{10, 0}, {10, 1}, {20, 2}, {20, 1}, {30, 0}},
                  {10, 20, 25, 30, 40},
                  true},
        BatchCase{"PastTheBoundDropped", {{1000, 0}}, {990, 1023, 1024, 2000}, false},
        BatchCase{"ReplaceAllInPlace", {{0, 1}, {64, 1}, {128, 1}}, {0, 64, 128}, true},
        BatchCase{"Interleaved", {{1, 0}, {3, 0}, {5, 0}, {7, 0}}, Every(0, 2, 30), true}),
    [](const auto& info) { return info.param.name; });

} // namespace
