// Choosing and writing an output by its name: ".gif" an animated GIF, ".webp" an animated WebP,
// ".png" one picture, and a name ending in "/" or without an extension a folder of numbered PNG
// frames. Every output is written to a temporary place and renamed into place when complete.
#pragma once

#include <cstdint>
#include <string>

#include "host/host_session.h"

enum OutputKind : int32_t {
  OutputUnknown = 0,
  OutputGif,
  OutputWebp,
  OutputPng,
  OutputPngFolder,
};

// The kind of output a path names (extensions in any case). OutputUnknown for other extensions.
OutputKind OutputKindForPath(const std::string& path);

// Writes the frames of `file` as `path` names them (GIF, WebP or a folder of PNG frames; a single
// PNG takes the first frame). A frame's delay counts `millisecondsPerDelay` milliseconds. Returns
// 0, with a one-line `error` and nothing left at `path`'s place, on failure.
int WriteAnimationOutput(const HostFile* file, int32_t millisecondsPerDelay,
                         const std::string& path, std::string* error);
// Writes one RGBA picture as a PNG file at `path`, with the same all-or-nothing rule.
int WritePictureOutput(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                       std::string* error);
