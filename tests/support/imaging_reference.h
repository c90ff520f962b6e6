// Plain versions of the colour operations, written step by step with the per-pixel accessors and
// no shortcuts. The product versions are compared with these byte for byte.
#pragma once

#include "tests/support/test_images.h"  // SameBlocks

#include <cstdint>
#include <random>

#include "imaging/dither.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// The two-pass search: an exact-match scan, then the weighted scan.
int32_t RefNearestPaletteIndex(int32_t red, int32_t green, int32_t blue, const uint8_t* palette,
                               int32_t count);
MovableHandle RefDitherToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                                 int32_t count, const RemapSettings& settings);
MovableHandle RefRemapToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                                int32_t count, const RemapSettings& settings);

// Test pictures and comparisons.
// A picture of `depth` bits (1, 4, 8, 24 or 32) with random pixels, padding and colour table.
MovableHandle MakeRandomImage(std::mt19937& rng, int32_t width, int32_t height, int32_t depth);
// A random palette of `count` entries, many of them repeated, the rest zero.
void MakeRandomPalette(std::mt19937& rng, uint8_t* palette, int32_t count);
// A 24-bit picture whose pixels (0x00BBGGRR, top-left first, row by row) are given.
MovableHandle MakeImage24(int32_t width, int32_t height, const uint32_t* pixels);

// A picture freed when it goes out of scope.
struct Owned {
  MovableHandle h;
  explicit Owned(MovableHandle handle) : h(handle) {}
  ~Owned() { MovableFree(h); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
};

// A FrameList whose records hold pictures that stay the caller's: it frees only its records.
struct FrameListView {
  FrameList list{};
  FrameListView(const MovableHandle* images, int32_t count);
  ~FrameListView() { MovableFree(list.records); }
  FrameListView(const FrameListView&) = delete;
  FrameListView& operator=(const FrameListView&) = delete;
};

// The quantiser, pixel by pixel through ReadDibPixel, with its own tree and a linear exact list.
int32_t RefQuantiseFrames(int32_t* request, uint8_t* palette, const MovableHandle* images,
                          int32_t imageCount);

// The resampler, pixel by pixel through the accessors.
MovableHandle RefResampleImage(MovableHandle image, int32_t width, int32_t height, double blur);
