// Animated WebP through libwebp's animation encoder: every frame as the viewer sees it (see
// frame_canvas.h), lossless, with alpha, looping forever. Delays are converted to milliseconds.
#pragma once

#include <cstdint>
#include <string>

#include "host/host_session.h"

// Writes `file` to `path`; a frame's delay counts `millisecondsPerDelay` milliseconds (10 for an
// indexed host, 1 for a true-colour one). Returns 0, with `error` set, on any failure.
int WriteWebpFile(const HostFile* file, int32_t millisecondsPerDelay, const std::string& path,
                  std::string* error);
