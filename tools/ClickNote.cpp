// The helper of tools/click_note.sh, which clicks a note onto a line of the
// running program while its pattern plays and checks what is heard.
//
//     click_note where SHOT.ppm TIME SHOWN_UNITS
//         The lowest line row in a screenshot (binary PPM): its time axis is
//         the longest run of black pixels right of the name column. Prints
//         "x y", the pixel that lands on TIME when SHOWN_UNITS time units
//         span the axis.
//     click_note add IN.nst OUT.nst LINE TIME
//         Writes the instrument with a note of default values added to its
//         first pattern.
//     click_note check CAPTURE.wav BEFORE.wav AFTER.wav PASS_SECONDS NOTE_SECONDS
//         With the takes lined up at their first sounding frame, around the
//         note's place (from 10 ms before it to 200 ms after): in the first
//         pass the capture must be the render without the note, in the
//         second the render with it, frame for frame, and the note must make
//         a difference there. Only that window counts, so that a late tick
//         elsewhere on a loaded machine does not decide.
#include "engine/EngineLock.h"
#include "engine/SoundSystem.h"
#include "engine/WaveFile.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/InstrumentFile.h"
#include "song/PatternBank.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

namespace {

int Where(const char* shot, int32_t time, int32_t units) {
    std::ifstream in(shot, std::ios::binary);
    std::string magic;
    int width = 0, height = 0, maxValue = 0;
    in >> magic >> width >> height >> maxValue;
    in.get();
    std::vector<unsigned char> rgb(static_cast<size_t>(width) * height * 3);
    in.read(reinterpret_cast<char*>(rgb.data()), static_cast<std::streamsize>(rgb.size()));
    if (magic != "P6" || maxValue != 255 || !in) {
        std::fprintf(stderr, "click_note: %s is no binary PPM\n", shot);
        return 1;
    }
    auto black = [&](int x, int y) {
        const unsigned char* p = &rgb[(static_cast<size_t>(y) * width + x) * 3];
        return p[0] == 0 && p[1] == 0 && p[2] == 0;
    };
    // The lowest such run is the last line's axis: the name column's cells
    // are shorter, and the frames of the other rows stand higher up.
    int bestY = -1, bestStart = 0, bestEnd = 0;
    for (int y = 0; y < height; ++y) {
        int x = 0;
        while (x < width) {
            if (!black(x, y)) {
                ++x;
                continue;
            }
            const int start = x;
            while (x < width && black(x, y))
                ++x;
            // An axis, not a frame: it is long and stops short of the row's
            // right edge by 10 pixels of white.
            if (x - start > width / 3 && x + 2 < width && !black(x + 2, y)) {
                bestY = y;
                bestStart = start;
                bestEnd = x - 1;
            }
        }
    }
    if (bestY < 0) {
        std::fprintf(stderr, "click_note: no line row in %s\n", shot);
        return 1;
    }
    // The axis runs from L + 7 to R - 10 and is R - L - 17 wide.
    const double w = bestEnd - bestStart;
    std::printf("%d %d\n", bestStart + static_cast<int>(std::lround(time * w / units)), bestY);
    return 0;
}

int Add(const char* in, const char* out, int32_t line, int32_t time) {
    SoundSystem sounds;
    int code = 0;
    std::unique_ptr<Instrument> instrument;
    try {
        instrument = LoadInstrument(in, &sounds);
        PatternBank* bank = instrument->GetBank();
        PlayPointList pattern = bank->GetPattern(0);
        PlayPoint p{};
        p.time = time;
        p.line = static_cast<uint8_t>(line);
        pattern.InsertOrReplace(p);
        bank->SetPattern(0, pattern);
        SaveInstrumentAs(*instrument, out);
    } catch (const FileError& e) {
        std::fprintf(stderr, "click_note: %s\n", e.what());
        code = 1;
    }
    std::lock_guard<EngineMutex> hold(theEngineLock);
    instrument.reset();
    return code;
}

struct Take {
    WaveFile file;
    int64_t first = -1;
    bool Read(const char* path) {
        if (ReadWave(path, file) != WaveStatus::Ok)
            return false;
        const SampleData& s = *file.sample;
        for (int64_t i = 0; i < static_cast<int64_t>(s.frames) * s.channels && first < 0; ++i)
            if (std::fabs(s.samples[i]) > 1e-6f)
                first = i / s.channels;
        return first >= 0;
    }
    double At(int64_t frame, int32_t channel) const {
        const SampleData& s = *file.sample;
        return s.samples[(first + frame) * s.channels + (s.channels == 2 ? channel : 0)];
    }
    int64_t Frames() const { return file.sample->frames - first; }
};

// The share of the capture over [from, to) that the render times gain
// leaves unexplained.
double Residual(const Take& c, const Take& r, double gain, int64_t from, int64_t to) {
    double left = 0, all = 0;
    for (int64_t f = from; f < to; ++f)
        for (int32_t ch = 0; ch < 2; ++ch) {
            const double d = c.At(f, ch) - gain * r.At(f, ch);
            left += d * d;
            all += c.At(f, ch) * c.At(f, ch);
        }
    return std::sqrt(left / all);
}

int Check(const char* capture, const char* before, const char* after, double passSeconds,
          double noteSeconds) {
    Take c, b, a;
    if (!c.Read(capture) || !b.Read(before) || !a.Read(after)) {
        std::fprintf(stderr, "click_note: cannot read the three takes, or one is silent\n");
        return 1;
    }
    const double rate = b.file.sample->rate;
    const int64_t pass = static_cast<int64_t>(passSeconds * rate);
    const int64_t from = static_cast<int64_t>((noteSeconds - 0.01) * rate);
    const int64_t to = static_cast<int64_t>((noteSeconds + 0.2) * rate);
    if (c.Frames() < pass + to || b.Frames() < pass + to || a.Frames() < pass + to) {
        std::fprintf(stderr, "click_note: takes shorter than the note in the second pass\n");
        return 1;
    }
    double cr = 0, rr = 0;
    for (int64_t f = from; f < to; ++f)
        for (int32_t ch = 0; ch < 2; ++ch) {
            cr += c.At(f, ch) * b.At(f, ch);
            rr += b.At(f, ch) * b.At(f, ch);
        }
    const double gain = cr / rr;
    const double first = Residual(c, b, gain, from, to);
    const double second = Residual(c, a, gain, pass + from, pass + to);
    const double without = Residual(c, b, gain, pass + from, pass + to);
    std::printf("first sound at frame %lld; gain %.6f; at the note in the first pass against "
                "the take without it %.2e; in the second pass with it %.2e, without it %.2e\n",
                static_cast<long long>(c.first), gain, first, second, without);
    return first < 1e-3 && second < 1e-3 && without > 1e-2 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "where" && argc == 5)
        return Where(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    if (command == "add" && argc == 6)
        return Add(argv[2], argv[3], std::atoi(argv[4]), std::atoi(argv[5]));
    if (command == "check" && argc == 7)
        return Check(argv[2], argv[3], argv[4], std::atof(argv[5]), std::atof(argv[6]));
    std::fprintf(stderr, "usage: click_note where SHOT.ppm TIME SHOWN_UNITS\n"
                         "       click_note add IN.nst OUT.nst LINE TIME\n"
                         "       click_note check CAPTURE.wav BEFORE.wav AFTER.wav PASS_SECONDS "
                         "NOTE_SECONDS\n");
    return 2;
}
