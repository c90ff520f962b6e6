// Small pictures for tests: random Packed DIBs from the runtime's generator, byte comparison of two
// pictures, and a picture's pixel values read out for checking.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/memory.h"

// A width by height picture of `depth` bits (8 gets the grey table) with every pixel byte drawn
// from a generator seeded with `seed`.
MovableHandle RandomImage(int32_t width, int32_t height, int32_t depth, uint32_t seed);
// Nonzero when both blocks have the same size and bytes.
int SameBlocks(MovableHandle a, MovableHandle b);

// A picture's size, depth and pixel values (ReadDibPixel's, top row first).
struct PictureValues {
  int32_t width = 0, height = 0, bits = 0;
  std::vector<uint32_t> values;
  uint32_t At(int32_t x, int32_t y) const { return values[static_cast<size_t>(y) * width + x]; }
};
// Reads `image`, which stays the caller's; empty when it cannot be locked.
PictureValues ReadPicture(MovableHandle image);
// Reads `image` and frees it.
PictureValues TakePicture(MovableHandle image);
