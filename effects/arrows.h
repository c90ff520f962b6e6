// Arrows: the text stands still and its letters show block arrows in random colours flying
// through the Fill background in the directions the page ticks, each swaying across its line of
// travel and casting its own soft shadow. A frame-set effect: the arrows and their shadows are
// drawn once from one seeded random sequence and stamped, wrapped, into every frame of the loop.
#pragma once

#include <cstdint>

#include "effects/frame_set.h"
#include "materials/material.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// Headings: where an arrow points and moves.
constexpr int32_t kHeadingUp = 0, kHeadingLeft = 1, kHeadingDown = 2, kHeadingRight = 3;

struct ArrowItem {
  int32_t x, y;     // start position
  int32_t size;     // side of the arrow image
  int32_t speed;    // 1, 2 or 4: canvas sizes travelled in one loop
  int32_t alpha;    // always 255; nothing reads it
  int32_t opacity;  // the Fill opacity
  float phase;      // degrees, of the sway
  uint32_t color;
  int32_t heading;
  MovableHandle image;   // the arrow white on black; its blue channel is the coverage
  MovableHandle shadow;  // its shadow picture, or null
};

// What the page gives the state.
struct ArrowsSettings {
  uint32_t colors[5];
  int32_t enabled[5];     // [1] to [4]: the Enable checks of colours 2 to 5
  int32_t directions[4];  // the upper, left, lower and right boxes
  int32_t shadowOpacity, shadowOffset, softness;
  int32_t seed, fillOpacity, drift, density, size, frames;
};

struct ArrowsState {
  int32_t width, height;
  int32_t frameNumber;
  int32_t frames;
  int32_t size, drift;
  uint32_t colors[5];
  int32_t colorCount;
  int32_t headings[4];
  int32_t headingCount;
  MovableHandle arrowBlock;  // holds `arrows`, locked while the state lives
  ArrowItem* arrows;
  int32_t arrowCount;
  MovableHandle fillImage;
};

// Seeds the generator and makes every arrow and its shadow in the generator's order, then fills
// `fillImage` from `fill` (which may be null). 1, or 0; ReleaseArrowsState frees what was made.
int PrepareArrowsState(ArrowsState* state, const ArrowsSettings* settings, int32_t width,
                       int32_t height, Material* fill);
void ReleaseArrowsState(ArrowsState* state);
// A new arrow of side `side` pointing along `heading`, drawn at twice the size and halved (left
// doubled when halving fails). Draws no random numbers. Null when no surface can be made.
MovableHandle DrawArrow(int32_t side, int32_t heading);
// Frame `frameNumber`: a copy of the fill with every arrow's shadow and then the arrow stamped;
// the sway phases then advance by one frame. Null on failure.
MovableHandle RenderArrowsFrame(ArrowsState* state, int32_t frameNumber);

void ReadArrowsSettings(WindowHandle dialog, ArrowsSettings* settings);

extern const FrameSetEffect kArrowsFrameSet;

int ArrowsEffectPreview(BuildContext* context);
int ArrowsEffectBuild(BuildContext* context);
int32_t ArrowsEffectKeyColour(WindowHandle dialog, int32_t mode);
