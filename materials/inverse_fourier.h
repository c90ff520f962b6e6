// The in-place radix-2 Fourier transform of a square mesh of single-precision complex values, as
// the spectral textures use it: out[r][c] = sum over (k, l) of in[k][l] * exp(-2 pi i (rk + cl) /
// n), not divided by anything. Values are stored interleaved (real, imaginary), row after row; the
// twiddle factors follow double-precision recurrences, so the result is the same on every platform.
#pragma once

#include <cstdint>

// Transforms the n by n mesh `values` (2 * n * n floats) in place. `n` must be a power of two.
void InverseFourier2D(float* values, int32_t n);
