// Running an effect's build procedure on a dialog and keeping what it appended, for tests that
// compare frames, delays and sizes.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// A picture's width and height, then every pixel as ReadDibPixel gives it, top row first; empty
// when the picture can't be locked.
std::vector<uint32_t> PicturePixels(MovableHandle image);

struct EffectRun {
  int ok;                                     // what the build returned
  std::vector<std::vector<uint32_t>> frames;  // PicturePixels of each appended frame
  std::vector<int32_t> delays;
};

// Runs `build` with a zeroed context on `dialog`, takes the frames' pictures and delays, and frees
// the list.
EffectRun RunEffect(WindowHandle dialog, EffectBuild build);
