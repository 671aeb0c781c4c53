#include "engine/RenderCommand.h"

#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/OfflineOutput.h"
#include "engine/Schedule.h"
#include "engine/SequencerRow.h"
#include "engine/SoundSystem.h"
#include "engine/SyncSwitches.h"
#include "song/DiskFile.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/InstrumentFile.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

static_assert(std::endian::native == std::endian::little, "the WAV data is written as it is");

namespace {

// Frames pulled at a time; the tick grid does not depend on it.
constexpr int32_t Period = 4096;
// RIFF header, an 18-byte format chunk, a "fact" chunk and the data chunk's head.
constexpr uint32_t HeaderBytes = 58;

void PutWaveHeader(uint8_t* h, int32_t rate, uint32_t frames) {
    const uint32_t dataBytes = frames * 8;
    const auto text = [&](int at, const char* id) {
        for (int i = 0; i < 4; ++i)
            h[at + i] = static_cast<uint8_t>(id[i]);
    };
    text(0, "RIFF");
    PutLE(h + 4, HeaderBytes - 8 + dataBytes, 4);
    text(8, "WAVE");
    text(12, "fmt ");
    PutLE(h + 16, 18, 4);
    PutLE(h + 20, 3, 2); // IEEE float
    PutLE(h + 22, 2, 2);
    PutLE(h + 24, static_cast<uint32_t>(rate), 4);
    PutLE(h + 28, static_cast<uint32_t>(rate) * 8, 4);
    PutLE(h + 32, 8, 2);
    PutLE(h + 34, 32, 2);
    PutLE(h + 36, 0, 2);
    text(38, "fact");
    PutLE(h + 42, 4, 4);
    PutLE(h + 46, frames, 4);
    text(50, "data");
    PutLE(h + 54, dataBytes, 4);
}

// The engine and the instruments of one render. The instruments go first, and
// under the engine lock: their sound buffers hand their samples back to the
// mixer, whose command queue only the lock's holder may fill.
struct Session {
    Session() : previousEngine(theEngine) { theEngine = &engine; }
    ~Session() {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        for (auto& i : instruments)
            engine.RemovePlayhead(i->GetSchedule()->GetPlayhead());
        instruments.clear();
        theEngine = previousEngine;
    }

    Engine* previousEngine;
    Engine engine;
    SoundSystem sounds;
    std::vector<std::unique_ptr<Instrument>> instruments;
};

// After the Load command's AddInstrument, Mute and Unmute, the level of the
// options, the common tempo, then the pattern from tick 0 as Enter starts it.
void Start(Session& s, Instrument& instrument, const RenderOptions& options) {
    std::lock_guard<EngineMutex> hold(theEngineLock);
    instrument.AttachView(nullptr);
    instrument.Mute();
    instrument.Unmute();
    instrument.SetLevel(0, options.level);
    instrument.SetNumber(static_cast<int32_t>(s.instruments.size()));
    instrument.GetSchedule()->SetTempo(60000.0 / options.bpm);
    s.engine.AddPlayhead(instrument.GetSchedule()->GetPlayhead());
    SequencerRow* sequencer = instrument.GetSequencer();
    sequencer->SetCueMode(SequencerRow::Lock);
    sequencer->currentNumber = static_cast<uint8_t>(options.pattern);
    sequencer->Restart();
}

// The frames to render: as asked, or one pass of the longest pattern.
int64_t FramesToRender(const Session& s, const RenderOptions& options) {
    if (options.seconds > 0.0)
        return std::llround(options.seconds * options.rate);
    int32_t longest = 0;
    for (const auto& i : s.instruments)
        longest = std::max(longest, i->schedule.lengthTicks);
    return AudioCallback::TickFrame(longest, options.rate);
}

// The peak the output is scaled to by --normalize: -1 dBFS.
constexpr float NormalizedPeak = 0.89125094f;

float PeakOf(const float* samples, size_t n) {
    float peak = 0.0f;
    for (size_t i = 0; i < n; ++i)
        peak = std::max(peak, std::fabs(samples[i]));
    return peak;
}

// One render of the options' instruments: loads them, starts them, then
// hands the number of frames to begin and every period of interleaved float
// stereo, in order, to period. Returns 0; or 1, with the reason in error,
// when an instrument file is refused or the output would not fit.
int Pull(const RenderOptions& options, std::string& error,
         const std::function<void(uint32_t frames)>& begin,
         const std::function<void(const float* samples, uint32_t frames)>& period) {
    Session s;
    for (const std::string& path : options.files) {
        s.instruments.push_back(LoadInstrument(path, &s.sounds));
        Start(s, *s.instruments.back(), options);
        // No output runs yet, so this thread may drain the mixer's queue,
        // which a long list of instruments could otherwise fill.
        s.sounds.GetMixer().ApplyCommands();
    }
    const int64_t frames = FramesToRender(s, options);
    if (frames * 8 > static_cast<int64_t>(UINT32_MAX - HeaderBytes)) {
        error = options.output +
                ": that much sound does not fit in one WAV file; ask for fewer seconds";
        return 1;
    }
    begin(static_cast<uint32_t>(frames));
    OfflineOutput output(options.rate, Period);
    AudioCallback callback(&s.engine, s.sounds.GetMixer());
    output.Start(callback);
    for (uint32_t done = 0; done < frames;) {
        const uint32_t n = std::min<uint32_t>(static_cast<uint32_t>(frames) - done, Period);
        period(output.PullPeriod(), n);
        done += n;
    }
    output.Stop();
    return 0;
}

} // namespace

