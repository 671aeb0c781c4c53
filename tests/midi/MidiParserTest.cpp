#include "engine/MidiParser.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Msgs = std::vector<std::vector<uint8_t>>; // status, data1, data2

struct Case {
    const char* what;
    Bytes bytes;
    Msgs expected;
};

Bytes Repeated(Bytes head, uint8_t fill, size_t n, Bytes tail) {
    head.insert(head.end(), n, fill);
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

const Case Cases[] = {
    {"running status",
     {0x90, 36, 100, 38, 90, 36, 0},
     {{0x90, 36, 100}, {0x90, 38, 90}, {0x80, 36, 0}}},
    {"real-time inside a message and between running-status messages",
     {0x91, 0xF8, 40, 0xFA, 127, 41, 0xFC, 1},
     {{0xF8, 0, 0}, {0xFA, 0, 0}, {0x91, 40, 127}, {0xFC, 0, 0}, {0x91, 41, 1}}},
    {"one data byte: program change and channel pressure",
     {0xC2, 5, 6, 0xD0, 7},
     {{0xC2, 5, 0}, {0xC2, 6, 0}, {0xD0, 7, 0}}},
    {"a long SysEx is skipped, a clock inside it passes",
     Repeated({0xF0}, 0x11, 5000, {0xF8, 0x22, 0xF7, 0xB0, 64, 127}),
     {{0xF8, 0, 0}, {0xB0, 64, 127}}},
    {"an unterminated SysEx ends at the next status", {0xF0, 1, 2, 0x90, 60, 1}, {{0x90, 60, 1}}},
    {"system common passes and ends running status",
     {0x90, 60, 1, 0xF2, 3, 4, 61, 2, 0xF1, 9, 0xF6, 0xF3, 5, 62},
     {{0x90, 60, 1}, {0xF2, 3, 4}, {0xF1, 9, 0}, {0xF6, 0, 0}, {0xF3, 5, 0}}},
    {"stray data and an undefined status are dropped", {1, 2, 0xF4, 3, 0xF7, 4, 0xB3, 7}, {}},
    {"a message cut by a new status is dropped", {0x90, 60, 0xB0, 1, 2}, {{0xB0, 1, 2}}},
};

TEST(MidiParser, TurnsByteStreamsIntoMessages) {
    for (const Case& c : Cases) {
        MidiParser parser;
        Msgs got;
        MidiMessage m;
        for (uint8_t b : c.bytes)
            if (parser.Feed(b, m))
                got.push_back({m.status, m.data1, m.data2});
        EXPECT_EQ(got, c.expected) << c.what;
    }
}

} // namespace
