// gm5's reading of animated files for HostOpOpenAnimation: an animated GIF (each frame composed
// with its disposal and transparency, as a viewer shows it), an animated WebP (the demuxer's
// composed frames) or a single PNG, made into an AnimationBlock (host/animation_block.h) of 24-bit frames with delays in
// hundredths of a second. Pixels that no frame has covered, and transparent ones, show white.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/animation_block.h"
#include "platform/memory.h"

// Reads the file by its content (GIF, WebP or PNG). Returns 1, or 0 when it can't be read, holds
// no frame or is too large.
int ReadAnimationBytes(const uint8_t* bytes, size_t size, ComposedAnimation* out);
int ReadAnimationFile(const char* path, ComposedAnimation* out);
