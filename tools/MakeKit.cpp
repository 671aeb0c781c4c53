// Writes the bundled drum kit: eight short one-shot sounds, 16-bit mono WAV at
// 44.1 kHz, synthesised here from sine waves, square waves and noise. The
// noise comes from a fixed-seed generator, so every run writes the same bytes.
//
//     make_kit <folder>        (the repository keeps them in resources/sounds)
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int Rate = 44100;
constexpr double Pi = 3.14159265358979323846;

using Sound = std::vector<double>;

// Deterministic white noise in -1 to 1 (xorshift32).
class Noise {
  public:
    double Next() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return static_cast<double>(state) / 2147483648.0 - 1.0;
    }

  private:
    uint32_t state = 0x9E3779B9u;
};

int Frames(double seconds) {
    return static_cast<int>(seconds * Rate);
}

double Decay(double t, double seconds) {
    return std::exp(-t / seconds);
}

// A sine whose frequency glides exponentially from start to end.
Sound Sweep(double seconds, double start, double end, double glide, double decay) {
    Sound s(Frames(seconds));
    double phase = 0.0;
    for (size_t i = 0; i < s.size(); ++i) {
        const double t = static_cast<double>(i) / Rate;
        const double f = end + (start - end) * Decay(t, glide);
        phase += 2.0 * Pi * f / Rate;
        s[i] = std::sin(phase) * Decay(t, decay);
    }
    return s;
}

// Noise through a two-pole band-pass at centre Hz, decaying.
Sound BandNoise(double seconds, double centre, double q, double decay, Noise& noise) {
    Sound s(Frames(seconds));
    const double w = 2.0 * Pi * centre / Rate;
    const double alpha = std::sin(w) / (2.0 * q);
    const double b0 = alpha / (1.0 + alpha), a1 = -2.0 * std::cos(w) / (1.0 + alpha),
                 a2 = (1.0 - alpha) / (1.0 + alpha);
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (size_t i = 0; i < s.size(); ++i) {
        const double x = noise.Next();
        const double y = b0 * x - b0 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        s[i] = y * Decay(static_cast<double>(i) / Rate, decay);
    }
    return s;
}

// Six square waves at inharmonic pitches through a high-pass: a metal plate.
Sound Metal(double seconds, double decay, Noise& noise) {
    const double pitches[6] = {205.3, 304.4, 369.6, 522.7, 540.0, 800.0};
    Sound s(Frames(seconds));
    double previous = 0.0, high = 0.0;
    for (size_t i = 0; i < s.size(); ++i) {
        const double t = static_cast<double>(i) / Rate;
        double x = 0.3 * noise.Next();
        for (double p : pitches)
            x += std::fmod(t * p * 2.7, 1.0) < 0.5 ? 0.12 : -0.12;
        high = 0.85 * (high + x - previous); // one-pole high-pass near 1 kHz
        previous = x;
        s[i] = high * Decay(t, decay);
    }
    return s;
}

Sound Mix(const Sound& a, double ga, const Sound& b, double gb) {
    Sound s(std::max(a.size(), b.size()), 0.0);
    for (size_t i = 0; i < a.size(); ++i)
        s[i] += ga * a[i];
    for (size_t i = 0; i < b.size(); ++i)
        s[i] += gb * b[i];
    return s;
}

Sound Kick() {
    Sound body = Sweep(0.6, 160.0, 45.0, 0.04, 0.18);
    for (int i = 0; i < Frames(0.002); ++i)
        body[i] += 0.6 * (1.0 - static_cast<double>(i) / Frames(0.002)); // the beater
    return body;
}

Sound Snare(Noise& noise) {
    const Sound tone =
        Mix(Sweep(0.3, 190.0, 180.0, 0.05, 0.06), 1.0, Sweep(0.3, 340.0, 330.0, 0.05, 0.04), 0.6);
    return Mix(tone, 0.8, BandNoise(0.3, 4000.0, 0.5, 0.07, noise), 1.4);
}

Sound Clap(Noise& noise) {
    Sound s = BandNoise(0.35, 1100.0, 1.2, 0.09, noise);
    // Three quick claps before the tail: gates that open for 3 ms every 10 ms.
    for (size_t i = 0; i < static_cast<size_t>(Frames(0.03)); ++i)
        if ((i % Frames(0.01)) > static_cast<size_t>(Frames(0.003)))
            s[i] *= 0.15;
    return s;
}

Sound Rim(Noise& noise) {
    const Sound tone = Mix(Sweep(0.08, 1700.0, 1700.0, 1.0, 0.008), 1.0,
                           Sweep(0.08, 480.0, 480.0, 1.0, 0.012), 0.8);
    return Mix(tone, 1.0, BandNoise(0.08, 3000.0, 0.7, 0.004, noise), 0.8);
}

Sound Cowbell() {
    Sound s(Frames(0.4));
    for (size_t i = 0; i < s.size(); ++i) {
        const double t = static_cast<double>(i) / Rate;
        const double a = std::fmod(t * 540.0, 1.0) < 0.5 ? 1.0 : -1.0;
        const double b = std::fmod(t * 800.0, 1.0) < 0.5 ? 1.0 : -1.0;
        s[i] = (a + b) * (0.7 * Decay(t, 0.02) + 0.3 * Decay(t, 0.15));
    }
    return s;
}

// Scales to a peak of -1 dBFS, fades the last 5 ms out and writes 16-bit PCM.
bool Write(const std::string& path, Sound s) {
    double peak = 0.0;
    for (double v : s)
        peak = std::max(peak, std::fabs(v));
    const double gain = peak > 0.0 ? 0.891 / peak : 0.0;
    const int fade = Frames(0.005);
    std::vector<int16_t> pcm(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        double v = s[i] * gain;
        const size_t left = s.size() - i;
        if (left < static_cast<size_t>(fade))
            v *= static_cast<double>(left) / fade;
        pcm[i] = static_cast<int16_t>(std::lround(v * 32767.0));
    }
    const uint32_t dataBytes = static_cast<uint32_t>(pcm.size() * 2);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    auto put = [&](uint32_t v, int bytes) {
        for (int i = 0; i < bytes; ++i)
            out.put(static_cast<char>(v >> (8 * i)));
    };
    out.write("RIFF", 4);
    put(36 + dataBytes, 4);
    out.write("WAVEfmt ", 8);
    put(16, 4);
    put(1, 2); // PCM
    put(1, 2); // mono
    put(Rate, 4);
    put(Rate * 2, 4); // bytes per second
    put(2, 2);        // block align
    put(16, 2);       // bits
    out.write("data", 4);
    put(dataBytes, 4);
    for (int16_t v : pcm)
        put(static_cast<uint16_t>(v), 2);
    return static_cast<bool>(out);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_kit <folder>\n");
        return 2;
    }
    const std::string dir = argv[1];
    Noise noise;
    const std::pair<const char*, Sound> kit[] = {
        {"kick", Kick()},
        {"snare", Snare(noise)},
        {"closed-hat", Metal(0.12, 0.025, noise)},
        {"open-hat", Metal(0.6, 0.2, noise)},
        {"clap", Clap(noise)},
        {"tom", Sweep(0.5, 240.0, 150.0, 0.08, 0.16)},
        {"rim", Rim(noise)},
        {"cowbell", Cowbell()},
    };
    for (const auto& [name, sound] : kit) {
        const std::string path = dir + "/" + name + ".wav";
        if (!Write(path, sound)) {
            std::fprintf(stderr, "make_kit: cannot write %s\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
