#include "engine/MixLoops.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// The fraction of a position, rounded once to float.
inline float Fraction(uint64_t position) {
    return static_cast<float>(static_cast<uint32_t>(position)) * 0x1p-32f;
}

inline float Sample(const float* data, uint64_t i) {
    return data[i];
}
inline float Sample(const int16_t* data, uint64_t i) {
    return static_cast<float>(data[i]) * (1.0f / 32768.0f);
}

// Audio thread: stereo, a frame at a time; also the tail of the wide loop.
template <typename T>
void StereoFrames(float* __restrict out, const T* __restrict data, uint64_t position, uint64_t step,
                  int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const uint64_t at = 2 * (position >> 32);
        const float frac = Fraction(position);
        const float left = Sample(data, at);
        const float right = Sample(data, at + 1);
        out[2 * i] += gainLeft * (left + frac * (Sample(data, at + 2) - left));
        out[2 * i + 1] += gainRight * (right + frac * (Sample(data, at + 3) - right));
        position += step;
    }
}

// Audio thread: mono, a frame at a time; also the tail of the wide loop.
template <typename T>
void MonoFrames(float* __restrict out, const T* __restrict data, uint64_t position, uint64_t step,
                int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const uint64_t at = position >> 32;
        const float first = Sample(data, at);
        const float value = first + Fraction(position) * (Sample(data, at + 1) - first);
        out[2 * i] += gainLeft * value;
        out[2 * i + 1] += gainRight * value;
        position += step;
    }
}

#if defined(__SSE2__)
// The wide loops take four frames at a time. The frames' read positions are
// computed one by one (no gather on the baseline instruction set); the
// fractions, the conversion of 16-bit values, the interpolation and the sums
// four lanes at a time.

// The low 32 bits of four positions a step apart.
inline __m128i LowWords(uint64_t position, uint64_t step) {
    const auto low = [](uint64_t value) {
        return static_cast<int32_t>(static_cast<uint32_t>(value));
    };
    return _mm_setr_epi32(low(position), low(position + step), low(position + 2 * step),
                          low(position + 3 * step));
}

// Fraction of four positions from their low words, rounded as Fraction
// rounds: both 16-bit halves convert exactly, and their sum rounds once.
inline __m128 Fractions(__m128i low) {
    const __m128 high = _mm_cvtepi32_ps(_mm_srli_epi32(low, 16));
    const __m128 rest = _mm_cvtepi32_ps(_mm_and_si128(low, _mm_set1_epi32(0xFFFF)));
    const __m128 whole = _mm_add_ps(_mm_mul_ps(high, _mm_set1_ps(65536.0f)), rest);
    return _mm_mul_ps(whole, _mm_set1_ps(0x1p-32f));
}

// A 16-bit value's 1 / 32768 goes into the gain rather than into each value:
// scaling by a power of two is exact at every step of the interpolation and
// of the product, so the sums are the same to the bit.
inline float Scale(const float*) {
    return 1.0f;
}
inline float Scale(const int16_t*) {
    return 1.0f / 32768.0f;
}

// The low and the high 16 bits of each 32-bit lane, sign-extended.
inline __m128i LowHalves(__m128i v) {
    return _mm_srai_epi32(_mm_slli_epi32(v, 16), 16);
}
inline __m128i HighHalves(__m128i v) {
    return _mm_srai_epi32(v, 16);
}

// Two stereo frames at positions a and b: s0 holds left and right at a,
// then at b; s1 the frames after them. 16-bit values are left unscaled.
inline void StereoPoints(const float* data, uint64_t a, uint64_t b, __m128& s0, __m128& s1) {
    const __m128 x = _mm_loadu_ps(data + 2 * (a >> 32));
    const __m128 y = _mm_loadu_ps(data + 2 * (b >> 32));
    s0 = _mm_movelh_ps(x, y);
    s1 = _mm_movehl_ps(y, x);
}
inline void StereoPoints(const int16_t* data, uint64_t a, uint64_t b, __m128& s0, __m128& s1) {
    const __m128i x = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(data + 2 * (a >> 32)));
    const __m128i y = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(data + 2 * (b >> 32)));
    const __m128i frames = _mm_unpacklo_epi32(x, y); // a's first, b's first, a's next, b's next
    s0 = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(frames, frames), 16));
    s1 = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(frames, frames), 16));
}

// Four mono frames at the positions p[0..3]: s0 the sample at each, s1 the
// one after it. 16-bit values are left unscaled.
inline void MonoPoints(const float* data, const uint64_t* p, __m128& s0, __m128& s1) {
    __m128 pair[4];
    for (int k = 0; k < 4; ++k)
        pair[k] = _mm_castsi128_ps(
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(data + (p[k] >> 32))));
    const __m128 p01 = _mm_movelh_ps(pair[0], pair[1]);
    const __m128 p23 = _mm_movelh_ps(pair[2], pair[3]);
    s0 = _mm_shuffle_ps(p01, p23, _MM_SHUFFLE(2, 0, 2, 0));
    s1 = _mm_shuffle_ps(p01, p23, _MM_SHUFFLE(3, 1, 3, 1));
}
inline void MonoPoints(const int16_t* data, const uint64_t* p, __m128& s0, __m128& s1) {
    int32_t pair[4];
    for (int k = 0; k < 4; ++k)
        std::memcpy(&pair[k], data + (p[k] >> 32), 4);
    const __m128i pairs = _mm_setr_epi32(pair[0], pair[1], pair[2], pair[3]);
    s0 = _mm_cvtepi32_ps(LowHalves(pairs));
    s1 = _mm_cvtepi32_ps(HighHalves(pairs));
}

