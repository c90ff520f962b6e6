// Simple: one text on one background, scrolling across the canvas from one edge to the other and
// pausing where it stands centred. Its frames come from the common frame renderer unchanged; what
// is its own is the frame loop: travel, step, the centred frame and the delays.
#pragma once

#include <cstdint>

#include "materials/fill_cache.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// Where the text stands in one frame, relative to its place of rest.
struct SimpleFrameParams {
  int32_t x;
  int32_t y;
  FillCache* fills;  // the loop's texture fills, for the renderer's FrameSettings
};

// Scroll picker values; any other value scrolls leftward.
constexpr int32_t kScrollUp = 0;
constexpr int32_t kScrollRight = 1;
constexpr int32_t kScrollDown = 3;

// What the frame loop reads from the dialog and the page.
struct SimpleLoopSettings {
  int32_t animated;  // 0: one frame at rest
  int32_t delay;     // host units, every frame
  int32_t pause;     // added to the centred frame and the last one
  int32_t frames;    // the most frames wanted
  int32_t scroll;    // direction, 0 when the picker holds none
};

// Renders one frame for `params`; a new picture or null.
typedef MovableHandle (*SimpleFrameRenderer)(void* renderer, const SimpleFrameParams* params);

// The frame loop: a first render at rest for the canvas size when animated, then the frames in
// order, appended to context->frames, with progress after each. The loop owns a fill cache for
// its length, handed to the renderer in `params`, so a texture is generated once per build. Returns
// 1, or 0 when a render or an append fails (frames appended so far stay in the list).
int RunSimpleFrames(BuildContext* context, const SimpleLoopSettings* settings,
                    SimpleFrameRenderer render, void* renderer);

// The effect table's procedures for Simple: the sample at rest, the build, and the key colour
// (-1 for a nonzero `mode`; else the grey alpha background, or the Background material's colour).
int SimpleEffectPreview(BuildContext* context);
int SimpleEffectBuild(BuildContext* context);
int32_t SimpleEffectKeyColour(WindowHandle dialog, int32_t mode);
