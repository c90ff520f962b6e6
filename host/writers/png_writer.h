// PNG output: one RGBA picture, or every frame of a host file as numbered pictures
// (frame-0001.png, frame-0002.png, ...) drawn as the viewer sees them (see frame_canvas.h).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/host_session.h"

// Encodes `rgba` (width * height * 4 bytes, rows top to bottom) into `bytes`. Returns 0, with the
// reason in `error`, on failure.
int EncodePng(const uint8_t* rgba, int32_t width, int32_t height, std::vector<uint8_t>* bytes,
              std::string* error);
// Encodes frame `index` (from 0) of `file` as the viewer sees it; every frame when `index` is
// negative. Returns 0, with the reason in `error`, on failure.
int EncodePngFrames(const HostFile* file, int32_t index,
                    std::vector<std::vector<uint8_t>>* pictures, std::string* error);
