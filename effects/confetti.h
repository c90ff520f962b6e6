// Confetti: the text stands still and its letters show round coloured discs falling through the
// Fill background, swaying as they fall, each over a soft shadow in the page's Shadow colour. A
// frame-set effect whose loop is Stars' with discs for stars; the text shadow, too, is painted in
// the Shadow colour rather than from a material.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "effects/stars.h"
#include "materials/material.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

using ConfettiItem = StarItem;

struct ConfettiSettings {
  uint32_t colors[5];
  int32_t enabled[5];  // [1] to [4]: the Enable checks of colours 2 to 5
  uint32_t shadowColor;
  int32_t shadowOpacity, shadowOffset, softness;
  int32_t seed, fillOpacity, drift, density, size, frames;
};

struct ConfettiState {
  int32_t width, height;
  int32_t frameNumber;
  int32_t frames;
  int32_t size, drift;
  uint32_t colors[5];
  int32_t colorCount;
  uint32_t shadowColor;
  int32_t shadowOpacity;
  MovableHandle itemBlock;
  ConfettiItem* items;
  int32_t itemCount;
  MovableHandle fillImage;
};

int PrepareConfettiState(ConfettiState* state, const ConfettiSettings* settings, int32_t width,
                         int32_t height, Material* fill);
void ReleaseConfettiState(ConfettiState* state);
// A new disc of side `side` in grey `level` on black, drawn at four times the size and quartered
// (left large when that fails). Null when no surface can be made.
MovableHandle DrawConfettiDisc(int32_t side, int32_t level);
MovableHandle RenderConfettiFrame(ConfettiState* state, int32_t frameNumber);

void ReadConfettiSettings(WindowHandle dialog, ConfettiSettings* settings);

extern const FrameSetEffect kConfettiFrameSet;

int ConfettiEffectPreview(BuildContext* context);
int ConfettiEffectBuild(BuildContext* context);
int32_t ConfettiEffectKeyColour(WindowHandle dialog, int32_t mode);
