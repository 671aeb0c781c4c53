// Writes the demo instrument: one line for each sound of the bundled kit and
// five patterns to play the cue modes with. LOCK repeats the groove of
// pattern 1; NEXT with 2 queued moves to the fuller groove at the end of the
// pass; PROG with 1 1 2 3 plays two grooves and a one-measure fill in turn;
// <--- with 4 and 5 queued plays the breakdown, the final hit, and stops.
// The waves are named by their bare file names, which are found beside the
// instrument or in the default sound folder, wherever the kit is.
//
//     make_demo <kit folder> <output file>   (the repository keeps it as resources/demo.nst)
#include "engine/EngineLock.h"
#include "engine/SoundSystem.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/InstrumentFile.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"
#include "song/SamplePath.h"

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace {

enum Sound { Kick, Snare, ClosedHat, OpenHat, Clap, Tom, Rim, Cowbell, SoundCount };
const char* const Files[SoundCount] = {"kick.wav", "snare.wav", "closed-hat.wav", "open-hat.wav",
                                       "clap.wav", "tom.wav",   "rim.wav",        "cowbell.wav"};
// Each sound's place in the stereo field, in hundredths of a dB.
const int16_t Pans[SoundCount] = {0, 0, -2500, 2500, 800, -1500, 1500, -800};

// One pattern, written a measure of sixteenths at a time: 'x' a note at full
// volume, 'o' a softer one, '.' none.
class PatternText {
  public:
    explicit PatternText(int32_t measures) : list(measures * 256) {}

    PatternText& Line(Sound sound, const std::string& steps) {
        for (size_t i = 0; i < steps.size(); ++i) {
            if (steps[i] == '.')
                continue;
            PlayPoint p{};
            p.time = static_cast<int32_t>(i) * 16;
            p.line = static_cast<uint8_t>(sound);
            p.pan = Pans[sound];
            p.volume = steps[i] == 'o' ? -1500 : 0;
            list.InsertOrReplace(p);
        }
        return *this;
    }

    PlayPointList list;
};

void AddPatterns(PatternBank& bank) {
    const std::string kick = "x.....x...x.....x.....x...x...x.";
    const std::string backbeat = "....x.......x.......x.......x...";
    const std::string hats = "xoxoxoxoxoxoxoxoxoxoxoxoxoxoxoxo";
    PatternText groove(2);
    groove.Line(Kick, kick).Line(Snare, backbeat).Line(ClosedHat, hats);
    PatternText fuller(2);
    fuller.Line(Kick, kick)
        .Line(Snare, "....x..o....x.......x..o....x..o")
        .Line(Clap, backbeat)
        .Line(ClosedHat, "xoxoxox.xoxoxox.xoxoxox.xoxoxox.")
        .Line(OpenHat, ".......x.......x.......x.......x");
    PatternText fill(1);
    fill.Line(Kick, "x...............")
        .Line(Snare, "....o.o.x.x.xxxx")
        .Line(Tom, "x.x.x...........")
        .Line(OpenHat, "...............x");
    PatternText breakdown(2);
    breakdown.Line(Rim, "x..x..x...x..x..x..x..x...x.x.x.")
        .Line(Cowbell, "x.......x.......x.......x...x...")
        .Line(ClosedHat, "..x...x...x...x...x...x...x...xx");
    PatternText ending(1);
    ending.Line(Kick, "x...............")
        .Line(Clap, "x...............")
        .Line(OpenHat, "x...............");
    const PatternText* all[] = {&groove, &fuller, &fill, &breakdown, &ending};
    for (int32_t i = 0; i < 5; ++i)
        bank.SetPattern(i, all[i]->list);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_demo <kit folder> <output file>\n");
        return 2;
    }
    const std::string output = std::filesystem::absolute(argv[2]).string();
    // The waves are loaded by bare file name, so the file names them so.
    std::error_code error;
    std::filesystem::current_path(argv[1], error);
    if (error) {
        std::fprintf(stderr, "make_demo: %s: %s\n", argv[1], error.message().c_str());
        return 1;
    }
    SoundSystem sounds;
    auto instrument = std::make_unique<Instrument>();
    instrument->SetName("Demo Kit");
    for (const char* file : Files) {
        const int32_t lines = instrument->GetBank()->GetLineCount();
        sounds.LoadWave(file, SampleDisplayName(file), instrument->NewBufferForNewLine());
        if (instrument->GetBank()->GetLineCount() == lines) {
            std::fprintf(stderr, "make_demo: %s/%s cannot be loaded\n", argv[1], file);
            return 1;
        }
    }
    AddPatterns(*instrument->GetBank());
    int code = 0;
    try {
        SaveInstrumentAs(*instrument, output);
    } catch (const FileError& e) {
        std::fprintf(stderr, "make_demo: %s\n", e.what());
        code = 1;
    }
    std::lock_guard<EngineMutex> hold(theEngineLock);
    instrument.reset();
    return code;
}
