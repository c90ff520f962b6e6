// gm5's reading of animated files for HostOpOpenAnimation: an animated GIF (each frame composed
// with its disposal and transparency, as a viewer shows it), an animated WebP (the demuxer's
// composed frames) or a single PNG, made into an AnimationBlock of 24-bit frames with delays in
// hundredths of a second. Pixels that no frame has covered, and transparent ones, show white.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/memory.h"

// The frames of a file, composed and opaque: width * height RGB triples each.
struct ComposedAnimation {
  int32_t width = 0, height = 0;
  std::vector<std::vector<uint8_t>> frames;
  std::vector<int32_t> delays;  // hundredths of a second
};

// The largest canvas side and the most bytes of frames a file may give.
constexpr int32_t kAnimationLargestSide = 16384;
constexpr uint64_t kAnimationLargestBytes = uint64_t{1} << 30;

// Reads the file by its content (GIF, WebP or PNG). Returns 1, or 0 when it can't be read, holds
// no frame or is too large.
int ReadAnimationBytes(const uint8_t* bytes, size_t size, ComposedAnimation* out);
int ReadAnimationFile(const char* path, ComposedAnimation* out);
// An AnimationBlock of the frames: a head, entries of 24 bytes (the delay at offset 20) each
// followed by a bottom-up 24-bit Packed DIB, and the end mark. Null on failure.
MovableHandle MakeAnimationBlockOf(const ComposedAnimation& animation);
