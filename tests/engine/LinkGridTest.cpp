// The tick grid on a session's beats, driven tick by tick as the JACK output
// drives it, with a first instrument of four measures (1024 units) held back
// for a bar and started there. Each measure start's frame is turned back into
// a beat by the session's tempo, worked out here on its own: it must fall on
// a bar to the frame, also across a tempo change of the session followed by
// the instruments' own change.
#include "engine/LinkGrid.h"
#include "engine/TickTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

constexpr int32_t Rate = 48000;
constexpr double FramesPerTick = Rate / 200.0;
constexpr int32_t Units = 1024;

struct Case {
    double bpm;
    double newBpm;    // the session's tempo from tick Change on
    int64_t change;   // -1: none
    double startBeat; // the session's beat at frame 0
};

// The session: a beat line that changes its slope at one frame.
struct Session {
    double bpm, newBpm, startBeat;
    int64_t changeFrame = INT64_MAX;
    double BeatsPerFrame(double b) const { return b / 60.0 / Rate; }
    double BeatAt(int64_t frame) const {
        if (frame <= changeFrame)
            return startBeat + static_cast<double>(frame) * BeatsPerFrame(bpm);
        return BeatAt(changeFrame) +
               static_cast<double>(frame - changeFrame) * BeatsPerFrame(newBpm);
    }
    BeatLine LineAt(int64_t frame) const {
        return {frame, BeatAt(frame), BeatsPerFrame(frame <= changeFrame ? bpm : newBpm)};
    }
};

struct Measure {
    int64_t frame;
    bool afterChange; // in a pass that began after the instruments' change
};

std::vector<Measure> Play(const Case& c, std::vector<int64_t>& frames) {
    Session session{c.bpm, c.newBpm, c.startBeat};
    TickGrid grid;
    TickGrid::First first{false, 0, 0, 60000.0 / c.bpm};
    const auto lengthOf = [](double stepMs) { return TimeUnits::CompiledLength(Units, stepMs); };
    std::vector<Measure> measures;
    bool held = true, changed = false, passAfterChange = false;
    int64_t frame = 0;
    for (int64_t tick = 0; tick < 40000; ++tick) {
        BeatLine line = session.LineAt(frame);
        if (tick == 0)
            grid.Anchor(0, line.beat, line.beatsPerFrame * FramesPerTick);
        frame = std::max(frame, line.FrameOf(grid.BeatOf(tick)));
        frames.push_back(frame);
        if (c.change >= 0 && tick == c.change)
            session.changeFrame = frame;
        // The instruments follow the session a little later, as the GUI does.
        if (c.change >= 0 && tick == c.change + 20) {
            first.stepMs = 60000.0 / c.newBpm;
            first.lengthTicks = TimeUnits::TempoLength(Units, first.stepMs);
            first.position = first.position < first.lengthTicks ? first.position : 0;
            changed = true;
        }
        if (first.running) {
            const int32_t p = first.position;
            if (p == 0)
                passAfterChange = changed;
            if (p == 0 || TickGrid::NextMeasure(p - 1, first.lengthTicks, first.stepMs) == p)
                measures.push_back({frame, passAfterChange});
            first.position = p + 1 == first.lengthTicks ? 0 : p + 1;
        } else if (held && grid.BarAhead(tick)) {
            held = false;
            first = {true, 0, lengthOf(first.stepMs), first.stepMs};
        }
        grid.Follow(tick, first, session.LineAt(frame).beatsPerFrame * FramesPerTick);
    }
    return measures;
}

class LinkGridTest : public testing::TestWithParam<Case> {};

TEST_P(LinkGridTest, MeasureStartsFallOnBarsAndTicksStayEven) {
    const Case& c = GetParam();
    std::vector<int64_t> frames;
    const std::vector<Measure> measures = Play(c, frames);
    Session session{c.bpm, c.newBpm, c.startBeat};
    if (c.change >= 0)
        session.changeFrame = frames[static_cast<size_t>(c.change)];
    ASSERT_GT(measures.size(), 60u);
    int judged = 0;
    for (const Measure& m : measures) {
        if (c.change >= 0 && m.frame > session.changeFrame && !m.afterChange)
            continue; // the pass in which the tempo changed
        const double beat = session.BeatAt(m.frame);
        const double bpm = m.frame > session.changeFrame ? c.newBpm : c.bpm;
        const double off = (beat - TickGrid::NearestBar(beat)) * 60.0 * Rate / bpm;
        ASSERT_LE(std::fabs(off), 1.0) << "measure start at frame " << m.frame;
        ++judged;
    }
    EXPECT_GT(judged, 50);
    // No burst and no pause: every tick lasts between half and twice 5 ms.
    for (size_t i = 1; i < frames.size(); ++i) {
        ASSERT_GE(frames[i] - frames[i - 1], FramesPerTick * TickGrid::MinStretch) << "tick " << i;
        ASSERT_LE(frames[i] - frames[i - 1], FramesPerTick * TickGrid::MaxStretch) << "tick " << i;
    }
}

// 130 BPM: a bar is 88615.38 frames, not a whole number of ticks; 97.3 BPM:
// neither are its measures' ticks (493.3); tempo changes up and down mid-pass.
INSTANTIATE_TEST_SUITE_P(Tempos, LinkGridTest,
                         testing::Values(Case{130.0, 130.0, -1, 1.3}, Case{97.3, 97.3, -1, 0.0},
                                         Case{120.0, 130.0, 5000, 2.5},
                                         Case{130.0, 97.3, 7777, 0.0}));

TEST(TickGrid, NextMeasureIsTheTickOfTheMeasuresFirstUnit) {
    const double stepMs = 60000.0 / 97.3; // measures at 493, 986, 1479; length 1973
    const int32_t length = TimeUnits::CompiledLength(Units, stepMs);
    const struct {
        int32_t position, next;
    } cases[] = {{0, 493}, {492, 493}, {493, 986}, {1479, length}, {length - 1, length}};
    for (const auto& t : cases)
        EXPECT_EQ(TickGrid::NextMeasure(t.position, length, stepMs), t.next) << t.position;
}

} // namespace
