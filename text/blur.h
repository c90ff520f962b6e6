// The two blurs of the text layers: a 41-tap Gaussian that renormalises at line ends, and a
// sliding-window box blur. Both work on Packed DIBs and return a new picture or null; the
// Gaussian also leaves its row pass in the caller's picture. Arithmetic is fixed to the bit.
#pragma once

#include <cstdint>

#include "platform/memory.h"

constexpr int32_t kGaussianTaps = 41;

// Allocates `*kernel`, a block of doubles that the caller frees, holding `taps` weights (3 when
// `taps` is below 1), each the sum of three sub-pixel samples of a Gaussian of `sigma` pixels,
// normalised to sum 1. Returns the number of taps, or 0 with `*kernel` null when memory fails.
int32_t MakeGaussianKernel(int32_t taps, double sigma, MovableHandle* kernel);

// Convolves one line of `length` one-byte pixels (ConvolveLine8) or three-byte pixels
// (ConvolveLine24). The first and last taps/2 pixels use only the taps that fall on the line and
// divide by their weight. A line shorter than the kernel is left unwritten.
void ConvolveLine8(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                   int32_t length);
void ConvolveLine24(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                    int32_t length);

// Blurs an 8-bit or 24-bit picture with sigma = sigmaTenths / 10: rows of `image` into a new
// picture, that back over `image`, then columns of `image` into the new picture, which is
// returned. `reach` is accepted and ignored. A picture under 41 pixels wide keeps its rows; one
// under 41 pixels high comes out all 0. Other depths and failures give null; `image` stays the
// caller's and may already hold the row pass.
MovableHandle GaussianBlur(MovableHandle image, int32_t reach, int32_t sigmaTenths);

// A box blur of radius strength / 6 across and then down, on pictures of 24 bits or more taken as
// one unpadded run of three-byte pixels (padded rows drift, 32-bit pixels are misread: both kept
// as they are). Returns a new picture, or null when the radius is below 1, the depth below 24 or
// memory fails.
MovableHandle FastBoxBlur(MovableHandle image, int32_t strength);
