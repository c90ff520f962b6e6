// Snow: the text stands still and its letters show fractal snowflakes falling down the Fill
// background in a seamless loop, drifting from side to side. A frame-set effect: every flake is
// drawn once, from one seeded random sequence, and each frame of the set is the fill image with
// every flake stamped at its place for that frame, wrapped around the edges.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "materials/material.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// One flake.
struct SnowFlake {
  int32_t x, y;     // start position
  int32_t size;     // side of the flake image in pixels
  int32_t speed;    // 1, 2 or 4: canvas heights fallen in one loop
  int32_t alpha;    // always 255; nothing reads it
  int32_t opacity;  // the Fill opacity
  float phase;      // degrees, of the drift
  uint32_t color;
  MovableHandle image;  // the flake white on black; its blue channel is the coverage
};

// Live while one flake is drawn.
struct SnowFlakeShape {
  int32_t kind;  // 0: every segment of the tree drawn; 1: only the twigs at the limit
  int32_t depthLimit;
  int32_t branchAngle;              // degrees
  float branchStart, branchLength;  // fractions of a segment
  int32_t size;
  uint32_t pen;  // white
};

// What the page gives the state.
struct SnowSettings {
  uint32_t colors[5];
  int32_t enabled[5];  // [1] to [4]: the Enable checks of colours 2 to 5; [0] is not read
  int32_t seed, fillOpacity, drift, density, size, frames;
};

// Private to the frame builder.
struct SnowState {
  int32_t width, height;  // canvas
  int32_t frameNumber;
  int32_t frames;  // the loop length
  int32_t size, drift;
  uint32_t colors[5];
  int32_t colorCount;
  MovableHandle flakeBlock;  // holds `flakes`, locked while the state lives
  SnowFlake* flakes;
  int32_t flakeCount;
  MovableHandle fillImage;  // the Fill background at the canvas size; null without a material
};

// Seeds the generator and draws every flake, in the generator's order; then fills `fillImage`
// from `fill` (which may be null). Returns 1, or 0 on failure; ReleaseSnowState frees what was
// made either way.
int PrepareSnowState(SnowState* state, const SnowSettings* settings, int32_t width, int32_t height,
                     Material* fill);
void ReleaseSnowState(SnowState* state);
// A new flake of side `side`: drawn at twice the size and halved, or left at twice the size when
// halving fails. Draws its shape's random numbers. Null when no surface can be made.
MovableHandle DrawSnowFlake(int32_t side);
// Frame `frameNumber` of the loop: a copy of the fill with every flake stamped, the flakes' drift
// phases then advanced by one frame. Null on failure.
MovableHandle RenderSnowFrame(SnowState* state, int32_t frameNumber);

// Reads the page (ids 167 to 214) into `settings`.
void ReadSnowSettings(WindowHandle dialog, SnowSettings* settings);

extern const FrameSetEffect kSnowFrameSet;

int SnowEffectPreview(BuildContext* context);
int SnowEffectBuild(BuildContext* context);
int32_t SnowEffectKeyColour(WindowHandle dialog, int32_t mode);
