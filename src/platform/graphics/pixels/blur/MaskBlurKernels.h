#pragma once

#include <cstdint>

/// Inner loops of the blur. Samples are mask bytes with kBlurFraction more bits; weights are
/// fractions of 1 << 15.

inline constexpr int kBlurFraction = 6;

/// Symmetric taps taken together to save passes over the sums.
inline constexpr int kTapGroup = 4;

/// sums[i] = the sum over t of (before[t][i] + after[t][i]) * weights[t], each product rounded.
/// `taps` is a positive multiple of kTapGroup.
void weighTaps(int16_t* sums, const int16_t* const* before, const int16_t* const* after,
               const int16_t* weights, int taps, int32_t n);

/// out[i] = samples of the bytes.
void widenBytes(int16_t* out, const uint8_t* bytes, int32_t n);

/// sums[i] += bytes[i].
void addBytes(uint16_t* sums, const uint8_t* bytes, int32_t n);

/// Samples of the means of cells 1 << shift (1 to 6) pixels a side, from the sums over their
/// columns: `cells` times 1 << shift of them.
void averageCells(int16_t* out, const uint16_t* sums, int shift, int32_t cells);

/// Bytes of samples, rounded and held within 0..255.
void narrowSamples(uint8_t* out, const int16_t* samples, int32_t n);

/// Linear interpolation between the centres of cells 1 << shift (1 to 6) pixels wide:
/// out[(i << shift) + p] lies (p + 1/2) / (1 << shift) of the way from cell i to cell i + 1.
/// Fills `cells` times 1 << shift samples.
void interpolateCells(int16_t* out, const int16_t* samples, int shift, int32_t cells);

/// Bytes of a[i] + (b[i] - a[i]) * weight, rounded and held within 0..255.
void mixSamples(uint8_t* out, const int16_t* a, const int16_t* b, int16_t weight, int32_t n);
