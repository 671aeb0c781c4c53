// Three instruments of the bundled kit rendered offline through the audio
// callback: a master in LOCK starts two followers in PROG at each of its
// pattern ends. Every note must start on the frame of its tick.
#include "SongFixture.h"
#include "engine/AudioCallback.h"
#include "engine/OfflineOutput.h"
#include "engine/SoundSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr int32_t Rate = 48000;
constexpr int32_t FramesPerTick = 240;

std::string KitSound(const char* name) {
    const char* source = std::getenv("OX_SOURCE_DIR");
    return std::string(source != nullptr ? source : ".") + "/resources/sounds/" + name + ".wav";
}

// Frames at which the output starts to sound after at least a tick of silence.
std::vector<int64_t> Onsets(const std::vector<float>& out) {
    std::vector<int64_t> onsets;
    int64_t silent = FramesPerTick;
    for (size_t i = 0; i < out.size(); i += 2) {
        const bool sounding = out[i] != 0.0f || out[i + 1] != 0.0f;
        if (sounding && silent >= FramesPerTick)
            onsets.push_back(static_cast<int64_t>(i / 2));
        silent = sounding ? 0 : silent + 1;
    }
    return onsets;
}

class KitScene {
  public:
    // Makes an instrument with one line holding the kit sound, at full
    // level or silent, and registers it.
    Instrument& Add(const char* sound, bool audible) {
        f.instruments.push_back(std::make_unique<Instrument>(&f.view));
        Instrument& inst = *f.instruments.back();
        inst.SetNumber(static_cast<int32_t>(f.instruments.size()));
        inst.SetLevel(0, audible ? 1.0 : 0.0);
        system.LoadWave(KitSound(sound), sound, inst.NewBufferForNewLine());
        EXPECT_EQ(inst.GetBank()->GetLineCount(), 1) << sound;
        f.engine.AddPlayhead(inst.GetSchedule()->GetPlayhead());
        return inst;
    }

    std::vector<float> Render(int64_t ticks) {
        AudioCallback callback(&f.engine, system.GetMixer());
        OfflineOutput output(Rate, 256);
        output.Start(callback);
        return output.Pull(ticks * FramesPerTick);
    }

    // Where a note on tick 0 of this sound first sounds, in frames.
    int64_t FirstSoundingFrame(const char* sound) {
        KitScene probe;
        Instrument& inst = probe.Add(sound, true);
        SongFixture::Store(inst, 0, {{0, 0}});
        inst.GetSequencer()->Restart();
        const std::vector<int64_t> onsets = Onsets(probe.Render(200));
        return onsets.empty() ? -1 : onsets[0];
    }

    // The scenario with only the instrument `solo` audible; its onsets.
    std::vector<int64_t> Scenario(int solo) {
        // Registry order: follower A, the master, follower B.
        Instrument& a = Add("snare", solo == 0);
        Instrument& master = Add("kick", solo == 1);
        Instrument& b = Add("closed-hat", solo == 2);
        SongFixture::Store(master, 0, {{0, 0}, {256, 0}}); // ticks 0 and 400
        SongFixture::Store(a, 0, {{128, 0}}, 1024);        // tick 200
        SongFixture::Store(a, 1, {{384, 0}}, 1024);        // tick 600
        SongFixture::Store(b, 0, {{0, 0}}, 1024);          // tick 0
        SongFixture::Store(b, 1, {{64, 0}}, 1024);         // tick 100
        for (Instrument* follower : {&a, &b}) {
            SequencerRow& s = *follower->GetSequencer();
            s.SetCueMode(SequencerRow::Prog);
            s.program[0] = 0;
            s.program[1] = 1;
        }
        for (Instrument* i : {&master, &a, &b})
            f.engine.AddHighlightedSequencer(i->GetSequencer());
        master.GetSequencer()->cueFlag = 1;
        master.GetSequencer()->Restart();
        return Onsets(Render(3200));
    }

    SongFixture f;
    SoundSystem system;
};

TEST(KitRender, MasterAndTwoFollowersInProgLandOnTheirTicks) {
    struct Expected {
        const char* sound;
        std::vector<int64_t> ticks;
    };
    // The master's pattern ends are at ticks 798, 1598 and 2398. Follower A
    // stands before the master in the registry and starts one tick later
    // (799, 1599, 2399); follower B stands behind it and starts in the same
    // tick. Both take program slots 1, 2, 1.
    const Expected expected[3] = {
        {"snare", {799 + 200, 1599 + 600, 2399 + 200}},
        {"kick", {0, 400, 800, 1200, 1600, 2000, 2400, 2800}},
        {"closed-hat", {798 + 0, 1598 + 100, 2398 + 0}},
    };
    for (int solo = 0; solo < 3; ++solo) {
        const int64_t offset = KitScene().FirstSoundingFrame(expected[solo].sound);
        ASSERT_GE(offset, 0) << expected[solo].sound;
        std::vector<int64_t> frames;
        for (int64_t tick : expected[solo].ticks)
            frames.push_back(tick * FramesPerTick + offset);
        KitScene run;
        EXPECT_EQ(run.Scenario(solo), frames) << expected[solo].sound;
    }
}

} // namespace
