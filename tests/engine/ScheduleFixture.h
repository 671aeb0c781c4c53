#pragma once

#include "engine/MixerCommand.h"
#include "engine/Schedule.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/PlayPointList.h"

#include <memory>
#include <vector>

// A schedule whose lines each have one loaded sound buffer on voice = line,
// and a record of every note started: (tick number, line).
class ScheduleFixture {
  public:
    static constexpr int Lines = 8;

    ScheduleFixture() {
        for (int i = 0; i < Lines; ++i) {
            buffers.push_back(std::make_unique<SoundBuffer>(nullptr));
            buffers[i]->SetLoaded(i, &queue, "s", "s.wav", 1000, 44100, 88200);
            buffers[i]->MarkReady();
            slots[i] = buffers[i].get();
            table[i] = &slots[i];
            counts[i] = 1;
        }
        schedule.SetLineTable(table, counts);
    }

    static PlayPoint Point(int32_t time, uint8_t line) {
        PlayPoint p{};
        p.time = time;
        p.line = line;
        return p;
    }

    // Compiles the points and starts (mode 1) or continues (mode 0).
    void Play(const std::vector<std::pair<int32_t, int>>& points, int32_t lengthUnits,
              uint8_t mode = 1, int32_t position = 0) {
        PlayPointList list(lengthUnits);
        for (auto [time, line] : points)
            list.InsertOrReplace(Point(time, static_cast<uint8_t>(line)));
        schedule.StagePattern(list);
        schedule.CommitPattern(mode, position);
    }

    // Runs n ticks; each started note is recorded with the count of ticks
    // run before it (its tick number since the fixture began).
    void Run(int n) {
        for (int i = 0; i < n; ++i) {
            schedule.playhead.Tick();
            Collect(tickNumber++);
        }
    }

    void Collect(int64_t at) {
        MixerCommand c;
        while (queue.Pop(c))
            if (c.kind == MixerCommand::Play)
                fired.emplace_back(at, c.voice);
    }

    MixerCommandQueue queue;
    std::vector<std::unique_ptr<SoundBuffer>> buffers;
    SoundBuffer* slots[Lines];
    SoundBuffer** table[Lines];
    int8_t counts[Lines];
    Schedule schedule;
    int64_t tickNumber = 0;
    std::vector<std::pair<int64_t, int>> fired;
};
