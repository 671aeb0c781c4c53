// Compares a capture of the program's output with the offline render of the
// same notes: both are lined up at their first sounding frame, then the
// capture must be the render times one gain, frame for frame. A note a frame
// early or late, or missing, leaves a residual far above the bound.
//
//     compare_takes CAPTURE.wav RENDER.wav SECONDS
#include "engine/WaveFile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

int64_t FirstSound(const SampleData& s) {
    for (int64_t i = 0; i < static_cast<int64_t>(s.frames) * s.channels; ++i)
        if (std::fabs(s.samples[i]) > 1e-6f)
            return i / s.channels;
    return -1;
}

double At(const SampleData& s, int64_t frame, int32_t channel) {
    return s.samples[frame * s.channels + (s.channels == 2 ? channel : 0)];
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: compare_takes CAPTURE.wav RENDER.wav SECONDS\n");
        return 2;
    }
    WaveFile capture, render;
    if (ReadWave(argv[1], capture) != WaveStatus::Ok ||
        ReadWave(argv[2], render) != WaveStatus::Ok) {
        std::fprintf(stderr, "compare_takes: cannot read the two wave files\n");
        return 2;
    }
    const SampleData& c = *capture.sample;
    const SampleData& r = *render.sample;
    const int64_t c0 = FirstSound(c), r0 = FirstSound(r);
    const int64_t n = static_cast<int64_t>(std::atof(argv[3]) * r.rate);
    if (c0 < 0 || r0 < 0 || c0 + n > c.frames || r0 + n > r.frames) {
        std::fprintf(stderr, "compare_takes: no sound, or takes shorter than %s s\n", argv[3]);
        return 1;
    }
    double cr = 0, rr = 0, cc = 0;
    for (int64_t f = 0; f < n; ++f)
        for (int32_t ch = 0; ch < 2; ++ch) {
            const double a = At(c, c0 + f, ch), b = At(r, r0 + f, ch);
            cr += a * b;
            rr += b * b;
            cc += a * a;
        }
    const double gain = cr / rr;
    double left = 0;
    for (int64_t f = 0; f < n; ++f)
        for (int32_t ch = 0; ch < 2; ++ch) {
            const double d = At(c, c0 + f, ch) - gain * At(r, r0 + f, ch);
            left += d * d;
        }
    const double residual = std::sqrt(left / cc);
    std::printf("first sound at frame %lld of the capture; gain %.6f; residual %.2e\n",
                static_cast<long long>(c0), gain, residual);
    return residual < 1e-3 && gain > 0 ? 0 : 1;
}