int Render(const RenderOptions& options, std::string& error, float* peak) {
    try {
        float scale = static_cast<float>(std::pow(10.0, options.gainDb / 20.0));
        if (options.normalize) {
            // A first pass finds the peak of the whole render.
            float found = 0.0f;
            const int code = Pull(
                options, error, [](uint32_t) {},
                [&](const float* samples, uint32_t n) {
                    found = std::max(found, PeakOf(samples, 2 * static_cast<size_t>(n)));
                });
            if (code != 0)
                return code;
            if (found > 0.0f)
                scale *= NormalizedPeak / found;
        }
        std::unique_ptr<ReplacingFile> file;
        std::vector<float> scaled(2 * static_cast<size_t>(Period));
        float written = 0.0f;
        const int code = Pull(
            options, error,
            [&](uint32_t frames) {
                file = std::make_unique<ReplacingFile>(options.output);
                uint8_t header[HeaderBytes];
                PutWaveHeader(header, options.rate, frames);
                file->Write(header, HeaderBytes);
            },
            [&](const float* samples, uint32_t n) {
                const size_t count = 2 * static_cast<size_t>(n);
                for (size_t i = 0; i < count; ++i)
                    scaled[i] = samples[i] * scale;
                written = std::max(written, PeakOf(scaled.data(), count));
                file->Write(scaled.data(), sizeof(float) * count);
            });
        if (code != 0)
            return code;
        file->Commit();
        if (peak != nullptr)
            *peak = written;
    } catch (const FileError& e) {
        error = e.what();
        return 1;
    }
    return 0;
}

int RenderMain(int argc, const char* const* argv) {
    RenderOptions options;
    const std::string refused = ParseRenderOptions(argc - 1, argv + 1, options);
    if (!refused.empty()) {
        std::fprintf(stderr, "oxbowlantern: %s\n", refused.c_str());
        return 2;
    }
    if (options.help) {
        std::fputs(RenderUsage().c_str(), stdout);
        std::fputs(SyncUsage().c_str(), stdout);
        return 0;
    }
    if (options.version) {
        std::puts("oxbowlantern " OX_VERSION);
        return 0;
    }
    std::string error;
    float peak = 0.0f;
    const int code = Render(options, error, &peak);
    if (code != 0)
        std::fprintf(stderr, "oxbowlantern: %s\n", error.c_str());
    else if (peak > 1.0f)
        // Written as it is: the file holds floats, which keep what is above
        // full scale; a player or a conversion to integers clips it.
        std::fprintf(
            stderr,
            "oxbowlantern: the output clips: its peak reaches %+.2f dBFS (%.3f of full scale)\n",
            20.0 * std::log10(peak), peak);
    return code;
}
