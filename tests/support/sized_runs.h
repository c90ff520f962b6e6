// An effect's build run on a dialog with each appended frame kept as its size and pixels, for tests
// that compare frames, delays and sizes in one comparison.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// A picture's width and height, then every pixel as ReadDibPixel gives it, top row first; empty
// when the picture can't be locked.
std::vector<uint32_t> SizedPixels(MovableHandle image);

struct SizedRun {
  int ok;                                     // what the build returned
  std::vector<std::vector<uint32_t>> frames;  // SizedPixels of each appended frame
  std::vector<int32_t> delays;
};

// Runs `build` with a zeroed context on `dialog`, takes the frames' pictures and delays, and frees
// the list.
SizedRun RunSized(WindowHandle dialog, EffectBuild build);
