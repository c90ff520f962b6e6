// Animated WebP through libwebp's animation encoder: every frame as the viewer sees it (see
// frame_canvas.h), lossless, with alpha. A delay counts hundredths of a second, as in a GIF.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host_session.h"

// The largest width or height a WebP picture can have.
constexpr int32_t kWebpLargestSide = 16383;

// Encodes `file` into `bytes`, repeating `loopCount` times (0: for ever). Returns 0, with the
// reason in `error`, on any failure.
int EncodeWebp(const HostFile* file, int32_t loopCount, std::vector<uint8_t>* bytes,
               std::string* error);
