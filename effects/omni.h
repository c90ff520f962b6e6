// Omni: the letters show another animation. Each frame of the file in the page's animation picker,
// tiled over the canvas from its origin, is the fill of one output frame; the output takes the
// file's frame count and delays. The fill is not scaled: a small source repeats and a large one is
// shown from its upper left corner.
#pragma once

#include <cstdint>

#include "materials/fill_cache.h"
#include "platform/dialog.h"
#include "shell/effect_table.h"

// The frame parameters: a local of the build or preview, whose address is BuildContext.params.
struct OmniParams {
  int32_t width, height;  // the canvas, written by the renderer
  int32_t frameCount;     // the source's frame count
  int32_t frameIndex;
  int32_t delay;     // the delay of the frame just rendered, written by the renderer
  FillCache* fills;  // the build's texture fills; null in a sample
};

// One frame: the frame-set renderer's steps with the picker's frame `params->frameIndex`, tiled,
// as the fill. Null when the picker gives no frame or a step fails.
MovableHandle RenderOmniFrame(BuildContext* context, OmniParams* params);

int OmniEffectPreview(BuildContext* context);
int OmniEffectBuild(BuildContext* context);
int32_t OmniEffectKeyColour(WindowHandle dialog, int32_t mode);
