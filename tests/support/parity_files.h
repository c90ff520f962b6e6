// Pictures that the Windows build writes under Wine and the native build reads back, to compare the
// two platforms. A file holds the whole Packed DIB block as it is in memory.
#pragma once

#include <cstdint>
#include <string>

#include "platform/memory.h"

// Writes the block of `image` to `path`. Returns 1 or 0.
int WriteParityFile(const std::string& path, MovableHandle image);
// Reads a block written by WriteParityFile, or null.
MovableHandle ReadParityFile(const std::string& path);

// How two pictures differ over the area they share, from the top-left corner.
struct PictureDifference {
  int32_t width[2], height[2];  // of each picture
  int64_t differing;            // pixels of the shared area whose values differ
  double share;                 // differing over the shared area
  double meanChannel;           // mean difference per byte channel of the differing pixels
};
// Compares two pictures of any depths. Returns 1, or 0 when either cannot be read.
int ComparePictures(MovableHandle a, MovableHandle b, PictureDifference* out);
