#include "engine/MixLoops.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// The fraction of a position, rounded once to float.
inline float Fraction(uint64_t position) {
    return static_cast<float>(static_cast<uint32_t>(position)) * 0x1p-32f;
}

// Audio thread: stereo, a frame at a time; also the tail of the wide loop.
void StereoFrames(float* __restrict out, const float* __restrict data, uint64_t position,
                  uint64_t step, int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const float* s = data + 2 * (position >> 32);
        const float frac = Fraction(position);
        out[2 * i] += gainLeft * (s[0] + frac * (s[2] - s[0]));
        out[2 * i + 1] += gainRight * (s[1] + frac * (s[3] - s[1]));
        position += step;
    }
}

// Audio thread: mono, a frame at a time; also the tail of the wide loop.
void MonoFrames(float* __restrict out, const float* __restrict data, uint64_t position,
                uint64_t step, int32_t n, float gainLeft, float gainRight) {
    for (int32_t i = 0; i < n; ++i) {
        const float* s = data + (position >> 32);
        const float value = s[0] + Fraction(position) * (s[1] - s[0]);
        out[2 * i] += gainLeft * value;
        out[2 * i + 1] += gainRight * value;
        position += step;
    }
}

#if defined(__SSE2__)
// The wide loops take four frames at a time. The frames' read positions are
// computed one by one (no gather on the baseline instruction set); the
// fractions, the interpolation and the sums four lanes at a time.

// The low 32 bits of four positions a step apart.
inline __m128i LowWords(uint64_t position, uint64_t step) {
    const uint32_t p = static_cast<uint32_t>(position);
    const uint32_t s = static_cast<uint32_t>(step);
    return _mm_setr_epi32(static_cast<int32_t>(p), static_cast<int32_t>(p + s),
                          static_cast<int32_t>(p + 2 * s), static_cast<int32_t>(p + 3 * s));
}

// Fraction of four positions from their low words, rounded as Fraction
// rounds: both 16-bit halves convert exactly, and their sum rounds once.
inline __m128 Fractions(__m128i low) {
    const __m128 high = _mm_cvtepi32_ps(_mm_srli_epi32(low, 16));
    const __m128 rest = _mm_cvtepi32_ps(_mm_and_si128(low, _mm_set1_epi32(0xFFFF)));
    const __m128 whole = _mm_add_ps(_mm_mul_ps(high, _mm_set1_ps(65536.0f)), rest);
    return _mm_mul_ps(whole, _mm_set1_ps(0x1p-32f));
}

// out[0..3] += gain x value, lane by lane.
inline void Add(float* out, __m128 gain, __m128 value) {
    _mm_storeu_ps(out, _mm_add_ps(_mm_loadu_ps(out), _mm_mul_ps(gain, value)));
}

// Two stereo frames: the sample frame at each position and the one after.
inline void StereoPair(float* out, const float* data, uint64_t& position, uint64_t step,
                       __m128 frac, __m128 gain) {
    const __m128 a = _mm_loadu_ps(data + 2 * (position >> 32));
    position += step;
    const __m128 b = _mm_loadu_ps(data + 2 * (position >> 32));
    position += step;
    const __m128 s0 = _mm_movelh_ps(a, b); // left, right at a; left, right at b
    const __m128 s1 = _mm_movehl_ps(b, a); // the frames after them
    Add(out, gain, _mm_add_ps(s0, _mm_mul_ps(frac, _mm_sub_ps(s1, s0))));
}

// The two frames of a mono sample from position on, in the low half.
inline __m128 MonoPair(const float* data, uint64_t position) {
    return _mm_castsi128_ps(
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(data + (position >> 32))));
}
#endif

} // namespace

void MixStereo(float* __restrict out, const float* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight) {
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128 gain = _mm_setr_ps(gainLeft, gainRight, gainLeft, gainRight);
    const __m128i advance = _mm_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(step) * 4u));
    __m128i low = LowWords(position, step);
    for (; i + 4 <= n; i += 4) {
        const __m128 frac = Fractions(low);
        low = _mm_add_epi32(low, advance);
        StereoPair(out + 2 * i, data, position, step, _mm_unpacklo_ps(frac, frac), gain);
        StereoPair(out + 2 * i + 4, data, position, step, _mm_unpackhi_ps(frac, frac), gain);
    }
#endif
    StereoFrames(out + 2 * i, data, position, step, n - i, gainLeft, gainRight);
}

void MixMono(float* __restrict out, const float* __restrict data, uint64_t position, uint64_t step,
             int32_t n, float gainLeft, float gainRight) {
    int32_t i = 0;
#if defined(__SSE2__)
    const __m128 gain = _mm_setr_ps(gainLeft, gainRight, gainLeft, gainRight);
    const __m128i advance = _mm_set1_epi32(static_cast<int32_t>(static_cast<uint32_t>(step) * 4u));
    __m128i low = LowWords(position, step);
    for (; i + 4 <= n; i += 4) {
        const __m128 frac = Fractions(low);
        low = _mm_add_epi32(low, advance);
        const __m128 p01 = _mm_movelh_ps(MonoPair(data, position), MonoPair(data, position + step));
        position += 2 * step;
        const __m128 p23 = _mm_movelh_ps(MonoPair(data, position), MonoPair(data, position + step));
        position += 2 * step;
        const __m128 s0 = _mm_shuffle_ps(p01, p23, _MM_SHUFFLE(2, 0, 2, 0));
        const __m128 s1 = _mm_shuffle_ps(p01, p23, _MM_SHUFFLE(3, 1, 3, 1));
        const __m128 value = _mm_add_ps(s0, _mm_mul_ps(frac, _mm_sub_ps(s1, s0)));
        Add(out + 2 * i, gain, _mm_unpacklo_ps(value, value));
        Add(out + 2 * i + 4, gain, _mm_unpackhi_ps(value, value));
    }
#endif
    MonoFrames(out + 2 * i, data, position, step, n - i, gainLeft, gainRight);
}
