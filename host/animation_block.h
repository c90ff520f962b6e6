// The AnimationBlock a host hands back for HostOpOpenAnimation, made from frames already composed:
// a head, entries of 24 bytes (the delay at offset 20) each followed by a bottom-up 24-bit Packed
// DIB, and the end mark. Shared by gm5's in-process host and the reference host.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/memory.h"

// The frames of a file, composed and opaque: width * height RGB triples each, rows top first.
struct ComposedAnimation {
  int32_t width = 0, height = 0;
  std::vector<std::vector<uint8_t>> frames;
  std::vector<int32_t> delays;  // hundredths of a second
};

// The largest canvas side and the most bytes of frames a file may give.
constexpr int32_t kAnimationLargestSide = 16384;
constexpr uint64_t kAnimationLargestBytes = uint64_t{1} << 30;

// A still picture's one frame lasts this long, in hundredths of a second.
constexpr int32_t kStillPictureDelay = 10;

// Writes width * height red, green, blue triples (top row first) as the bottom-up rows of the
// 24-bit Packed DIB whose header starts at `dib`, header included.
void PutRgbAsDib24(uint8_t* dib, const uint8_t* rgb, int32_t width, int32_t height);

// The block of the frames. Null on failure or when sizes and counts disagree.
MovableHandle MakeAnimationBlockOf(const ComposedAnimation& animation);
