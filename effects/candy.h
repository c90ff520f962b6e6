// Candy: the text stands still and its letters show soft, blurred coloured blobs drifting in one
// chosen direction through the Fill background, swaying across it. It is Confetti with each disc
// blurred into a blob, no shadows under the blobs, and the scroll direction of the page; its text
// shadow, too, is painted in the Shadow colour.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "effects/snow.h"
#include "materials/material.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// A blob: a flake's fields, its `image` the blurred disc.
using CandyItem = SnowFlake;

// Where the blobs move, by the scroll picker's value; any other value moves them as 0 does.
constexpr int32_t kCandyUp = 0, kCandyRight = 1, kCandyLeft = 2, kCandyDown = 3;

struct CandySettings {
  uint32_t colors[5];
  int32_t enabled[5];  // [1] to [4]: the Enable checks of colours 2 to 5
  uint32_t shadowColor;
  int32_t shadowOpacity, shadowOffset, softness, warp;
  int32_t seed, fillOpacity, scroll, drift, density, size, frames;
};

struct CandyState {
  int32_t width, height;
  int32_t frameNumber;
  int32_t frames;
  int32_t size, drift;
  uint32_t colors[5];
  int32_t colorCount;
  uint32_t shadowColor;
  int32_t shadowOpacity;
  int32_t scroll;
  uint32_t shadowGrey;  // always 0x7F7F7F; nothing reads it
  MovableHandle itemBlock;
  CandyItem* items;
  int32_t itemCount;
  MovableHandle fillImage;
};

int PrepareCandyState(CandyState* state, const CandySettings* settings, int32_t width,
                      int32_t height, Material* fill);
void ReleaseCandyState(CandyState* state);
MovableHandle RenderCandyFrame(CandyState* state, int32_t frameNumber);

void ReadCandySettings(WindowHandle dialog, CandySettings* settings);

extern const FrameSetEffect kCandyFrameSet;

int CandyEffectPreview(BuildContext* context);
int CandyEffectBuild(BuildContext* context);
int32_t CandyEffectKeyColour(WindowHandle dialog, int32_t mode);
