#pragma once

#include "engine/Engine.h"
#include "engine/Mixer.h"
#include "engine/Schedule.h"
#include "engine/SoundBuffer.h"
#include "song/PlayPointList.h"

#include <memory>
#include <vector>

// An engine with one instrument whose lines each play a one-frame click of
// their own height, (line + 1) / 8, so every onset in the output tells which
// lines started on that frame. The pattern is compiled and starts at tick 0.
class ClickKit {
  public:
    static constexpr int Lines = 4;

    ClickKit(Mixer& mixer, int32_t clickRate, const std::vector<PlayPoint>& points,
             int32_t lengthUnits) {
        for (int i = 0; i < Lines; ++i) {
            SampleData* click = new SampleData(1, 1, clickRate, 2);
            click->samples[0] = Height(i);
            const int32_t voice = mixer.Attach(click);
            buffers.push_back(std::make_unique<SoundBuffer>(nullptr));
            buffers[i]->SetLoaded(voice, mixer.Commands(), "click", "click.wav", 1, clickRate,
                                  2 * clickRate);
            buffers[i]->MarkReady();
            slots[i] = buffers[i].get();
            table[i] = &slots[i];
            counts[i] = 1;
        }
        schedule.SetLineTable(table, counts);
        PlayPointList list(lengthUnits);
        for (const PlayPoint& p : points)
            list.InsertOrReplace(p);
        schedule.StagePattern(list);
        schedule.CommitPattern(1, 0);
        engine.AddPlayhead(schedule.GetPlayhead());
    }

    static float Height(int line) { return static_cast<float>(line + 1) / 8.0f; }

    static PlayPoint Note(int32_t time, int line) {
        PlayPoint p{};
        p.time = time;
        p.line = static_cast<uint8_t>(line);
        return p;
    }

    // The sum of click heights that tick k starts, from the compiled arrays:
    // the playhead stands at k modulo the pattern's length on the k-th tick.
    float HeightAtTick(int64_t k) const {
        float sum = 0.0f;
        const int64_t position = k % schedule.lengthTicks;
        for (int32_t i = 0; i < schedule.count; ++i)
            if (schedule.ticks[i] == position)
                sum += Height(schedule.events[i].line);
        return sum;
    }

    Engine engine;
    Schedule schedule;
    std::vector<std::unique_ptr<SoundBuffer>> buffers;
    SoundBuffer* slots[Lines];
    SoundBuffer** table[Lines];
    int8_t counts[Lines];
};

// Onsets in a float stereo buffer: frames whose left sample is not zero after
// a silent frame, with the left sample's value.
inline std::vector<std::pair<int64_t, float>> Onsets(const float* out, int64_t frames) {
    std::vector<std::pair<int64_t, float>> found;
    for (int64_t f = 0; f < frames; ++f)
        if (out[2 * f] != 0.0f && (f == 0 || out[2 * f - 2] == 0.0f))
            found.emplace_back(f, out[2 * f]);
    return found;
}
