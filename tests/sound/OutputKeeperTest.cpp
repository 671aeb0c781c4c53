// The keeper's choice of output and its retries, over outputs that open,
// fail or go away as a test says.
#include "engine/OutputKeeper.h"
#include "engine/AudioCallback.h"
#include "engine/Mixer.h"

#include <gtest/gtest.h>

namespace {

class FakeOutput : public AudioOutput {
  public:
    FakeOutput(const char* system, bool works) : system(system), works(works) {}

    bool Start(AudioCallback& callback) override {
        ++starts;
        if (!works)
            return false;
        callback.Prepare(44100);
        running = true;
        lost = false;
        return true;
    }
    void Stop() override { running = false; }
    int32_t SampleRate() const override { return 44100; }
    int32_t PeriodFrames() const override { return 441; }
    std::string Describe() const override { return DescribeDevice(system, 44100, 441); }
    bool Lost() override { return lost; }
    std::string Failure() const override { return works ? "" : system + ": not there"; }

    std::string system;
    bool works;
    bool lost = false;
    bool running = false;
    int starts = 0;
};

struct Fixture {
    Fixture(bool jackWorks, bool pulseWorks) : callback(nullptr, mixer) {
        OutputKeeper::Outputs outputs;
        outputs.push_back(std::make_unique<FakeOutput>("JACK", jackWorks));
        outputs.push_back(std::make_unique<FakeOutput>("PulseAudio", pulseWorks));
        jack = static_cast<FakeOutput*>(outputs[0].get());
        pulse = static_cast<FakeOutput*>(outputs[1].get());
        keeper = std::make_unique<OutputKeeper>(callback, std::move(outputs));
    }
    Mixer mixer;
    AudioCallback callback;
    FakeOutput* jack;
    FakeOutput* pulse;
    std::unique_ptr<OutputKeeper> keeper;
};

TEST(OutputKeeper, OpensTheFirstThatWorksOrSaysWhyNone) {
    Fixture none(false, false);
    EXPECT_FALSE(none.keeper->Open());
    EXPECT_EQ(none.keeper->Failure(), "JACK: not there; PulseAudio: not there");

    Fixture second(false, true);
    ASSERT_TRUE(second.keeper->Open());
    EXPECT_EQ(second.keeper->Current(), second.pulse);
    EXPECT_EQ(second.keeper->StatusText(),
              "Sound: PulseAudio, 44100 Hz, 441 frames (10.0 ms)    Late ticks: 0    "
              "Dropped notes: 0");
}

TEST(OutputKeeper, ALostOutputIsRetriedEverySecondFromTheFirst) {
    Fixture f(true, false);
    ASSERT_TRUE(f.keeper->Open());
    EXPECT_TRUE(f.keeper->Check());
    EXPECT_EQ(f.jack->starts, 1);

    f.jack->lost = true;
    f.jack->works = false;
    EXPECT_FALSE(f.keeper->Check());
    EXPECT_FALSE(f.jack->running);
    EXPECT_FALSE(f.keeper->Check());
    EXPECT_EQ(f.jack->starts, 3);
    EXPECT_EQ(f.pulse->starts, 2);
    EXPECT_EQ(f.keeper->StatusText(), "No sound: the JACK output went away. Trying JACK, "
                                      "PulseAudio and ALSA again every second (2 tries)    "
                                      "Late ticks: 0    Dropped notes: 0");

    f.jack->works = true;
    EXPECT_TRUE(f.keeper->Check());
    EXPECT_EQ(f.keeper->Current(), f.jack);
    EXPECT_TRUE(f.jack->running);
}

} // namespace