// out[0..3] += gain x value, lane by lane.
inline void Add(float* out, __m128 gain, __m128 value) {
    _mm_storeu_ps(out, _mm_add_ps(_mm_loadu_ps(out), _mm_mul_ps(gain, value)));
}

inline __m128 Interpolate(__m128 s0, __m128 s1, __m128 frac) {
    return _mm_add_ps(s0, _mm_mul_ps(frac, _mm_sub_ps(s1, s0)));
}

// What the four-frame loops keep across groups: the gains of the left and
// right lanes (a 16-bit sample's scale folded in) and the low words of the
// next four positions.
struct Lanes {
    template <typename T>
    Lanes(const T* data, uint64_t position, uint64_t step, float gainLeft, float gainRight)
        : gain(_mm_setr_ps(gainLeft * Scale(data), gainRight * Scale(data), gainLeft * Scale(data),
                           gainRight * Scale(data))),
          advance(_mm_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(step * 4)))),
          low(LowWords(position, step)) {}
    // The fractions of the next four positions; then on to the four after.
    __m128 NextFractions() {
        const __m128 frac = Fractions(low);
        low = _mm_add_epi32(low, advance);
        return frac;
    }
    const __m128 gain;
    const __m128i advance;
    __m128i low;
};

// Audio thread: the whole groups of four frames; returns the frames done.
template <typename T>
int32_t StereoWide(float* out, const T* data, uint64_t& position, uint64_t step, int32_t n,
                   float gainLeft, float gainRight) {
    Lanes lanes(data, position, step, gainLeft, gainRight);
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128 frac = lanes.NextFractions();
        __m128 s0, s1;
        StereoPoints(data, position, position + step, s0, s1);
        Add(out + 2 * i, lanes.gain, Interpolate(s0, s1, _mm_unpacklo_ps(frac, frac)));
        StereoPoints(data, position + 2 * step, position + 3 * step, s0, s1);
        Add(out + 2 * i + 4, lanes.gain, Interpolate(s0, s1, _mm_unpackhi_ps(frac, frac)));
        position += 4 * step;
    }
    return i;
}

template <typename T>
int32_t MonoWide(float* out, const T* data, uint64_t& position, uint64_t step, int32_t n,
                 float gainLeft, float gainRight) {
    Lanes lanes(data, position, step, gainLeft, gainRight);
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128 frac = lanes.NextFractions();
        const uint64_t p[4] = {position, position + step, position + 2 * step, position + 3 * step};
        __m128 s0, s1;
        MonoPoints(data, p, s0, s1);
        const __m128 value = Interpolate(s0, s1, frac);
        Add(out + 2 * i, lanes.gain, _mm_unpacklo_ps(value, value));
        Add(out + 2 * i + 4, lanes.gain, _mm_unpackhi_ps(value, value));
        position += 4 * step;
    }
    return i;
}
#endif

template <typename T>
void Stereo(float* __restrict out, const T* __restrict data, uint64_t position, uint64_t step,
            int32_t n, float gainLeft, float gainRight) {
    int32_t i = 0;
#if defined(__SSE2__)
    i = StereoWide(out, data, position, step, n, gainLeft, gainRight);
#endif
    StereoFrames(out + 2 * i, data, position, step, n - i, gainLeft, gainRight);
}

template <typename T>
void Mono(float* __restrict out, const T* __restrict data, uint64_t position, uint64_t step,
          int32_t n, float gainLeft, float gainRight) {
    int32_t i = 0;
#if defined(__SSE2__)
    i = MonoWide(out, data, position, step, n, gainLeft, gainRight);
#endif
    MonoFrames(out + 2 * i, data, position, step, n - i, gainLeft, gainRight);
}

} // namespace

void MixStereo(float* __restrict out, const float* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight) {
    Stereo(out, data, position, step, n, gainLeft, gainRight);
}

void MixStereo(float* __restrict out, const int16_t* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight) {
    Stereo(out, data, position, step, n, gainLeft, gainRight);
}

void MixMono(float* __restrict out, const float* __restrict data, uint64_t position, uint64_t step,
             int32_t n, float gainLeft, float gainRight) {
    Mono(out, data, position, step, n, gainLeft, gainRight);
}

void MixMono(float* __restrict out, const int16_t* __restrict data, uint64_t position,
             uint64_t step, int32_t n, float gainLeft, float gainRight) {
    Mono(out, data, position, step, n, gainLeft, gainRight);
}
