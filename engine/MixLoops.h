#pragma once

#include <cstdint>

// The mixer's inner loops: each adds n frames of one voice, linearly
// interpolated between the sample frames around its position, to float
// stereo output, interleaved. position and step are 32.32 fixed point in
// sample frames; the caller guarantees that every frame read, the one after
// the last position included, lies inside the sample's pad. Each output
// sample is out + gain x (s0 + frac x (s1 - s0)), frac being the position's
// fraction rounded once to float, computed in exactly that order, so that
// the result is the same to the bit whatever the width of the loop. A 16-bit
// sample value v is heard as v / 32768, exactly the float it would decode to.

// Audio thread: a stereo sample, left and right interleaved.
void MixStereo(float* __restrict out, const float* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight);
void MixStereo(float* __restrict out, const int16_t* __restrict data, uint64_t position,
               uint64_t step, int32_t n, float gainLeft, float gainRight);

// Audio thread: a mono sample, heard on both sides.
void MixMono(float* __restrict out, const float* __restrict data, uint64_t position, uint64_t step,
             int32_t n, float gainLeft, float gainRight);
void MixMono(float* __restrict out, const int16_t* __restrict data, uint64_t position,
             uint64_t step, int32_t n, float gainLeft, float gainRight);
