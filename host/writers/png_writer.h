// PNG output: one RGBA picture, or every frame of a host file as numbered pictures
// (frame-0001.png, frame-0002.png, ...) drawn as the viewer sees them (see frame_canvas.h).
#pragma once

#include <cstdint>
#include <string>

#include "host/host_session.h"

// Writes `rgba` (width * height * 4 bytes, rows top to bottom) to `path`. Returns 0, with `error`
// set, on failure.
int WritePngPicture(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                    std::string* error);
// Writes every frame into the existing folder `folder`. Returns 0, with `error` set, on failure.
int WritePngFrames(const HostFile* file, const std::string& folder, std::string* error);
// The name of frame `index` (from 0) in such a folder.
std::string PngFrameName(size_t index);
