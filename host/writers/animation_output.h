// Choosing and writing an output by its name: ".gif" an animated GIF, ".webp" an animated WebP,
// ".png" one picture, a name ending in "/" or without an extension a folder of numbered PNG
// frames, and "-" standard output (a GIF unless a format is named). A named format overrides the
// extension of a file. Every output is encoded in memory and written whole or not at all.
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

struct OutputOptions {
  std::string format;     // "gif", "webp" or "png"; empty: by the name
  int32_t loopCount = 0;  // repeats of an animation, 0 for ever
  int32_t frame = 0;      // the frame (from 0) a single PNG takes
};

// The kind of output `path` names (extensions in any case), or `format` when it is not empty and
// the path is not a folder. OutputUnknown for other extensions and formats.
OutputKind OutputKindFor(const std::string& path, const std::string& format);

// Checks, before any rendering, that an output of `kind` can be written at `path`. Returns 0 with
// a one-line `error` otherwise.
int CheckOutputPlace(const std::string& path, OutputKind kind, std::string* error);

// Writes the frames of `file` as `path` and `options` say (a single PNG takes one frame). A
// frame's delay counts hundredths of a second. Returns 0, with a one-line `error` and nothing
// changed at `path`'s place, on failure; else 1 with the bytes written in `written`.
int WriteAnimationOutput(const HostFile* file, const OutputOptions& options,
                         const std::string& path, std::string* error, uint64_t* written = nullptr);
// Writes one RGBA picture as a PNG file at `path`, with the same all-or-nothing rule.
int WritePictureOutput(const uint8_t* rgba, int32_t width, int32_t height, const std::string& path,
                       std::string* error);
